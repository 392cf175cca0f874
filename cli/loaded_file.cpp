#include <cli/input_files.h>
#include <cli/loaded_file.h>
#include <trvfiles/text/open_file.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>

namespace trv::cli {
namespace {

// Reads until there are as many bytes, or to the end of the file.
void readUpTo(std::size_t length, std::FILE* stream, LoadedFile& file) {
    constexpr std::size_t blockLength = 65536;
    char block[blockLength];
    while (file.beginning.size() < length) {
        errno = 0;
        const std::size_t read = std::fread(block, 1, sizeof block, stream);
        file.beginning.append(block, read);
        if (read == sizeof block) continue;
        file.isWhole = std::ferror(stream) == 0;
        if (!file.isWhole) file.readError = errno;
        return;
    }
}

}  // namespace

bool LoadedFile::isWholeText() const {
    const auto has = [this](char c) { return beginning.find(c) != std::string::npos; };
    return isWhole && !has('\r') && !has('\x1A');
}

Problem load(const QString& name, LoadedFile& file) {
    file.name = name;
    if (Problem problem = readablePath(name, file.path)) return problem;
    CFileFault fault;
    const platform::file_handle handle =
        openForRead(file.path, platform::file_mode::binary, &fault);
    if (handle == nullptr) return problemOf(eFileIOOpenError, fault);
    // Whole blocks are read: a buffer of the stream would only cost memory.
    static_cast<void>(std::setvbuf(handle.get(), nullptr, _IONBF, 0));
    readUpTo(1, handle.get(), file);
    const bool isDecided = file.isWhole || file.readError != 0 || looksLikeXml(file.beginning);
    if (!isDecided) readUpTo(examinedLength, handle.get(), file);
    return {};
}

}  // namespace trv::cli
