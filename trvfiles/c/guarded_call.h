#pragma once

/// @file
/// The wrapper around the body of every function of the C interface.

#include <trvfiles/c/trvfiles.h>

#include <cstdint>

struct CFileFault;

namespace trv::c {

/// A body without its type, so that the wrapper is compiled once.
using CallBody = std::int32_t (*)(void* body, CFileFault* fault);

/// Runs a body. Every exception becomes a status, and a failure without a reason gets the text of
/// its status.
///
/// @param fault   0, or the fault that takes the reason; cleared first
/// @param watches whether a report through the fatal channel becomes the status
std::int32_t runGuarded(trvfiles_fault fault, bool watches, CallBody run, void* body) noexcept;

/// Runs a callable `std::int32_t body(CFileFault*)`, which gets nullptr if no fault is asked for.
/// Nothing is thrown, as by runGuarded().
template <class Body>
std::int32_t guarded(trvfiles_fault fault, Body body) {
    const auto run = [](void* callable, CFileFault* values) {
        return (*static_cast<Body*>(callable))(values);
    };
    return runGuarded(fault, false, run, &body);
}

/// The same for a body that uses the runtime.
template <class Body>
std::int32_t guardedRuntime(trvfiles_fault fault, Body body) {
    const auto run = [](void* callable, CFileFault* values) {
        return (*static_cast<Body*>(callable))(values);
    };
    return runGuarded(fault, true, run, &body);
}

}  // namespace trv::c
