#include <cli/env_message_file.h>
#include <tests/common/channel_log.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace trv::testing {
namespace {

using cli::MessageFile;
using ::testing::IsEmpty;

class EnvMessageFile : public ::testing::Test {
protected:
    MessageFile load(std::string_view text) const {
        writeBytes(directory_ / "a.msg", text);
        return cli::loadMessageFile(QString::fromStdString(directory_.text() + "/a.msg"));
    }

    TemporaryDirectory directory_;
    ChannelLog log_;
};

TEST_F(EnvMessageFile, HoldsWhatAProgramGets) {
    const MessageFile file = load("[one]\nfirst # comment\n  A = ##\n[two]\n[one]\nagain\n");
    EXPECT_EQ(file.result, load_result::loaded);
    ASSERT_EQ(file.sections.size(), 3U);
    EXPECT_EQ(file.sections[0].name, "one");
    ASSERT_EQ(file.sections[0].messages.size(), 2U);
    EXPECT_EQ(file.sections[0].messages[0].number, 0);
    EXPECT_EQ(file.sections[0].messages[0].line, 2);
    EXPECT_EQ(file.sections[0].messages[0].text, "first ");
    EXPECT_EQ(file.sections[0].messages[1].number, 1);
    EXPECT_EQ(file.sections[0].messages[1].line, 3);
    EXPECT_EQ(file.sections[0].messages[1].text, "  A = #");
    EXPECT_THAT(file.sections[1].messages, IsEmpty());
    EXPECT_EQ(file.sections[2].name, "one");
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(EnvMessageFile, DistinguishesAMissingFileFromABrokenOne) {
    const MessageFile missing = cli::loadMessageFile(QStringLiteral("no such file"));
    EXPECT_EQ(missing.result, load_result::missing);
    EXPECT_EQ(missing.whyMissing.reason.toStdString(), "No such file or directory");
    EXPECT_THAT(log_.fatals(), IsEmpty());
    const MessageFile file = load("[one]\nfirst\n/frob\nsecond\n");
    EXPECT_EQ(file.result, load_result::failed);
    ASSERT_EQ(file.sections.size(), 1U);
    EXPECT_EQ(file.sections[0].messages.size(), 1U);
    EXPECT_EQ(file.whyMissing.reason.toStdString(), "");
}

TEST_F(EnvMessageFile, LoadsRegularFilesOnly) {
    for (const std::string& name : {directory_.text(), std::string("/dev/null")}) {
        if (!std::filesystem::exists(name)) continue;
        const MessageFile file = cli::loadMessageFile(QString::fromStdString(name));
        EXPECT_EQ(file.result, load_result::missing);
        EXPECT_EQ(file.whyMissing.reason.toStdString(), "not a regular file");
        EXPECT_THAT(file.sections, IsEmpty());
    }
    EXPECT_THAT(log_.errors(), IsEmpty());
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

}  // namespace
}  // namespace trv::testing
