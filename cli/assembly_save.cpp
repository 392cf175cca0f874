#include <cli/assembly_identity.h>
#include <cli/assembly_save.h>
#include <trvfiles/assembly/assembly_reader.h>
#include <trvfiles/assembly/assembly_writer.h>
#include <trvfiles/assembly/block_writer.h>
#include <trvfiles/assembly/dom_tree.h>

#include <QBuffer>
#include <QFile>

#include <cerrno>
#include <string_view>

namespace trv::cli {
namespace {

Problem whyNotWritable(const CTrvAssemblyData& data) {
    CFileFault fault;
    return isWritable(data, &fault) ? Problem() : problemOf(eFileIOContentError, fault);
}

// What is wrong with a file that is to contain a record.
//
// @param device  open for reading, at its beginning
Problem findDifference(QIODevice& device, const CTrvAssemblyData& data) {
    setInvalidDataPolicy();
    CTrvAssemblyData read;
    CFileFault fault;
    int version = 0;
    const EFileIOStatus status = readAnyDocument(device, version, read, &fault);
    if (status != eFileIOSuccess) {
        Problem problem = problemOf(status, fault);
        problem.reason = QStringLiteral("the new file could not be read: ") + problem.reason;
        return problem;
    }
    if (areIdentical(read, data)) return {};
    return {eFileIOContentError, QStringLiteral("the new file would give back another assembly")};
}

}  // namespace

Problem saveAssembly(const QString& name, const CTrvAssemblyData& data, file_replacement* held) {
    if (Problem problem = whyNotHeld(name, held)) return problem;
    if (Problem problem = whyNotWritable(data)) return problem;
    int failure = held->write(platform::file_mode::binary, [&data](std::FILE* stream) {
        BlockWriter out([stream](std::string_view block) {
            return std::fwrite(block.data(), 1, block.size(), stream) == block.size();
        });
        return writeAssembly(data, out);
    });
    if (failure != 0) return systemProblem(eFileIOShortWrite, failure);
    {
        // The name of the file is not used: on Windows no one else can open a held file.
        const platform::file_handle written = held->open_written();
        QFile file;
        if (written == nullptr || !file.open(written.get(), QIODevice::ReadOnly)) {
            return systemProblem(eFileIOOpenError, errno);
        }
        if (Problem problem = findDifference(file, data)) return problem;
    }
    failure = held->replace();
    return failure == 0 ? Problem() : systemProblem(eFileIOShortWrite, failure);
}

Problem whyNotSaved(const CTrvAssemblyData& data) {
    if (Problem problem = whyNotWritable(data)) return problem;
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    BlockWriter out([&buffer](std::string_view block) {
        const auto length = static_cast<qint64>(block.size());
        return buffer.write(block.data(), length) == length;
    });
    if (!writeAssembly(data, out)) {
        return {eFileIOShortWrite, QStringLiteral("the new file is too long")};
    }
    buffer.seek(0);
    return findDifference(buffer, data);
}

}  // namespace trv::cli
