#include <trvfiles/assembly/CTrvAssemblyIO.h>
#include <trvfiles/assembly/assembly_writer.h>
#include <trvfiles/assembly/document_text.h>
#include <trvfiles/text/open_file.h>

#include <QFile>

#include <string>
#include <utility>

CTrvAssemblyIO::CTrvAssemblyIO(QString fileName) : fileName_(std::move(fileName)) {}

CTrvAssemblyIO::~CTrvAssemblyIO() = default;

EFileIOStatus CTrvAssemblyIO::read(CTrvAssemblyData& data, trv::ReadReport* report) {
    trv::ReadReport unasked;
    trv::ReadReport& result = report == nullptr ? unasked : *report;
    result = {};

    trv::platform::file_handle handle;
    QFile file;
    if (!trv::openForRead(fileName_, handle, file, result.fault.reason)) return eFileIOOpenError;
    if (!trv::parseDocument(file, tree_, result.fault)) return eFileIOContentError;
    return trv::readDocument(tree_.document, version_, data, result);
}

EFileIOStatus CTrvAssemblyIO::write(const CTrvAssemblyData& data) {
    if (!trv::writeDocument(data, tree_)) return eFileIOContentError;
    const std::string text = trv::documentText(tree_.document);

    trv::platform::file_handle handle;
    QFile file;
    if (!trv::openForWrite(fileName_, handle, file)) return eFileIOOpenError;
    // What a full disk does not take shows in the number of bytes, or when the last ones are
    // handed to the system.
    const auto length = static_cast<qint64>(text.size());
    const bool isWhole = file.write(text.data(), length) == length && file.flush();
    return isWhole ? eFileIOSuccess : eFileIOShortWrite;
}
