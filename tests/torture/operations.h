#pragma once

/// @file
/// The operations under torture: what each may answer, and which files it writes in place.

#include <tests/torture/workshop.h>

#include <functional>
#include <iosfwd>
#include <set>
#include <string>
#include <vector>

namespace trv::testing {

struct Outcome {
    int status = 0;
    /// What a success gave beside its status.
    std::string result;
};

struct Operation {
    std::string name;
    int success = 0;
    /// What it may answer in place of success.
    std::set<int> failures;
    std::function<Outcome(Workshop&)> run;
    /// Files that hold a part of the new text when a write breaks off.
    std::set<std::string> inPlace = {};
    /// Whether a status below zero is the negated number of the system's error.
    bool givesSystemErrors = false;
    /// Whether a success may have passed over what could not be read or written.
    bool passesOverFaults = false;
    /// Whether a copy that breaks off blocks it from then on.
    bool isBlockedByItsRest = false;
    /// Whether Qt loses memory of its own in it where memory runs out.
    bool losesMemoryInQt = false;
    /// Whether its first success in a process settles every later call.
    bool isOncePerProcess = false;
};

void PrintTo(const Operation& operation, std::ostream* stream);

/// Those that read or write files.
std::vector<Operation> fileOperations();

/// Those that only take memory.
std::vector<Operation> memoryOperations();

}  // namespace trv::testing
