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

/// The number of calls that lookups have made to a function of runtime_hooks or to the host's zone
/// hook, modulo 2^32. A lookup that is not observed runs no other code of the host.
std::uint32_t hook_calls();

/// The host's zone hook, of one kind or of none.
struct zone_hook_function {
    void (*plain)() = nullptr;
    void (*with_context)(void* context) = nullptr;
    void* context = nullptr;

    bool is_set() const { return plain != nullptr || with_context != nullptr; }
    void operator()() const { plain != nullptr ? plain() : with_context(context); }
};

/// Registers the function that runs before each lookup of TRVZONE, but not while it runs.
///
/// @return the function registered before
zone_hook_function exchange_zone_hook(zone_hook_function hook);

}  // namespace trv
