#include <trvfiles/assembly/CTrvAssemblyIO.h>
#include <trvfiles/assembly/assembly_reader.h>
#include <trvfiles/assembly/assembly_writer.h>
#include <trvfiles/assembly/block_writer.h>
#include <trvfiles/assembly/memory_device.h>
#include <trvfiles/support/file_fault.h>
#include <trvfiles/text/open_file.h>

#include <QFile>

#include <cerrno>
#include <utility>

CTrvAssemblyIO::CTrvAssemblyIO(QString fileName) : fileName_(std::move(fileName)) {}

CTrvAssemblyIO::~CTrvAssemblyIO() = default;

EFileIOStatus CTrvAssemblyIO::read(CTrvAssemblyData& data, CFileFault* fault) {
    trv::clear_fault(fault);
    trv::platform::file_handle handle;
    QFile file;
    if (!trv::openForRead(fileName_, handle, file, fault)) return eFileIOOpenError;
    return trv::readAnyDocument(file, version_, data, fault);
}

EFileIOStatus CTrvAssemblyIO::write(const CTrvAssemblyData& data, CFileFault* fault) {
    trv::clear_fault(fault);
    if (!trv::isWritable(data, fault)) return eFileIOContentError;

    trv::platform::file_handle handle;
    QFile file;
    // It takes its memory before the file is opened, which removes the content of the file.
    trv::BlockWriter out([&file](std::string_view block) {
        const auto length = static_cast<qint64>(block.size());
        return file.write(block.data(), length) == length;
    });
    if (!trv::openForWrite(fileName_, handle, file, fault)) return eFileIOOpenError;
    errno = 0;
    // A full disk is noticed by the number of bytes, or when the last ones go to the system.
    if (trv::writeAssembly(data, out) && file.flush()) return eFileIOSuccess;
    trv::set_system_fault(fault, errno);
    return eFileIOShortWrite;
}

EFileIOStatus CTrvAssemblyIO::readBytes(std::string_view bytes, CTrvAssemblyData& data,
                                        CFileFault* fault) {
    trv::clear_fault(fault);
    trv::MemoryDevice device(bytes);
    int version = 0;
    return trv::readAnyDocument(device, version, data, fault);
}

EFileIOStatus CTrvAssemblyIO::writeBytes(std::string& bytes, const CTrvAssemblyData& data,
                                         CFileFault* fault) {
    trv::clear_fault(fault);
    if (!trv::isWritable(data, fault)) return eFileIOContentError;
    std::string written;
    trv::BlockWriter out([&written](std::string_view block) {
        written += block;
        return true;
    });
    static_cast<void>(trv::writeAssembly(data, out));
    bytes = std::move(written);
    return eFileIOSuccess;
}
