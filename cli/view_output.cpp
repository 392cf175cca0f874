#include <cli/view_output.h>
#include <cli/view_page.h>
#include <trvfiles/support/platform_directories.h>
#include <trvfiles/text/open_file.h>
#include <trvfiles/text/text_conversion.h>

#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string>

namespace trv::cli {
namespace {

// A stream of C++ on an open file.
class FileBuffer : public std::streambuf {
public:
    explicit FileBuffer(std::FILE* file) : file_(file) {}

    /// The `errno` of the first write that failed; EIO for any other failure.
    int failure() const { return failure_ == 0 ? EIO : failure_; }

protected:
    std::streamsize xsputn(const char* text, std::streamsize length) override {
        const std::size_t written = std::fwrite(text, 1, static_cast<std::size_t>(length), file_);
        const auto count = static_cast<std::streamsize>(written);
        if (count != length && failure_ == 0) failure_ = errno;
        return count;
    }

    int_type overflow(int_type character) override {
        if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::eof();
        const char text = traits_type::to_char_type(character);
        return xsputn(&text, 1) == 1 ? character : traits_type::eof();
    }

private:
    std::FILE* file_;
    int failure_ = 0;
};

std::filesystem::path canonicalPath(const QString& name) {
    const QString path = resolved(name);
    if (!isOpenable(path)) return {};
    return platform::canonical_path(systemPath(path));
}

bool isOneOf(const QString& name, const QStringList& files) {
    const std::filesystem::path path = canonicalPath(name);
    return !path.empty() && std::any_of(files.begin(), files.end(), [&](const QString& file) {
        return canonicalPath(file) == path;
    });
}

bool isPageFile(const QString& path) {
    constexpr std::size_t beginningLength = 256;
    const platform::file_handle file = openForRead(path, platform::file_mode::binary);
    if (file == nullptr) return false;
    std::string beginning(beginningLength, '\0');
    beginning.resize(std::fread(beginning.data(), 1, beginning.size(), file.get()));
    return isPage(beginning);
}

Problem whyNotReplaced(const PageTarget& target) {
    if (isOneOf(target.name, target.inputs)) {
        return {eFileIOOpenError, QStringLiteral("the page would replace a file that it shows")};
    }
    const QString path = resolved(target.name);
    if (target.isForced || !QFileInfo::exists(path) || isPageFile(path)) return {};
    return {eFileIOOpenError,
            QStringLiteral("the file exists and is not a page of this command; --force replaces "
                           "it")};
}

}  // namespace

QString pageNameOf(const QString& name) {
    const QString base = name == QLatin1String("-")
                             ? QStringLiteral("view")
                             : QFileInfo(nativePath(name)).completeBaseName();
    return base + QStringLiteral(".html");
}

Problem savePage(const PageTarget& target, const std::function<void(std::ostream&)>& write) {
    const std::unique_ptr<file_replacement> held = holdFile(target.name);
    if (Problem problem = whyNotHeld(target.name, held.get())) return problem;
    if (Problem problem = whyNotReplaced(target)) return problem;
    int failure = held->write(platform::file_mode::binary, [&](std::FILE* file) {
        FileBuffer buffer(file);
        std::ostream out(&buffer);
        write(out);
        if (out.good()) return true;
        errno = buffer.failure();
        return false;
    });
    if (failure == 0) failure = held->replace();
    return failure == 0 ? Problem() : systemProblem(eFileIOShortWrite, failure);
}

}  // namespace trv::cli
