#include <trvfiles/support/block_register.h>
#include <trvfiles/support/diagnostics.h>
#include <trvfiles/support/dynamic_storage.h>
#include <trvfiles/support/permanent_block.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

struct block_header {
    std::uint64_t size;
    std::uint32_t tag;
    std::uint32_t serial;
};
static_assert(sizeof(block_header) == 16, "a block is aligned as the memory of malloc()");

// No object is larger, and malloc() refuses a larger request. Adding the header cannot overflow.
constexpr std::size_t largest_block = PTRDIFF_MAX - sizeof(block_header);
// Smaller permanent requests are never refused because of the maximum.
constexpr std::size_t smallest_capped_request = 1025;

block_register blocks;
std::uint64_t bytes_in_use = 0;
std::uint64_t permanent_bytes_in_use = 0;
std::uint64_t permanent_maximum = 4294967295;
std::uint32_t next_serial = 0;

block_header* header_of(void* block) {
    return static_cast<block_header*>(block) - 1;
}

// The difference of a block that shrinks wraps around modulo 2^64, so adding it subtracts.
void count(std::uint32_t tag, std::uint64_t difference) {
    bytes_in_use += difference;
    if (tag == permanent_tag) permanent_bytes_in_use += difference;
}

bool is_refused(std::uint32_t tag, std::size_t size, std::size_t growth) {
    return tag == permanent_tag && size >= smallest_capped_request && !storage_fits(growth);
}

void report_exhaustion(std::size_t size) {
    report_error(("_Wmalloc: unable to allocate " + std::to_string(size) + " bytes").c_str());
}

void report_no_increase(std::size_t old_size, std::size_t size) {
    report_error(("_Wrealloc: unable to increase size from " + std::to_string(old_size) + " to " +
                  std::to_string(size) + ".")
                     .c_str());
}

void refuse_resize(const char* kind, std::uint32_t serial) {
    const std::string text = std::string("Trying to reallocp ") + kind + std::to_string(serial);
    report_fatal(text.c_str());
}

// Whether the block is live and has the tag. Reports the reason if not.
bool check_resize(std::uint32_t tag, void* block, const block_register::finding& found) {
    if (found.kind == block_register::state::freed) {
        refuse_resize("previously freed memory #", found.serial);
        return false;
    }
    const std::uint32_t present =
        found.kind == block_register::state::live ? header_of(block)->tag : 0;
    if (found.kind == block_register::state::live && present == tag) return true;
    if (present == permanent_tag) {
        refuse_resize("permanent allocated memory#", found.serial);
    } else if (present == temporary_tag) {
        refuse_resize("temporary allocated memory#", found.serial);
    } else {
        refuse_resize("unallocated or corrupt memory #", found.serial);
    }
    return false;
}

// The block at its new place, or nullptr with the old block unchanged. If realloc() fails and
// malloc() succeeds, the old memory stays allocated and is never used again.
block_header* resize_block(block_header* header, std::size_t size) {
    const std::size_t space = sizeof(block_header) + size;
    const block_header old = *header;
    // If the block moves, the header at its old place has the tag of a freed one.
    header->tag = freed_tag;
    void* memory = std::realloc(header, space);
    if (memory == nullptr) {
        memory = std::malloc(space);
        if (memory == nullptr) {
            header->tag = old.tag;
            return nullptr;
        }
        std::memcpy(memory, header, sizeof(block_header) + std::min<std::size_t>(old.size, size));
    }
    return new (memory) block_header{size, old.tag, old.serial};
}

enum class exhaustion { reported, silent };

// As _Wrealloc(), for a block.
void* resize(std::uint32_t tag, void* block, std::size_t size, exhaustion when_exhausted) {
    const block_register::finding found = blocks.find(block);
    if (!check_resize(tag, block, found)) return nullptr;
    block_header* const header = header_of(block);
    const auto old_size = static_cast<std::size_t>(header->size);
    if (size > old_size && is_refused(tag, size, size - old_size)) return nullptr;

    // A place in the register is reserved first, so that add() cannot fail after the block has
    // moved.
    block_header* const resized =
        size <= largest_block && blocks.reserve() ? resize_block(header, size) : nullptr;
    if (resized == nullptr) {
        if (when_exhausted == exhaustion::reported) report_no_increase(old_size, size);
        return nullptr;
    }
    count(tag, size - old_size);
    if (resized + 1 != block) {
        // Looked up again: reserve() may have rebuilt the table.
        blocks.retire(blocks.find(block));
        blocks.add(resized + 1, found.serial);
    }
    return resized + 1;
}

}  // namespace

void* _Wmalloc(std::uint32_t tag, std::size_t size) {
    if (is_refused(tag, size, size)) {
        report_error(("_Wmalloc: allocating " + std::to_string(size) +
                      " bytes would exceed maximum of " + std::to_string(permanent_maximum))
                         .c_str());
        return nullptr;
    }
    void* const memory = size <= largest_block && blocks.reserve()
                             ? std::malloc(sizeof(block_header) + size)
                             : nullptr;
    if (memory == nullptr) {
        report_exhaustion(size);
        return nullptr;
    }
    auto* const header = new (memory) block_header{size, tag, next_serial++};
    count(tag, size);
    blocks.add(header + 1, header->serial);
    return header + 1;
}

void* _Wrealloc(std::uint32_t tag, void* block, std::size_t size) {
    return block == nullptr ? _Wmalloc(tag, size) : resize(tag, block, size, exhaustion::reported);
}

int _Wfree(void* block) {
    if (block == nullptr) return 0;
    const block_register::finding found = blocks.find(block);
    if (found.kind == block_register::state::freed) {
        report_fatal("Trying to free previously freed memory");
        return -1;
    }
    block_header* const header =
        found.kind == block_register::state::live ? header_of(block) : nullptr;
    if (header == nullptr || (header->tag != permanent_tag && header->tag != temporary_tag)) {
        report_fatal("Trying to free unallocated or corrupt memory");
        return -1;
    }
    count(header->tag, 0 - header->size);
    header->tag = freed_tag;
    blocks.retire(found);
    std::free(header);
    return 0;
}

void* allocate_permanent(std::size_t size) {
    return _Wmalloc(permanent_tag, size);
}

void* resize_permanent(void* block, std::size_t size) {
    return _Wrealloc(permanent_tag, block, size);
}

void* try_resize_permanent(void* block, std::size_t size) {
    return resize(permanent_tag, block, size, exhaustion::silent);
}

void* allocate_temporary(std::size_t size) {
    return _Wmalloc(temporary_tag, size);
}

void* resize_temporary(void* block, std::size_t size) {
    return _Wrealloc(temporary_tag, block, size);
}

std::uint64_t set_storage_maximum(std::uint64_t bytes) {
    permanent_maximum = bytes;
    return bytes;
}

// Compares without a sum, which could overflow.
bool storage_fits(std::uint64_t extra) {
    return permanent_bytes_in_use < permanent_maximum &&
           extra < permanent_maximum - permanent_bytes_in_use;
}

void storage_report(char* buffer, std::size_t size) {
    if (buffer == nullptr || size == 0) return;
    static_cast<void>(std::snprintf(buffer, size, "data base memory : %" PRIu64 "/%" PRIu64,
                                    permanent_bytes_in_use, bytes_in_use));
}

}  // namespace trv
