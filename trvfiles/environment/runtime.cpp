#include <trvfiles/environment/environment_start.h>
#include <trvfiles/environment/runtime.h>
#include <trvfiles/environment/work_zone.h>

// Connects the layers: a lookup may have to load the configuration or to compute the temporary
// directory first, and both look up variables themselves.

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

}  // namespace

const lookup_hooks runtime_hooks = {load_environment, get_temporary_directory};

}  // namespace trv
