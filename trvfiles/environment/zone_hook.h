#pragma once

/// @file
/// The host's zone hook, as the variable lookup needs it.
///
/// Threads: one at a time, with the whole runtime.

namespace trv {

/// Calls the function that set_zone_hook() registered, unless it runs already.
void run_zone_hook();

}  // namespace trv
