#pragma once

#include <set>
#include <string>

namespace trv::testing {

/// The documents that the running test has written, each text once. After the test the schema of
/// assembly files has to accept them, else the test fails. A character that XML does not allow, and
/// that the format nevertheless has in values, is replaced before that.
std::set<std::string> writtenAssemblies();

}  // namespace trv::testing
