#include <trvfiles/environment/entry_text.h>
#include <trvfiles/environment/message_store_data.h>
#include <trvfiles/environment/reference_resolver.h>
#include <trvfiles/environment/runtime_observer.h>

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

constexpr std::string_view undefined_reference = "$(TRVNULL)";

// Iterative, because a history of 10000 texts is a chain of 10000 references.
//
// Invariant: the value is `done_`, followed by what the open values have left, from the top of the
// stack down. Nothing is inserted into the middle of a string: a character is copied when its value
// is opened and when it is finished, whatever the number of replacements after it.
class reference_resolver final : private partial_value {
public:
    explicit reference_resolver(const message_store& store) : store_(store) {}

    std::string resolve(std::int32_t text) {
        open_value(text);
        while (!open_.empty() && !full_) {
            piece& current = open_.back();
            const std::size_t plus = current.value.find('+', current.done);
            finish(plus == std::string::npos ? current.value.size() - current.done
                                             : plus - current.done);
            if (plus != std::string::npos) consume_plus();
        }
        finish(open_length_);
        return std::move(done_);
    }

private:
    // An open value: a copy, because an observer may add to the store, which moves the texts.
    struct piece {
        std::string value;
        // What is before this offset is in `done_`.
        std::size_t done;
        // The offset of the text in the store.
        std::int32_t text;
    };

    void open_value(std::int32_t text) {
        open_.push_back({std::string(entry_value(store_.texts.at(text))), 0, text});
        open_length_ += open_.back().value.size();
    }

    // The next characters. They may belong to several values: "+(0000" at the end of one value and
    // "0014)" after it in the text around it make a reference.
    std::string upcoming(std::size_t count) const {
        std::string characters;
        for (auto open = open_.rbegin(); open != open_.rend() && characters.size() < count; ++open)
            characters.append(open->value, open->done, count - characters.size());
        return characters;
    }

    // Also closes every value that is used up, so the top of the stack has characters left.
    void skip(std::size_t count) {
        open_length_ -= count;
        while (count > 0 || (!open_.empty() && open_.back().done == open_.back().value.size())) {
            piece& current = open_.back();
            const std::size_t left = current.value.size() - current.done;
            if (count < left) {
                current.done += count;
                return;
            }
            count -= left;
            open_.pop_back();
        }
    }

    // Moves characters to the result.
    void finish(std::size_t count) {
        done_ += upcoming(count);
        skip(count);
    }

    // Consumes the "+" that comes next, with the reference that it begins, if any. Sets `full_` if
    // a limit is reached: the rest then stays as it is.
    void consume_plus() {
        const std::string characters = upcoming(reference_length);
        std::int32_t earlier = text_pool::none;
        if (characters.compare(0, 2, "++") == 0) {
            finish(1);
            skip(1);
        } else if (!read_reference(characters, earlier)) {
            finish(1);
        } else if (replacements_ == max_resolved_references) {
            full_ = true;
        } else if (is_defined(earlier)) {
            insert_value(earlier);
        } else {
            insert_undefined();
        }
    }

    // A text refers only to texts stored before it. So offsets fall along every chain, which ends,
    // also if the references are in the text of a definition.
    bool is_defined(std::int32_t earlier) const {
        return earlier < open_.back().text && store_.texts.is_text(earlier);
    }

    // Whether the result stays within its limit if `inserted` characters replace `removed` ones.
    bool fits(std::size_t removed, std::size_t inserted) const {
        return done_.size() + open_length_ - removed + inserted <= max_resolved_length;
    }

    void insert_value(std::int32_t earlier) {
        const std::size_t length = entry_value(store_.texts.at(earlier)).size();
        full_ = !fits(reference_length, length);
        if (full_) return;
        const std::int32_t referring = open_.back().text;
        skip(reference_length);
        open_value(earlier);
        end_replacement(referring, earlier);
    }

    void insert_undefined() {
        full_ = !fits(1, undefined_reference.size());
        if (full_) return;
        const std::int32_t referring = open_.back().text;
        skip(1);
        done_ += undefined_reference;
        end_replacement(referring, text_pool::none);
    }

    // Called after the replacement: an observer that throws or adds to the store finds the stack
    // consistent.
    //
    // @param referred  `none` for an undefined reference
    void end_replacement(std::int32_t referring, std::int32_t referred) {
        ++replacements_;
        if (!observed_.is_on()) return;
        const stored_text referring_text = copy_of(referring);
        if (referred == text_pool::none) {
            current_observer().reference_replaced({referring_text, nullptr, *this});
        } else {
            const stored_text referred_text = copy_of(referred);
            current_observer().reference_replaced({referring_text, &referred_text, *this});
        }
    }

    stored_text copy_of(std::int32_t text) const {
        return {text, store_.texts.at(text), store_.texts.origin(text)};
    }

    std::string resolved() const override { return done_; }
    std::string rest() const override { return upcoming(open_length_); }

    const message_store& store_;
    std::string done_;
    std::vector<piece> open_;
    std::size_t open_length_ = 0;
    int replacements_ = 0;
    bool full_ = false;
    observation observed_;
};

}  // namespace

std::string resolve_references(const message_store& store, std::int32_t text) {
    return reference_resolver(store).resolve(text);
}

}  // namespace trv
