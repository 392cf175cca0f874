#include <trvfiles/environment/expansion_search.h>
#include <trvfiles/environment/path_search.h>
#include <trvfiles/environment/path_text.h>
#include <trvfiles/environment/variable_expansion.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

constexpr std::size_t min_size = 2000;
constexpr std::size_t max_size = std::size_t{1} << 20;

// The buffer of one search. It is taken from the last search, so that a program which once needed a
// large one does not grow it again each time. While it is in use nothing is kept: an observer may
// search itself, and then gets a buffer of its own. Of the two the larger one is kept.
class search_buffer {
public:
    explicit search_buffer(std::size_t size) : bytes_(std::exchange(kept(), {})) {
        bytes_.resize(std::max({bytes_.size(), min_size, size}));
    }
    ~search_buffer() {
        if (bytes_.size() > kept().size()) kept().swap(bytes_);
    }
    search_buffer(const search_buffer&) = delete;
    search_buffer& operator=(const search_buffer&) = delete;

    bool grow() {
        if (bytes_.size() > max_size / 2) return false;
        bytes_.resize(bytes_.size() * 2);
        return true;
    }
    char* data() { return bytes_.data(); }
    std::int32_t size() const { return static_cast<std::int32_t>(bytes_.size()); }

private:
    // Never destroyed: static objects of a host may still search during exit.
    static std::vector<char>& kept() {
        static std::vector<char>& bytes = *new std::vector<char>;
        return bytes;
    }

    std::vector<char> bytes_;
};

}  // namespace

int expand_and_search(const char* source, std::string* output) {
    // A copy: the source may be in the output, which expand_path() overwrites.
    const std::string text = source == nullptr ? "" : source;
    const int code = expand_path(source, output);
    if (is_expand_error(code)) return code;

    // Of the expansion only its error counts. resolve_path() expands the text itself: each try
    // begins with the text as the caller passed it.
    search_buffer buffer(text.size() + 1);
    int found = EXP_OK;
    do {
        std::memcpy(buffer.data(), text.c_str(), text.size() + 1);
        found = resolve_path(buffer.data(), buffer.size());
    } while (found == EXP_BUFFER_TOO_SMALL && buffer.grow());
    *output = buffer.data();
    return found;
}

int expand_and_search(const std::string& source, std::string* output) {
    return expand_and_search(source.c_str(), output);
}

int expand_and_search(const std::vector<std::string>& sources, std::string* output) {
    return expand_and_search(join_list(sources), output);
}

int expand_and_search(const char* directory, const char* file_name, std::string* output) {
    if (directory == nullptr || file_name == nullptr) return expand_and_search(nullptr, output);
    return expand_and_search(std::string(directory) + '/' + file_name, output);
}

}  // namespace trv
