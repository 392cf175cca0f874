#include <trvfiles/environment/environment_start.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/environment/work_zone.h>
#include <trvfiles/environment/zone_hook.h>

// The one place that knows both the lookup and what stands above it: a lookup may have to load the
// configuration or to find the work zone, and both look up variables.

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

}  // namespace

const lookup_hooks runtime_hooks = {load_environment, get_temporary_directory, run_zone_hook};

}  // namespace trv
