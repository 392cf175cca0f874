// A text and its variables, expanded by every entry point. The results are compared with a plain
// expansion.

#include <fuzz/harness/configured_variables.h>
#include <fuzz/harness/host_channels.h>
#include <fuzz/harness/input_reader.h>
#include <fuzz/harness/require.h>
#include <fuzz/harness/storage_balance.h>
#include <fuzz/targets.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/support/blanks.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace trv::fuzz {
namespace {

// A second implementation of the rules, with one call for each value. It gives up long before the
// limits of the library.
class PlainExpander {
public:
    /// @return the status; empty if the result is too long for this expander
    std::optional<int> expand(const std::string& text) {
        const int code = append(text);
        if (hasGivenUp_) return std::nullopt;
        if (code != EXP_OK) result.clear();
        return code != EXP_OK ? code : isUndefined_ ? EXP_UNDEFINED : EXP_OK;
    }

    std::string result;

private:
    int append(const std::string& text) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            const char marker = text[i];
            if (marker != '$' && marker != '?') {
                result += marker;
                continue;
            }
            const char next = i + 1 < text.size() ? text[i + 1] : '\0';
            if (next == marker) {
                result += marker;
                ++i;
                continue;
            }
            std::string name;
            if (next == '{' || next == '(') {
                const std::size_t end = text.find(next == '{' ? '}' : ')', i + 2);
                if (end == std::string::npos) return EXP_SYNTAX_ERROR;
                name = text.substr(i + 2, end - i - 2);
                i = end;
            } else {
                while (i + 1 < text.size() && isNameCharacter(text[i + 1]))
                    name += text[++i];
            }
            const int code = appendReference(marker, name);
            if (code != EXP_OK) return code;
        }
        return EXP_OK;
    }

    int appendReference(char marker, const std::string& name) {
        constexpr int maxReplacements = 2000;
        constexpr std::size_t maxResultSize = std::size_t{1} << 18;
        const std::string reference = marker + name;
        if (std::find(open_.begin(), open_.end(), reference) != open_.end())
            return EXP_NAME_TOO_LONG;
        hasGivenUp_ =
            hasGivenUp_ || ++replacements_ > maxReplacements || result.size() > maxResultSize;
        if (hasGivenUp_) return EXP_NAME_TOO_LONG;
        const char* found =
            marker == '$' ? get_variable(name.c_str()) : get_path_variable(name.c_str());
        if (found == nullptr) {
            isUndefined_ = true;
            result += null_value(name.c_str());
            return EXP_OK;
        }
        open_.push_back(reference);
        const int code = append(std::string(found));
        open_.pop_back();
        return code;
    }

    static bool isNameCharacter(char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
               c == '_';
    }

    std::vector<std::string> open_;
    int replacements_ = 0;
    bool isUndefined_ = false;
    bool hasGivenUp_ = false;
};

void requireBuffersAgree(const std::string& text, int code, const std::string& result) {
    const std::string path = normalize_separators(result);
    const auto length = static_cast<std::int32_t>(path.size());
    std::string buffer(path.size() + 1, '!');
    require(_Expand(text.c_str(), buffer.data(), length + 1) == code && path == buffer.c_str(),
            "a result fits its length and a terminator");

    std::string untouched(path.size() + 1, '!');
    require(_Expand(text.c_str(), untouched.data(), length) == EXP_BUFFER_TOO_SMALL &&
                untouched == std::string(path.size() + 1, '!'),
            "a buffer that is too small is not changed");

    std::string field(path.size() + 3, '!');
    std::int32_t fieldCode = 1;
    _ExpandFixed(text.data(), static_cast<std::int32_t>(text.size()), field.data(), length + 3,
                 &fieldCode);
    const bool endsInBlank = !text.empty() && is_blank(text.back());
    require(endsInBlank || (fieldCode == code && field == path + "   "),
            "a field is filled up with blanks");

    const std::size_t room = std::max(text.size(), result.size()) + 1;
    std::string place = text;
    place.resize(room);
    require(_ExpandText(place.data(), static_cast<std::int32_t>(room)) == code &&
                result == place.c_str(),
            "a text expands in its own buffer");
}

void checkText(const std::string& text) {
    std::string result = "not empty";
    const int code = expand_variables(text, &result);
    PlainExpander plain;
    const std::optional<int> expected = plain.expand(text);
    require(!expected || (*expected == code && plain.result == result),
            "status and result are as the rules say");
    constexpr std::size_t maxResultSize = std::size_t{16} << 20;
    require(result.size() <= maxResultSize, "no result is longer than 16 MiB");
    require(code == EXP_OK || code == EXP_UNDEFINED || code == EXP_SYNTAX_ERROR ||
                code == EXP_NAME_TOO_LONG,
            "the status is one of the table");
    require(!is_expand_error(code) || result.empty(), "an error has no result");
    require(HostChannels::errorCount == 0 && HostChannels::fatalCount == 0,
            "the string forms report nothing");
    if (expected && !is_expand_error(code)) requireBuffersAgree(text, code, result);

    std::string own = text;
    require(!expected || (expand_variables(own.c_str(), &own) == code && own == result),
            "the source may be in the output");
}

}  // namespace

void checkExpansion(std::string_view input) {
    const StorageBalance balance;
    InputReader reader(input);
    const HostChannels channels(false, reader.byte() % 2 != 0);
    const std::string text = reader.text();
    ConfiguredVariables variables;
    while (!reader.isAtEnd()) {
        const std::string definition = reader.text();
        if (definition.substr(0, 1) == "?") {
            variables.path(definition.c_str() + 1);
        } else if (definition.find('=') != std::string::npos) {
            variables.variable(definition.c_str());
        }
    }
    // A definition without "=" has been reported.
    HostChannels::errorCount = 0;
    checkText(text);
}

}  // namespace trv::fuzz
