#pragma once

/// @file
/// Whether reading and writing in memory has the outcomes of files.

#include <tests/common/file_bytes.h>
#include <tests/machine_context/context_samples.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>

namespace trv::testing {

/// A status and everything in a fault, as a text that can be compared and printed.
inline std::string reportOf(EFileIOStatus status, const CFileFault& fault) {
    const auto place = [](int line, int column) {
        return std::to_string(line) + ':' + std::to_string(column);
    };
    std::string report = std::to_string(status) + ' ' + place(fault.line, fault.column) + ' ' +
                         fault.reason + " (" + std::to_string(fault.systemError) + ")\n";
    for (const CFileFault::Note& note : fault.notes) {
        report += fileNoteKindName(note.kind) + (' ' + place(note.line, note.column)) + ' ' +
                  note.subject + ' ' + note.attribute + ": " + note.text + '\n';
    }
    return report;
}

/// Windows ends a text file at the byte 0x1A and reads "\r\r\n" as "\r\n".
inline bool isSameTextOnEverySystem(const std::string& bytes) {
    return bytes.find('\x1A') == std::string::npos && bytes.find("\r\r\n") == std::string::npos;
}

/// Reads a machine context from a file and from its bytes, with and without a fault.
inline void expectContextAsInMemory(const std::filesystem::path& path) {
    const std::string bytes = bytesOf(path);
    if (platform::backslash_separates() && !isSameTextOnEverySystem(bytes)) return;
    SCOPED_TRACE(path.string());
    CMachineContextData file = prefilled();
    CMachineContextData memory = prefilled();
    CFileFault fileFault;
    CFileFault memoryFault;
    const EFileIOStatus status = CQvFilesIO::sReadMachineContext(path.wstring(), file, &fileFault);
    EXPECT_EQ(reportOf(CQvFilesIO::sReadMachineContextFromMemory(bytes, memory, &memoryFault),
                       memoryFault),
              reportOf(status, fileFault));
    EXPECT_EQ(ContextFields(memory), ContextFields(file));
    CMachineContextData unasked = prefilled();
    EXPECT_EQ(CQvFilesIO::sReadMachineContextFromMemory(bytes, unasked), status);
    EXPECT_EQ(ContextFields(unasked), ContextFields(file));
}

/// The same for an assembly.
inline void expectAssemblyAsInMemory(const std::filesystem::path& path) {
    const std::string bytes = bytesOf(path);
    SCOPED_TRACE(path.string());
    CTrvAssemblyData file;
    CTrvAssemblyData memory;
    CFileFault fileFault;
    CFileFault memoryFault;
    const EFileIOStatus status = CQvFilesIO::sReadTrvAssembly(path.wstring(), file, &fileFault);
    EXPECT_EQ(
        reportOf(CQvFilesIO::sReadTrvAssemblyFromMemory(bytes, memory, &memoryFault), memoryFault),
        reportOf(status, fileFault));
    EXPECT_TRUE(memory == file);
    CTrvAssemblyData unasked;
    EXPECT_EQ(CQvFilesIO::sReadTrvAssemblyFromMemory(bytes, unasked), status);
    EXPECT_TRUE(unasked == file);
}

/// The same for an axis.
inline void expectAxisAsInMemory(const std::filesystem::path& path) {
    struct Reading {
        std::array<double, 16> matrix = {};
        std::array<int, 3> tags = {-7, -8, -9};
        CFileFault fault;
    };
    const std::string bytes = bytesOf(path);
    if (platform::backslash_separates() && !isSameTextOnEverySystem(bytes)) return;
    SCOPED_TRACE(path.string());
    Reading file;
    Reading memory;
    const EFileIOStatus status = CQvFilesIO::sReadAxis(
        path.wstring(), file.matrix.data(), file.tags[0], file.tags[1], file.tags[2], &file.fault);
    const EFileIOStatus inMemory = CQvFilesIO::sReadAxisFromMemory(
        bytes, memory.matrix.data(), memory.tags[0], memory.tags[1], memory.tags[2], &memory.fault);
    EXPECT_EQ(reportOf(inMemory, memory.fault), reportOf(status, file.fault));
    // As texts: a NaN equals a NaN.
    EXPECT_EQ(::testing::PrintToString(memory.matrix), ::testing::PrintToString(file.matrix));
    EXPECT_EQ(memory.tags, file.tags);
}

}  // namespace trv::testing
