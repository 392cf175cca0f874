#pragma once

/// @file
/// The texts of a store, each after its record, and the names of the files they came from. All are
/// in one storage pool and addressed by their offsets in it.
///
/// Nothing is ever removed. An offset is valid as long as the pool. A pointer, also one to a
/// record, is valid until something is added.
///
/// Threads: one at a time.

#include <trvfiles/environment/name_index.h>
#include <trvfiles/environment/stored_vector.h>
#include <trvfiles/environment/text_record.h>
#include <trvfiles/support/dynamic_storage.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace trv {

class text_pool {
public:
    /// Instead of an offset, if there is none.
    static constexpr std::int32_t none = -1;

    /// @throws std::bad_alloc
    text_pool();

    /// Allocates the space for texts, so that adding them cannot fail.
    ///
    /// @param count   how many
    /// @param length  how long they are together
    /// @throws std::bad_alloc; the contents of the pool are then unchanged
    void reserve_texts(std::size_t count, std::size_t length);

    /// Adds a text. REQUIRES: reserve_texts() of it, so the text must not be in the pool.
    ///
    /// @return its offset, which is higher than those of all texts before
    std::int32_t add_text(const text_record& record, std::string_view text) noexcept;

    /// The registration of a file name, which is added if there is none.
    ///
    /// @throws std::bad_alloc
    std::int32_t add_file_name(std::string_view name);

    /// Whether a file name is registered at this offset, or a text begins there.
    bool is_file_name(std::int32_t offset) const;
    bool is_text(std::int32_t offset) const;

    /// The text or the file name at an offset. REQUIRES: is_text() or is_file_name().
    const char* at(std::int32_t offset) const { return base_ + offset; }
    char* at(std::int32_t offset) { return base_ + offset; }

    /// Whether a pointer points into the pool, whose bytes may move when something is added.
    bool holds(const char* pointer) const;

    /// The record of a text. REQUIRES: is_text().
    const text_record& record(std::int32_t text) const;
    text_record& record(std::int32_t text);

    /// The text into which a pointer points, at most 1024 bytes after the start of the text. The
    /// terminator is a part of the text.
    ///
    /// @return `none` if the pointer does not point into a text
    std::int32_t text_around(const char* pointer) const;

    /// Where a text came from: "from '%s' line %d" or "set by program". REQUIRES: is_text().
    std::string origin(std::int32_t text) const;

private:
    struct destroyer {
        void operator()(storage_pool* pool) const noexcept { pool_destroy(pool); }
    };

    void reserve_bytes(std::size_t bytes);
    std::int32_t take(std::size_t bytes) noexcept;
    std::int32_t put(std::string_view text) noexcept;

    std::unique_ptr<storage_pool, destroyer> pool_;
    char* base_ = nullptr;
    // The pool has handed out the bytes below `reserved_`. Those below `used_` are filled.
    std::int32_t used_ = 0;
    std::int32_t reserved_ = 0;
    // Offsets in ascending order.
    stored_vector<std::int32_t> texts_;
    stored_vector<std::int32_t> file_names_;
    name_index file_name_index_;
};

}  // namespace trv
