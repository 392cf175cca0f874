#include <trvfiles/environment/guards.h>
#include <trvfiles/environment/work_zone.h>
#include <trvfiles/environment/zone_hook.h>

#include <utility>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

zone_hook registered_hook = nullptr;
bool running = false;

}  // namespace

zone_hook set_zone_hook(zone_hook hook) {
    return std::exchange(registered_hook, hook);
}

void run_zone_hook() {
    if (registered_hook == nullptr || running) return;
    const running_guard guard(running);
    registered_hook();
}

}  // namespace trv
