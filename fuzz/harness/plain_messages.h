#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace trv::fuzz {

struct PlainSection {
    std::string name;
    std::vector<std::string> messages;
};

/// The sections of a message file by its rules in their plainest form, for a host whose fatal
/// handler returns. Of a file that is given up on the way the answer is of no use.
std::vector<PlainSection> parseMessagesPlainly(std::string_view text);

}  // namespace trv::fuzz
