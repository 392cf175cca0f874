#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace trv::fuzz {

struct PlainSection {
    std::string name;
    std::vector<std::string> messages;
};

/// The sections of a message file, by the simplest implementation of its rules, for a host whose
/// fatal handler returns. If the load of a file ends early, the result is meaningless.
std::vector<PlainSection> parseMessagesPlainly(std::string_view text);

}  // namespace trv::fuzz
