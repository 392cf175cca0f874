#pragma once

/// @file
/// Allocations that fail, whoever makes them: the library, the standard library or Qt.

#include <tests/torture/workshop.h>

#include <string>

namespace trv::testing {

enum class AllocationKind {
    /// operator new, malloc, calloc and realloc.
    any,
    /// What the checked heap asks of the heap below it.
    ofCheckedHeap
};

/// Lets allocations of the whole process fail. One at a time.
class FailingAllocations : public Fault {
public:
    /// @param first    the number of the allocation that fails, from 1
    /// @param forEver  whether all later ones fail too
    FailingAllocations(AllocationKind kind, int first, bool forEver);

    void arm() override;
    void disarm() override;
    /// From here on nothing fails any more.
    void end() { isOver_ = true; }

    /// How many allocations have failed.
    static int failures();
    /// The functions that stood on the stack at the latest failure, the innermost first. Those
    /// without a name that the system knows are left out. From here on nothing fails.
    static std::string stackOfFailure();

private:
    bool isOver_ = false;
};

}  // namespace trv::testing
