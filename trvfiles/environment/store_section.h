#pragma once

/// @file
/// One section of a store: its numbered texts, and the indexes by which an entry is found without a
/// walk.
///
/// Threads: one at a time, with its store.

#include <trvfiles/environment/name_index.h>
#include <trvfiles/environment/stored_vector.h>
#include <trvfiles/environment/text_pool.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace trv {

class store_section {
public:
    static constexpr std::size_t max_name_length = 99;
    static constexpr int max_messages = 32767;

    /// REQUIRES: a name of at most `max_name_length` characters.
    explicit store_section(std::string_view name);

    const char* name() const { return name_; }
    bool has_name(std::string_view name) const {
        return name == std::string_view(name_, name_length_);
    }
    int message_count() const { return static_cast<int>(texts_.size()); }
    bool has_message(int number) const { return number >= 0 && number < message_count(); }

    /// The offset of a message's text. REQUIRES: has_message().
    std::int32_t text(int number) const { return texts_[static_cast<std::size_t>(number)]; }

    /// The first entry of exactly this name, deleted or not; -1 if there is none.
    int find_entry(const text_pool& pool, std::string_view name) const;

    /// The first entry of this name that is not deleted; -1 if there is none.
    int find_live_entry(const text_pool& pool, std::string_view name, bool exact) const;

    /// Makes room for messages up to this number, the last of which is to be the given text, so
    /// that setting it cannot fail.
    ///
    /// @throws std::bad_alloc; the section is then as it was
    void reserve(int number, std::string_view text);

    /// Puts a text of the pool at the number, which is that of a message or the next one. REQUIRES:
    /// reserve() of it.
    void set(const text_pool& pool, int number, std::int32_t text) noexcept;

    /// To be called after a change of a message's text or flags.
    void update_indexes(const text_pool& pool, int number) noexcept;

private:
    std::uint32_t first_named(const text_pool& pool, std::string_view name,
                              std::uint32_t hash) const;

    char name_[max_name_length + 1] = "";
    std::uint8_t name_length_;
    // Whether an entry has ever been deleted. If not, which is usual, find_entry() needs one lookup
    // instead of two.
    bool has_deleted_ = false;
    stored_vector<std::int32_t> texts_;
    // Every entry by its exact name; entries that are not deleted by their name without case.
    name_index exact_names_;
    name_index live_names_;
};

}  // namespace trv
