#include <trvfiles/assembly/CTrvAssemblyIO.h>
#include <trvfiles/assembly/assembly_writer.h>
#include <trvfiles/assembly/document_text.h>
#include <trvfiles/facade/text_conversion.h>
#include <trvfiles/support/platform.h>

#include <QFile>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <string>
#include <system_error>
#include <utility>

namespace {

using trv::platform::file_handle;
using trv::platform::file_mode;

// Whether Qt opens the file by its name: a resource that is compiled into the host, and any file
// where Qt's names are the system's own. Where names are narrow, Qt would encode this one by its
// codec for the locale, which a host may set and which is gone during exit.
bool isOpenedByName(const QString& path) {
    return path.startsWith(QLatin1Char(':')) || !trv::platform::narrow_text_is_utf8();
}

// A file for reading; `handle` has to outlive `file`.
bool openForRead(const QString& path, file_handle& handle, QFile& file, QString& reason) {
    if (isOpenedByName(path)) {
        file.setFileName(trv::nativePath(path));
        if (file.open(QIODevice::ReadOnly)) return true;
        reason = file.errorString();
        return false;
    }
    handle = trv::platform::open_for_read(trv::toNarrow(path), file_mode::binary);
    if (handle != nullptr && file.open(handle.get(), QIODevice::ReadOnly)) return true;
    reason = QString::fromStdString(std::generic_category().message(errno));
    return false;
}

EFileIOStatus statusOf(bool isComplete) {
    return isComplete ? eFileIOSuccess : eFileIOShortWrite;
}

// Unbuffered, so that a full disk shows in what was written.
EFileIOStatus writeByName(const QString& path, const std::string& text) {
    QFile file(trv::nativePath(path));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) return eFileIOOpenError;
    const auto length = static_cast<qint64>(text.size());
    return statusOf(file.write(text.data(), length) == length);
}

EFileIOStatus writeNarrow(const QString& path, const std::string& text) {
    const file_handle file = trv::platform::open_for_write(trv::toNarrow(path), file_mode::binary);
    if (file == nullptr) return eFileIOOpenError;
    static_cast<void>(std::setvbuf(file.get(), nullptr, _IONBF, 0));
    std::size_t written = 0;
    std::size_t part = 0;
    do {
        errno = 0;
        part = std::fwrite(text.data() + written, 1, text.size() - written, file.get());
        written += part;
    } while (written < text.size() && (part != 0 || errno == EINTR));
    return statusOf(written == text.size());
}

}  // namespace

CTrvAssemblyIO::CTrvAssemblyIO(QString fileName) : fileName_(std::move(fileName)) {}

CTrvAssemblyIO::~CTrvAssemblyIO() = default;

EFileIOStatus CTrvAssemblyIO::read(CTrvAssemblyData& data, trv::ReadReport* report) {
    trv::ReadReport unasked;
    trv::ReadReport& result = report == nullptr ? unasked : *report;
    result = {};

    if (!trv::isOpenable(fileName_)) {
        result.fault.reason = QStringLiteral("the name names no file");
        return eFileIOOpenError;
    }
    file_handle handle;
    QFile file;
    if (!openForRead(fileName_, handle, file, result.fault.reason)) return eFileIOOpenError;
    if (!trv::parseDocument(file, tree_, result.fault)) return eFileIOContentError;
    return trv::readDocument(tree_.document, version_, data, result);
}

EFileIOStatus CTrvAssemblyIO::write(const CTrvAssemblyData& data) {
    if (!trv::writeDocument(data, tree_)) return eFileIOContentError;
    const std::string text = trv::documentText(tree_.document);
    if (!trv::isOpenable(fileName_)) return eFileIOOpenError;
    return isOpenedByName(fileName_) ? writeByName(fileName_, text) : writeNarrow(fileName_, text);
}
