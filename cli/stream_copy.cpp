#include <cli/stream_copy.h>
#include <trvfiles/support/CFileFault.h>
#include <trvfiles/support/file_fault.h>
#include <trvfiles/text/open_file.h>
#include <trvfiles/text/text_conversion.h>

#include <QDir>
#include <QFile>
#include <QTemporaryFile>

#include <cerrno>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <system_error>
#include <vector>

namespace trv::cli {
namespace {

// Larger than every file that a program reads.
constexpr qint64 maxStreamBytes = qint64{4} << 30;

QString systemText(int error) {
    CFileFault fault;
    set_system_fault(&fault, error);
    return QString::fromStdString(fault.reason);
}

struct Copy {
    QTemporaryFile file{QDir::temp().filePath(QStringLiteral("trvfiles-XXXXXX"))};
    StreamCopy result;
};

// The path under which the file can be opened again. On Linux the file has no name in a directory,
// so nothing is left of it if a signal ends the command.
QString pathOf(QTemporaryFile& file) {
    QString path = QStringLiteral("/proc/self/fd/%1").arg(file.handle());
    // Wine has the directory too, but its numbers are others.
    if (!platform::backslash_separates() && QFile::exists(path)) return path;
    QString name = file.fileName();
    file.close();
    return name;
}

// @param stream  nullptr if it cannot be opened, with the reason in `errno`
std::unique_ptr<Copy> makeCopy(std::FILE* stream) {
    const int openError = errno;
    auto copy = std::make_unique<Copy>();
    QString& problem = copy->result.problem;
    if (stream == nullptr) {
        problem = systemText(openError);
    } else if (!copy->file.open()) {
        problem = QStringLiteral("no temporary file: %1").arg(copy->file.errorString());
    } else {
        problem = copyStream(stream, copy->file, maxStreamBytes);
        if (problem.isEmpty()) copy->result.path = pathOf(copy->file);
    }
    return copy;
}

// The copies of this process by the paths of their pipes. That of standard input has the key "-",
// which is not the path of a file.
struct Copies {
    std::mutex mutex;
    std::map<QString, std::unique_ptr<Copy>> byPath;
};

Copies& allCopies() {
    static Copies copies;
    return copies;
}

// Other threads that ask for a copy wait until the stream has been read.
//
// @param make  called if there is no copy yet
template <class Make>
StreamCopy copyOf(const QString& key, Make make) {
    Copies& copies = allCopies();
    const std::lock_guard<std::mutex> lock(copies.mutex);
    std::unique_ptr<Copy>& copy = copies.byPath[key];
    if (copy == nullptr) copy = make();
    return copy->result;
}

}  // namespace

bool isStandardInput(const QString& name) {
    return name == QLatin1String("-");
}

bool isPipe(const QString& path) {
    std::error_code error;
    return isOpenable(path) && std::filesystem::is_fifo(systemPath(path), error);
}

StreamCopy copyOfStandardInput() {
    return copyOf(QStringLiteral("-"), [] { return makeCopy(stdin); });
}

StreamCopy copyOfPipe(const QString& path) {
    return copyOf(path, [&path] {
        const platform::file_handle pipe = openForRead(path, platform::file_mode::binary);
        return makeCopy(pipe.get());
    });
}

QString copyStream(std::FILE* stream, QFile& file, qint64 maxBytes) {
    constexpr std::size_t blockLength = 65536;
    std::vector<char> block(blockLength);
    qint64 copied = 0;
    for (;;) {
        errno = 0;
        const auto length = static_cast<qint64>(std::fread(block.data(), 1, blockLength, stream));
        const int error = errno;
        if (length == 0 && std::ferror(stream) != 0) return systemText(error);
        copied += length;
        if (copied > maxBytes) {
            return QStringLiteral("the input is longer than %1 bytes").arg(maxBytes);
        }
        if (file.write(block.data(), length) != length) return file.errorString();
        if (length == 0) return file.flush() ? QString() : file.errorString();
    }
}

}  // namespace trv::cli
