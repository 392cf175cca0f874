#pragma once

namespace trv::testing {

/// The exit status of a process that ended at a breakpoint trap. On POSIX it is signal 5, in the
/// low seven bits of the wait status. On Windows it is the exception 0x80000003.
inline bool endedAtBreakpoint(int status) {
    return static_cast<unsigned>(status) == 0x80000003u || (status & 0x7f) == 5;
}

}  // namespace trv::testing
