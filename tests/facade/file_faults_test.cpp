// What the forms with a fault store, for each status.

#include <tests/assembly/sample_components.h>
#include <tests/common/channel_log.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <tests/facade/memory_equality.h>
#include <trvfiles/support/dynamic_storage.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace fs = std::filesystem;
using namespace trv::testing;

namespace {

/// Every form of one operation with a fault, by its name.
using Forms = std::vector<
    std::pair<std::string, std::function<EFileIOStatus(const std::string&, CFileFault*)>>>;

class FileFaults : public ::testing::Test {
protected:
    /// Expects the same report of all forms, and the same status without a fault. What a fault has
    /// held before is gone.
    void expectReports(const Forms& forms, const std::string& name, const std::string& report) {
        for (const auto& [form, call] : forms) {
            SCOPED_TRACE(form + ' ' + name);
            CFileFault fault;
            fault.reason = "old";
            fault.line = 77;
            fault.notes.push_back({CFileFault::Note::Kind::leftOut, 7, 7, "old", "old"});
            const EFileIOStatus status = call(name, &fault);
            EXPECT_EQ(reportOf(status, fault), report);
            EXPECT_EQ(call(name, nullptr), status);
        }
    }

    static std::wstring wide(const std::string& name) { return fs::u8path(name).wstring(); }
    std::string path(const std::string& name) const {
        return name.empty() ? name : directory_.text() + '/' + name;
    }

    Forms contextReads() {
        return {{"narrow",
                 [&](const std::string& name, CFileFault* fault) {
                     return files_.readMachineContext(name.c_str(), context_, fault);
                 }},
                {"wide",
                 [&](const std::string& name, CFileFault* fault) {
                     return files_.readMachineContext(wide(name), context_, fault);
                 }},
                {"narrow path",
                 [&](const std::string& name, CFileFault* fault) {
                     return CQvFilesIO::sReadMachineContext(path(name).c_str(), context_, fault);
                 }},
                {"wide path", [&](const std::string& name, CFileFault* fault) {
                     return CQvFilesIO::sReadMachineContext(wide(path(name)), context_, fault);
                 }}};
    }

    Forms contextWrites(const CMachineContextData& data) {
        return {{"narrow",
                 [this, data](const std::string& name, CFileFault* fault) {
                     return files_.writeMachineContext(name.c_str(), data, fault);
                 }},
                {"wide",
                 [this, data](const std::string& name, CFileFault* fault) {
                     return files_.writeMachineContext(wide(name), data, fault);
                 }},
                {"narrow path",
                 [this, data](const std::string& name, CFileFault* fault) {
                     return CQvFilesIO::sWriteMachineContext(path(name).c_str(), data, fault);
                 }},
                {"wide path", [this, data](const std::string& name, CFileFault* fault) {
                     return CQvFilesIO::sWriteMachineContext(wide(path(name)), data, fault);
                 }}};
    }

    Forms assemblyReads() {
        return {{"narrow",
                 [&](const std::string& name, CFileFault* fault) {
                     return files_.readTrvAssembly(name.c_str(), assembly_, fault);
                 }},
                {"wide",
                 [&](const std::string& name, CFileFault* fault) {
                     return files_.readTrvAssembly(wide(name), assembly_, fault);
                 }},
                {"narrow path",
                 [&](const std::string& name, CFileFault* fault) {
                     return CQvFilesIO::sReadTrvAssembly(path(name).c_str(), assembly_, fault);
                 }},
                {"wide path", [&](const std::string& name, CFileFault* fault) {
                     return CQvFilesIO::sReadTrvAssembly(wide(path(name)), assembly_, fault);
                 }}};
    }

    Forms assemblyWrites(const CTrvAssemblyData& data) {
        return {{"narrow",
                 [this, data](const std::string& name, CFileFault* fault) {
                     return files_.writeTrvAssembly(name.c_str(), data, fault);
                 }},
                {"wide",
                 [this, data](const std::string& name, CFileFault* fault) {
                     return files_.writeTrvAssembly(wide(name), data, fault);
                 }},
                {"narrow path",
                 [this, data](const std::string& name, CFileFault* fault) {
                     return CQvFilesIO::sWriteTrvAssembly(path(name).c_str(), data, fault);
                 }},
                {"wide path", [this, data](const std::string& name, CFileFault* fault) {
                     return CQvFilesIO::sWriteTrvAssembly(wide(path(name)), data, fault);
                 }}};
    }

    Forms axisReads() {
        return {
            {"narrow",
             [&](const std::string& name, CFileFault* fault) {
                 return files_.readAxis(name.c_str(), matrix_, tag_, tag_, tag_, fault);
             }},
            {"wide",
             [&](const std::string& name, CFileFault* fault) {
                 return files_.readAxis(wide(name), matrix_, tag_, tag_, tag_, fault);
             }},
            {"narrow path",
             [&](const std::string& name, CFileFault* fault) {
                 return CQvFilesIO::sReadAxis(path(name).c_str(), matrix_, tag_, tag_, tag_, fault);
             }},
            {"wide path", [&](const std::string& name, CFileFault* fault) {
                 return CQvFilesIO::sReadAxis(wide(path(name)), matrix_, tag_, tag_, tag_, fault);
             }}};
    }

    Forms axisWrites() {
        return {{"narrow",
                 [&](const std::string& name, CFileFault* fault) {
                     return files_.writeAxis(name.c_str(), matrix_, 1, 2, 3, fault);
                 }},
                {"wide",
                 [&](const std::string& name, CFileFault* fault) {
                     return files_.writeAxis(wide(name), matrix_, 1, 2, 3, fault);
                 }},
                {"narrow path",
                 [&](const std::string& name, CFileFault* fault) {
                     return CQvFilesIO::sWriteAxis(path(name).c_str(), matrix_, 1, 2, 3, fault);
                 }},
                {"wide path", [&](const std::string& name, CFileFault* fault) {
                     return CQvFilesIO::sWriteAxis(wide(path(name)), matrix_, 1, 2, 3, fault);
                 }}};
    }

    void write(const std::string& name, const std::string& text) {
        writeBytes(directory_ / name, text);
    }

    TemporaryDirectory directory_;
    CQvFilesIO files_{directory_.wide()};
    CMachineContextData context_;
    CTrvAssemblyData assembly_;
    double matrix_[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 7, 8, 9, 1};
    int tag_ = 0;
};

const std::string success = "1 0:0  (0)\n";
const std::string noFile = "2 0:0 No such file or directory (2)\n";
const std::string noName = "2 0:0 not a valid file name (2)\n";

CTrvAssemblyData soundAssembly() {
    return assemblyOf(leaf("a", "a.stl"));
}

}  // namespace

TEST_F(FileFaults, AreEmptyAfterASuccess) {
    expectReports(contextWrites(allFields()), "f.mctx", success);
    expectReports(contextReads(), "f.mctx", success);
    expectReports(assemblyWrites(soundAssembly()), "f.xml", success);
    expectReports(assemblyReads(), "f.xml", success);
    expectReports(axisWrites(), "f.dat", success);
    expectReports(axisReads(), "f.dat", success);
    EXPECT_EQ(context_.getMachineName(), "MILL5");
    EXPECT_TRUE(assembly_ == soundAssembly());
    EXPECT_EQ(tag_, 3);
}

TEST_F(FileFaults, NameTheReasonOfAMissingFile) {
    for (const Forms& forms : {contextReads(), assemblyReads(), axisReads()})
        expectReports(forms, "missing", noFile);
}

TEST_F(FileFaults, NameANameThatNoFileCanHave) {
    for (const Forms& forms : {contextReads(), assemblyReads(), axisReads(),
                               assemblyWrites(soundAssembly()), axisWrites()})
        expectReports(forms, "", noName);
    const CMachineContextData data = allFields();
    expectReports(contextWrites(data), "", "2 0:0 not a valid file name (0)\n");
}

TEST_F(FileFaults, NameTheReasonOfATargetThatCannotBeOpened) {
    const ChannelLog log;
    if (trv::platform::backslash_separates()) GTEST_SKIP() << "Qt has words of its own there";
    const CMachineContextData data = allFields();
    expectReports(contextWrites(data), "missing/f", noFile);
    expectReports(assemblyWrites(soundAssembly()), "missing/f", noFile);
    expectReports(axisWrites(), "missing/f", noFile);
    EXPECT_EQ(log.fatals().size(), 8U);
}

TEST_F(FileFaults, HaveThePlaceInAMachineContext) {
    write("f", "[header]\n\n[machine]\nname=m\n");
    expectReports(contextReads(), "f", "4 3:0 section [machine] has no \"position\" (0)\n");
}

TEST_F(FileFaults, HaveThePlaceInAnAssembly) {
    write("bad", "<ComponentInfo version='1'>\n <Attributs/>\n</ComponentInfo>");
    expectReports(assemblyReads(), "bad", "4 1:27 <ComponentInfo> has no <Component> (0)\n");
    write("other", "<a/>");
    expectReports(assemblyReads(), "other",
                  "5 1:3 the root element is <a>, not <ComponentInfo> (0)\n");
}

TEST_F(FileFaults, HaveThePlaceInAnAxisFile) {
    write("f", "0\n1 0 0 0\n0 1 x 0\n");
    expectReports(axisReads(), "f", "4 3:0 four numbers are expected (0)\n");
}

TEST_F(FileFaults, HaveNotesAfterASuccess) {
    write("f.mctx",
          "[machine]\nname=m\nposition=p\nproximity=1,5\n[postpro]\norigin_program=0 0 "
          "0\n[clamping_system]\nproximity=0\n"
          "[header]\nname=n\n");
    expectReports(contextReads(), "f.mctx",
                  success +
                      "not-a-number 4:0 machine.proximity : machine.proximity is not a number: "
                      "\"1,5\" has a decimal comma, not a point; the number at its beginning "
                      "is read\n");
    write("f.xml",
          "<ComponentInfo version='1'><Attributs/>\n<Component name='a' enabled='yes'/>\n"
          "</ComponentInfo>");
    expectReports(assemblyReads(), "f.xml",
                  success +
                      "not-a-flag 2:34 a enabled: component \"a\" is disabled: enabled is "
                      "\"yes\"\n");
    write("f.dat", "0\n2 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n");
    expectReports(axisReads(), "f.dat",
                  success +
                      "not-orthonormal 2:0  : the axes are not orthonormal: their inverse is "
                      "read, which differs from what was written\n");
}

TEST_F(FileFaults, SayWhyARecordIsNotWritten) {
    expectReports(assemblyWrites(assemblyOf(named("empty"))), "f",
                  "4 0:0 component \"empty\" has neither a geometry file nor components (0)\n");
    EXPECT_FALSE(fs::exists(directory_ / "f"));
}

TEST_F(FileFaults, SayThatNoStorageIsLeft) {
    const ChannelLog log;
    const CMachineContextData data = allFields();
    trv::set_storage_maximum(1);
    expectReports(contextWrites(data), "f", "4 0:0 no storage is left for the record (0)\n");
    trv::set_storage_maximum(4294967295U);
    EXPECT_FALSE(fs::exists(directory_ / "f"));
}

TEST_F(FileFaults, SayThatADiskIsFull) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "there is no full device here";
    CFileFault fault;
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly("/dev/full", soundAssembly(), &fault),
              eFileIOShortWrite);
    EXPECT_EQ(fault.systemError, ENOSPC);
    EXPECT_EQ(fault.reason, "No space left on device");
}

// Hosts rely on the status of an axis file alone.
TEST_F(FileFaults, SayThatAnAxisFileIsNotComplete) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "there is no full device here";
    CFileFault fault;
    EXPECT_EQ(CQvFilesIO::sWriteAxis("/dev/full", matrix_, 1, 2, 3, &fault), eFileIOSuccess);
    EXPECT_EQ(fault.systemError, ENOSPC);
    EXPECT_EQ(fault.reason, "No space left on device");
}
