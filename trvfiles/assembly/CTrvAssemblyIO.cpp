#include <trvfiles/assembly/CTrvAssemblyIO.h>
#include <trvfiles/assembly/assembly_reader.h>
#include <trvfiles/assembly/assembly_writer.h>
#include <trvfiles/assembly/document_parser.h>
#include <trvfiles/assembly/document_text.h>
#include <trvfiles/support/file_fault.h>
#include <trvfiles/text/open_file.h>

#include <QFile>

#include <cerrno>
#include <string>
#include <utility>

CTrvAssemblyIO::CTrvAssemblyIO(QString fileName) : fileName_(std::move(fileName)) {}

CTrvAssemblyIO::~CTrvAssemblyIO() = default;

EFileIOStatus CTrvAssemblyIO::read(CTrvAssemblyData& data, CFileFault* fault) {
    trv::clear_fault(fault);
    trv::platform::file_handle handle;
    QFile file;
    if (!trv::openForRead(fileName_, handle, file, fault)) return eFileIOOpenError;
    if (!trv::parseDocument(file, tree_, fault)) return eFileIOContentError;
    return trv::readDocument(tree_.document, version_, data, fault);
}

EFileIOStatus CTrvAssemblyIO::write(const CTrvAssemblyData& data, CFileFault* fault) {
    trv::clear_fault(fault);
    if (!trv::writeDocument(data, tree_, fault)) return eFileIOContentError;
    const std::string text = trv::documentText(tree_.document);

    trv::platform::file_handle handle;
    QFile file;
    if (!trv::openForWrite(fileName_, handle, file, fault)) return eFileIOOpenError;
    // A full disk is noticed by the number of bytes, or when the last ones go to the system.
    const auto length = static_cast<qint64>(text.size());
    errno = 0;
    const bool isWhole = file.write(text.data(), length) == length && file.flush();
    if (isWhole) return eFileIOSuccess;
    trv::set_system_fault(fault, errno);
    return eFileIOShortWrite;
}
