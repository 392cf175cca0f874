#include <trvfiles/assembly/block_writer.h>

#include <algorithm>

namespace trv {

void BlockWriter::append(std::string_view text) {
    while (!text.empty()) {
        if (free() == 0) pass();
        const std::size_t count = std::min(text.size(), free());
        next_ = std::copy_n(text.data(), count, next_);
        text.remove_prefix(count);
    }
}

void BlockWriter::indent(std::size_t count) {
    while (count > 0) {
        if (free() == 0) pass();
        const std::size_t now = std::min(count, free());
        next_ = std::fill_n(next_, now, ' ');
        count -= now;
    }
}

bool BlockWriter::finish() {
    if (next_ != block_.get()) pass();
    return !hasFailed_;
}

void BlockWriter::pass() {
    const auto size = static_cast<std::size_t>(next_ - block_.get());
    if (!hasFailed_) hasFailed_ = !write_({block_.get(), size});
    next_ = block_.get();
}

}  // namespace trv
