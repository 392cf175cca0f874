#pragma once

namespace trv::testing {

/// What a process shows that ended at a breakpoint trap: signal 5 on POSIX, where a wait status
/// holds the signal in its low seven bits, and exception 0x80000003 on Windows.
inline bool endedAtBreakpoint(int status) {
    return static_cast<unsigned>(status) == 0x80000003u || (status & 0x7f) == 5;
}

}  // namespace trv::testing
