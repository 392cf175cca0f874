#pragma once

/// @file
/// Makes allocations of the library, the standard library or Qt fail.

#include <tests/torture/workshop.h>

#include <string>

namespace trv::testing {

enum class AllocationKind {
    /// operator new, malloc, calloc and realloc.
    any,
    /// The allocations that the checked heap makes.
    ofCheckedHeap
};

/// Makes allocations of the whole process fail. Only one object exists at a time.
class FailingAllocations : public Fault {
public:
    /// @param first    the number of the allocation that fails, from 1
    /// @param forEver  whether all later ones fail too
    FailingAllocations(AllocationKind kind, int first, bool forEver);

    void arm() override;
    void disarm() override;
    /// Stops the failures.
    void end() { isOver_ = true; }

    /// The number of allocations that have failed.
    static int failures();
    /// The functions on the stack at the latest failure, the innermost first. Functions without an
    /// exported name are left out. Stops the failures.
    static std::string stackOfFailure();

private:
    bool isOver_ = false;
};

}  // namespace trv::testing
