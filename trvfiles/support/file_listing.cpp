#include <trvfiles/support/ascii_case.h>
#include <trvfiles/support/dynamic_storage.h>
#include <trvfiles/support/file_listing.h>
#include <trvfiles/support/platform.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace trv {

struct file_listing {
    char** entries;
    int count;
    int capacity;
    int next;
};

namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

constexpr std::size_t max_pattern_length = 511;
constexpr int growth = 50;

bool is_letter(char c) {
    const char upper = fold_case(c);
    return upper >= 'A' && upper <= 'Z';
}

// The length of the directory part, its last separator included.
std::size_t directory_length(std::string_view pattern) {
    const std::size_t separator = pattern.find_last_of("/\\");
    if (separator != std::string_view::npos) return separator + 1;
    const bool has_drive = pattern.size() >= 2 && is_letter(pattern[0]) && pattern[1] == ':';
    return has_drive ? 2 : 0;
}

std::vector<std::string> matching_names(const char* directory, const char* pattern) {
    std::vector<std::string> names = platform::directory_entries(directory);
    names.erase(std::remove_if(names.begin(), names.end(),
                               [pattern](const std::string& name) {
                                   return wildcard_match(pattern, name.c_str(), false) == 0;
                               }),
                names.end());
    // The order in a directory depends on the file system.
    std::sort(names.begin(), names.end());
    return names;
}

bool matches_one(char pattern, char c, bool case_sensitive) {
    if (pattern == '?' || pattern == c) return true;
    return !case_sensitive && fold_case(pattern) == fold_case(c);
}

struct listing_deleter {
    void operator()(file_listing* listing) const noexcept { listing_free(listing); }
};
// Frees its listing when it is destroyed, also if a host's handler throws.
using listing_handle = std::unique_ptr<file_listing, listing_deleter>;

listing_handle create_listing() {
    void* const memory = allocate_temporary(sizeof(file_listing));
    return listing_handle(memory == nullptr ? nullptr : new (memory) file_listing{});
}

bool grow(file_listing& listing) {
    const int capacity = listing.capacity + growth;
    const auto bytes = static_cast<std::size_t>(capacity) * sizeof(char*);
    void* const entries = resize_temporary(listing.entries, bytes);
    if (entries == nullptr) return false;
    listing.entries = static_cast<char**>(entries);
    std::fill(listing.entries + listing.capacity, listing.entries + capacity, nullptr);
    listing.capacity = capacity;
    return true;
}

bool append(file_listing& listing, const std::string& entry) {
    if (listing.count == listing.capacity && !grow(listing)) return false;
    void* const copy = allocate_temporary(entry.size() + 1);
    if (copy == nullptr) return false;
    std::memcpy(copy, entry.c_str(), entry.size() + 1);
    listing.entries[listing.count++] = static_cast<char*>(copy);
    return true;
}

}  // namespace

// Greedy with one step back. Invariant: if the name matches, it matches with every "*" before the
// last one as short as possible, so only the last "*" ever takes more characters. The cost is at
// most the product of both lengths.
int wildcard_match(const char* pattern, const char* name, bool case_sensitive) {
    if (pattern == nullptr || name == nullptr) return 1;
    const char* after_star = nullptr;
    const char* star_end = nullptr;
    while (*name != '\0') {
        if (*pattern == '*') {
            after_star = ++pattern;
            star_end = name;
        } else if (*pattern != '\0' && matches_one(*pattern, *name, case_sensitive)) {
            ++pattern;
            ++name;
        } else if (after_star != nullptr) {
            pattern = after_star;
            name = ++star_end;
        } else {
            return 0;
        }
    }
    while (*pattern == '*')
        ++pattern;
    return *pattern == '\0' ? 1 : 0;
}

file_listing* list_matching(const char* pattern) {
    listing_handle listing = create_listing();
    if (listing == nullptr || pattern == nullptr) return listing.release();
    const std::string_view whole = pattern;
    if (whole.size() > max_pattern_length) return listing.release();
    const std::string prefix(whole.substr(0, directory_length(whole)));
    const char* const directory = prefix.empty() ? ".\\" : prefix.c_str();
    for (const std::string& name : matching_names(directory, pattern + prefix.size())) {
        if (!append(*listing, prefix + name)) return nullptr;
    }
    return listing.release();
}

int listing_count(const file_listing* listing) {
    return listing == nullptr ? 0 : listing->count;
}

const char* listing_next(file_listing* listing) {
    if (listing == nullptr || listing->next == listing->count) return nullptr;
    return listing->entries[listing->next++];
}

void listing_free(file_listing* listing) {
    if (listing == nullptr) return;
    for (int i = 0; i < listing->count; ++i)
        _Wfree(listing->entries[i]);
    _Wfree(listing->entries);
    _Wfree(listing);
}

}  // namespace trv
