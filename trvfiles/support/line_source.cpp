#include <trvfiles/support/line_reading.h>
#include <trvfiles/support/line_source.h>
#include <trvfiles/support/platform.h>

#include <cstddef>
#include <new>
#include <utility>

using trv::platform::file_handle;
using trv::platform::file_mode;

namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

}  // namespace

struct CL8BFile::Reader {
    explicit Reader(file_handle file)
        : owned(std::move(file)), stream(owned.get()), counter(stream == nullptr ? 0 : 1) {}
    explicit Reader(std::FILE* borrowed) : stream(borrowed), counter(stream == nullptr ? 0 : 1) {}

    file_handle owned;
    std::FILE* stream;
    std::uint64_t counter;
};

// A source without memory for its reader is at its end.
CL8BFile::CL8BFile(const char* fileName)
    : reader_(new (std::nothrow) Reader(trv::platform::open_for_read(fileName, file_mode::text))) {}

CL8BFile::CL8BFile(std::FILE* stream) : reader_(new (std::nothrow) Reader(stream)) {}

CL8BFile::~CL8BFile() {
    delete reader_;
}

std::uint64_t CL8BFile::lineNumber() const {
    if (reader_ == nullptr || reader_->stream == nullptr || std::feof(reader_->stream) != 0) {
        return 0;
    }
    return reader_->counter;
}

std::uint64_t CL8BFile::readLine(char* buffer, std::int32_t size) {
    if (reader_ != nullptr) ++reader_->counter;
    if (buffer == nullptr || size < 1) return 0;
    *buffer = '\0';
    if (reader_ == nullptr || reader_->stream == nullptr || size < 2) return 0;

    std::FILE* const stream = reader_->stream;
    const std::size_t max_count = static_cast<std::size_t>(size) - 1;
    const std::size_t count = trv::read_line(stream, buffer, max_count);
    std::uint64_t consumed = count;
    if (count < max_count || buffer[count - 1] == '\n') return consumed;

    // The line is longer than the buffer. The end of the file counts like its newline.
    int rest = EOF;
    do {
        rest = std::getc(stream);
        ++consumed;
    } while (rest != EOF && rest != '\n');
    return consumed;
}
