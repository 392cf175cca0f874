#pragma once

/// @file
/// The functions of higher layers that a lookup may have to call first. variables.cpp calls them
/// through this table, so that it includes nothing above it.
///
/// Threads: one at a time, with the whole runtime.

namespace trv {

struct lookup_hooks {
    /// Fills environment_store(). Does nothing while it runs, and once the store is filled.
    void (*load_environment)();
    /// The temporary directory of the work zone, or nullptr.
    const char* (*temporary_directory)();
};
extern const lookup_hooks runtime_hooks;

}  // namespace trv
