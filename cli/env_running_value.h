#pragma once

/// @file
/// The value of a variable while its definitions are read, each of which may extend the value so
/// far.

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace trv::cli {

/// Follows the definitions of one variable, the oldest first. For each of them it has the value
/// that resolve_references() gives, but in time for the text that the definition adds, and not for
/// the whole value that it extends.
class RunningValue {
public:
    enum class State {
        /// The value is that of resolve_references().
        known,
        /// The value exceeds a limit of resolve_references(), which then leaves references in it.
        beyondLimits,
        /// A definition as it was given contains a reference in the form in which the store writes
        /// its own. Only resolve_references() can compute the value.
        unknown
    };

    /// Whether a definition extends the value so far; arguments as for take().
    static bool extends(std::string_view value, std::int32_t replaced);

    /// What is before the first reference to the replaced text, between two of them, and after the
    /// last one; arguments as for take().
    static std::vector<std::string_view> literals(std::string_view value, std::int32_t replaced);

    /// Goes on to a definition.
    ///
    /// @param value     as the store holds it: each "+" that extends the value so far is a
    ///                  reference to the replaced text
    /// @param replaced  the offset of the replaced text; below 0 for the first definition
    void take(std::string_view value, std::int32_t replaced);

    State state() const { return state_; }

    /// The value so far; empty unless it is `known`.
    std::string text() const;

private:
    void extend(const std::vector<std::string_view>& literals);
    void insert(std::deque<char>& earlier, bool isLast);
    void addLiteral(const std::string& text, bool isLast);
    void restart(State state);

    State state_ = State::known;
    // The resolved value but for its end. Both ends grow: "A = x +" adds at the front.
    std::deque<char> settled_;
    // The end, if it begins like a reference whose rest may be in a later definition.
    std::string open_;
    int replacements_ = 0;
    // The maximum length while the value is resolved, including the part that is not resolved yet.
    std::size_t peak_ = 0;
};

}  // namespace trv::cli
