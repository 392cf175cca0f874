#include <trvfiles/assembly/CTrvAssemblyIO.h>
#include <trvfiles/assembly/assembly_writer.h>
#include <trvfiles/assembly/document_text.h>
#include <trvfiles/facade/text_conversion.h>

#include <QFile>

#include <string>
#include <utility>

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
    QFile file(trv::nativePath(fileName_));
    if (!file.open(QIODevice::ReadOnly)) {
        result.fault.reason = file.errorString();
        return eFileIOOpenError;
    }
    if (!trv::parseDocument(file, tree_, result.fault)) return eFileIOContentError;
    return trv::readDocument(tree_.document, version_, data, result);
}

EFileIOStatus CTrvAssemblyIO::write(const CTrvAssemblyData& data) {
    if (!trv::writeDocument(data, tree_)) return eFileIOContentError;
    const std::string text = trv::documentText(tree_.document);

    QFile file(trv::nativePath(fileName_));
    // Unbuffered, so that a full disk shows in what was written.
    if (!trv::isOpenable(fileName_) || !file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        return eFileIOOpenError;
    }
    const auto length = static_cast<qint64>(text.size());
    return file.write(text.data(), length) == length ? eFileIOSuccess : eFileIOShortWrite;
}
