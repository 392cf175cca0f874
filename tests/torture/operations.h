#pragma once

/// @file
/// The tested operations, with the statuses that each may return and the files that it writes in
/// place.

#include <tests/torture/workshop.h>

#include <functional>
#include <iosfwd>
#include <set>
#include <string>
#include <vector>

namespace trv::testing {

struct Outcome {
    int status = 0;
    /// The result of a success, without its status.
    std::string result;
};

struct Operation {
    std::string name;
    int success = 0;
    /// The documented statuses of a failure.
    std::set<int> failures;
    std::function<Outcome(Workshop&)> run;
    /// Files that contain a part of the new text if a write fails.
    std::set<std::string> inPlace = {};
    /// Whether a negative status is the negated error number of the system.
    bool givesSystemErrors = false;
    /// Whether the operation may succeed although something could not be read or written.
    bool ignoresFaults = false;
    /// Whether an incomplete copy blocks the operation from then on.
    bool isBlockedByItsRest = false;
    /// Whether Qt leaks memory in the operation if an allocation fails.
    bool losesMemoryInQt = false;
    /// Whether its first success in a process decides every later call.
    bool isOncePerProcess = false;
};

/// The operation with `losesMemoryInQt`.
inline Operation inQt(Operation operation) {
    operation.losesMemoryInQt = true;
    return operation;
}

void PrintTo(const Operation& operation, std::ostream* stream);

/// The operations that read or write files.
std::vector<Operation> fileOperations();

/// The operations that only allocate memory.
std::vector<Operation> memoryOperations();

}  // namespace trv::testing
