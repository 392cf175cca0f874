#pragma once

/// @file
/// What variables.cpp gives to the library's own sources: the stores of the process, lookups by
/// names of known length, and the host's zone hook.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/environment/message_store.h>

#include <cstdint>
#include <string_view>

namespace trv {

/// The stores that environment_store(), application_store() and catalogue_store() return. Each is
/// nullptr until its first load. The loader fills them; they live until the process ends.
struct process_stores {
    message_store* environment = nullptr;
    message_store* application = nullptr;
    message_store* catalogue = nullptr;
};
extern process_stores loaded_stores;

/// get_variable() of a name whose length is known. REQUIRES: a terminator after the name.
const char* find_variable(std::string_view name);

/// How often a lookup has run code outside of it so far, modulo 2^32: a function of runtime_hooks
/// or the host's zone hook. No other code of the host runs within a lookup that is not observed.
std::uint32_t hook_calls();

using zone_hook_function = void (*)();

/// Registers the function that runs before each lookup of TRVZONE, but not while it runs; nullptr
/// removes it.
///
/// @return the function registered before, or nullptr
zone_hook_function exchange_zone_hook(zone_hook_function hook);

}  // namespace trv
