#include <cli/env_running_value.h>
#include <trvfiles/environment/entry_text.h>
#include <trvfiles/environment/reference_resolver.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace trv::cli {
namespace {

// Whether a text that begins with "+" could begin a reference or a "++" if more text followed. Such
// an end is not settled: the next definition may complete it.
bool isBeginningOfReference(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEFabcdef";
    if (text.size() >= reference_length) return false;
    if (text.size() > 1 && text[1] != '(') return false;
    return text.size() <= 2 || text.find_first_not_of(digits, 2) == std::string_view::npos;
}

struct Pieces {
    /// What is before the first reference to the replaced text, between two of them, and after the
    /// last one.
    std::vector<std::string_view> literals;
    /// Whether there is a reference to another text.
    bool refersElsewhere = false;
};

// The same walk as that of resolve_references(): "++" is a pair, and a "+" without a reference is
// text.
Pieces piecesOf(std::string_view value, std::int32_t replaced) {
    Pieces pieces;
    std::size_t done = 0;
    for (std::size_t plus = value.find('+'); plus != std::string_view::npos;) {
        std::int32_t offset = 0;
        std::size_t next = plus + 1;
        if (value.substr(next, 1) == "+") {
            ++next;
        } else if (read_reference(value.substr(plus), offset)) {
            pieces.refersElsewhere = pieces.refersElsewhere || replaced < 0 || offset != replaced;
            pieces.literals.push_back(value.substr(done, plus - done));
            next = done = plus + reference_length;
        }
        plus = value.find('+', next);
    }
    pieces.literals.push_back(value.substr(done));
    return pieces;
}

}  // namespace

bool RunningValue::extends(std::string_view value, std::int32_t replaced) {
    return replaced >= 0 && piecesOf(value, replaced).literals.size() > 1;
}

std::vector<std::string_view> RunningValue::literals(std::string_view value,
                                                     std::int32_t replaced) {
    return piecesOf(value, replaced).literals;
}

void RunningValue::take(std::string_view value, std::int32_t replaced) {
    const Pieces pieces = piecesOf(value, replaced);
    const bool extends = pieces.literals.size() > 1;
    if (pieces.refersElsewhere) {
        restart(State::unknown);
    } else if (!extends) {
        restart(State::known);
        peak_ = value.size();
        addLiteral(std::string(value), true);
    } else if (state_ == State::known) {
        extend(pieces.literals);
    }
}

std::string RunningValue::text() const {
    return std::string(settled_.begin(), settled_.end()) + open_;
}

void RunningValue::restart(State state) {
    settled_.clear();
    open_.clear();
    replacements_ = 0;
    peak_ = 0;
    state_ = state;
}

// Counts replacements and the peak length as resolve_references() does. The runtime resolves the
// whole value from its first definition in every lookup, so the counts include those of all earlier
// definitions.
void RunningValue::extend(const std::vector<std::string_view>& literals) {
    RunningValue earlier = std::move(*this);
    restart(State::known);
    std::size_t rest = (literals.size() - 1) * reference_length;
    for (const std::string_view literal : literals)
        rest += literal.size();
    peak_ = rest;
    addLiteral(std::string(literals.front()), false);
    rest -= literals.front().size();
    for (std::size_t i = 1; i < literals.size() && state_ == State::known; ++i) {
        const bool isLast = i + 1 == literals.size();
        rest -= reference_length;
        replacements_ += 1 + earlier.replacements_;
        const std::size_t length = settled_.size() + earlier.peak_ + rest;
        if (length > max_resolved_length || replacements_ > max_resolved_references) {
            return restart(State::beyondLimits);
        }
        peak_ = std::max(peak_, length);
        insert(earlier.settled_, isLast);
        rest -= literals[i].size();
        addLiteral(earlier.open_ + std::string(literals[i]), isLast);
    }
}

// Appends the earlier value. The last time it is moved and not copied, and the text before it,
// which is small, is inserted at its front. So a list "A = +;x" of n definitions takes time for its
// length.
void RunningValue::insert(std::deque<char>& earlier, bool isLast) {
    if (isLast) {
        earlier.insert(earlier.begin(), settled_.begin(), settled_.end());
        settled_.swap(earlier);
    } else {
        settled_.insert(settled_.end(), earlier.begin(), earlier.end());
    }
}

// Appends the text between two references to the replaced text, or after the last one.
void RunningValue::addLiteral(const std::string& text, bool isLast) {
    const auto settle = [&](std::size_t begin, std::size_t end) {
        const std::string_view part = std::string_view(text).substr(begin, end - begin);
        settled_.insert(settled_.end(), part.begin(), part.end());
    };
    std::size_t done = 0;
    std::size_t plus = text.find('+');
    while (plus != std::string::npos) {
        const std::string_view rest = std::string_view(text).substr(plus);
        std::int32_t ignored = 0;
        // A reference whose parts come from several definitions: only the runtime can resolve it.
        if (read_reference(rest, ignored)) return restart(State::unknown);
        if (isLast && isBeginningOfReference(rest)) break;
        settle(done, plus + 1);
        // Of a "++" one is left.
        done = plus + (rest.substr(1, 1) == "+" ? 2 : 1);
        plus = text.find('+', done);
    }
    const std::size_t end = std::min(plus, text.size());
    settle(done, end);
    open_ = text.substr(end);
}

}  // namespace trv::cli
