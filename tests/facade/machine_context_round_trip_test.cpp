// Writes a machine context through the facade and reads it back into a record.

#include <tests/common/channel_log.h>
#include <tests/common/death_test.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/machine_context/CMachineContextData.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

const std::string fileText =
    "[header]\n"
    "version=2\n"
    "comment=first op\n"
    "name=Setup A\n"
    "[machine]\n"
    "name=MILL5\n"
    "position=POS1\n"
    "proximity=0.100000\n"
    "[postpro]\n"
    "origin_program=12.500000 0.000000 -3.000000\n"
    "reference_axis=transfo.dat\n"
    "[part]\n"
    "surface_group=top\n"
    "[clamping_system]\n"
    "name=VISE\n"
    "proximity=1234.567749\n";

CMachineContextData sample() {
    CMachineContextData record;
    record.setName("Setup A");
    record.setComment("first op");
    record.setMachineName("MILL5");
    record.setMachinePosition("POS1");
    record.setMachineProximity(0.1);
    record.setOriginProgram(12.5, 0, -3);
    record.setReferenceAxisForOriginProgram("transfo.dat");
    record.setSurfaceGroup("top");
    record.setClampingSystem("VISE");
    record.setClampingProximity(1234.5678);
    return record;
}

void expectSample(const CMachineContextData& record) {
    EXPECT_EQ(record.getName(), "Setup A");
    EXPECT_EQ(record.getComment(), "first op");
    EXPECT_EQ(record.getMachineName(), "MILL5");
    EXPECT_EQ(record.getMachinePosition(), "POS1");
    EXPECT_EQ(record.getMachineProximity(), 0.1);
    double x = 0;
    double y = 0;
    double z = 0;
    record.getOriginProgram(x, y, z);
    EXPECT_EQ(x, 12.5);
    EXPECT_EQ(y, 0);
    EXPECT_EQ(z, -3);
    EXPECT_EQ(record.getReferenceAxisForOriginProgram(), "transfo.dat");
    EXPECT_EQ(record.getSurfaceGroup(), "top");
    EXPECT_EQ(record.getClampingSystem(), "VISE");
    EXPECT_EQ(record.getClampingProximity(), 1234.567749);
}

std::vector<std::string> namesIn(const fs::path& directory) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(directory))
        names.push_back(entry.path().filename().u8string());
    std::sort(names.begin(), names.end());
    return names;
}

class MachineContextRequest : public ChildProcessTest {};

}  // namespace

// The calls must not load the environment. Only a process without earlier calls can show this.
TEST_F(MachineContextRequest, WritesARecordAndReadsItBack) {
    const auto writeAndRead = [] {
        const TemporaryDirectory project;
        const ChannelLog log;
        CQvFilesIO files(project.wide());
        trv::set_record_flag(false);
        ASSERT_EQ(files.writeMachineContext("setup.mctx", sample()), 1);
        EXPECT_THAT(namesIn(project.path()), ElementsAre("setup.mctx"));
        EXPECT_EQ(textOf(project / "setup.mctx"), fileText);

        CMachineContextData read;
        ASSERT_EQ(files.readMachineContext("setup.mctx", read), 1);
        expectSample(read);

        EXPECT_EQ(trv::environment_store(), nullptr);
        EXPECT_FALSE(trv::set_record_flag(true));
        EXPECT_THAT(log.errors(), IsEmpty());
        EXPECT_THAT(log.fatals(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(writeAndRead);
}

TEST(MachineContextRoundTrip, ReplacesAnExistingFile) {
    const TemporaryDirectory project;
    CQvFilesIO files(project.wide());
    writeBytes(project / "setup.mctx", "an older and quite different file");
    ASSERT_EQ(files.writeMachineContext(L"setup.mctx"s, sample()), eFileIOSuccess);
    EXPECT_THAT(namesIn(project.path()), ElementsAre("setup.mctx"));
    EXPECT_EQ(textOf(project / "setup.mctx"), fileText);
    CMachineContextData read;
    ASSERT_EQ(CQvFilesIO::sReadMachineContext(project.wide() + L"/setup.mctx", read),
              eFileIOSuccess);
    expectSample(read);
}

// A record that was read is written to the same bytes.
TEST(MachineContextRoundTrip, WritesTheSameBytesAgain) {
    const TemporaryDirectory project;
    CQvFilesIO files(project.wide());
    ASSERT_EQ(files.writeMachineContext(L"one.mctx"s, sample()), eFileIOSuccess);
    CMachineContextData read;
    ASSERT_EQ(files.readMachineContext(L"one.mctx"s, read), eFileIOSuccess);
    ASSERT_EQ(files.writeMachineContext(L"two.mctx"s, read), eFileIOSuccess);
    EXPECT_EQ(bytesOf(project / "two.mctx"), bytesOf(project / "one.mctx"));
}

TEST(MachineContextRoundTrip, FailsWithoutADirectory) {
    const TemporaryDirectory project;
    const ChannelLog log;
    CQvFilesIO files(project.wide() + L"/missing");
    EXPECT_EQ(files.writeMachineContext("setup.mctx", sample()), eFileIOOpenError);
    EXPECT_THAT(log.fatals(), ElementsAre("Store messages : error opening file '" +
                                          project.path().generic_u8string() +
                                          "/missing/setup.mctx.messages.tmp'"));
    CMachineContextData read = sample();
    EXPECT_EQ(files.readMachineContext("setup.mctx", read), eFileIOOpenError);
    EXPECT_EQ(read.getClampingProximity(), 1234.5678);
    EXPECT_THAT(namesIn(project.path()), IsEmpty());
}
