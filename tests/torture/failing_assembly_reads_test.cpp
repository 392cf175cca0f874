// Lets each system call of a read of an assembly fail, and compares the reason that is reported.

#include <tests/common/child_process.h>
#include <tests/common/temporary_directory.h>
#include <tests/torture/failing_calls.h>
#include <tests/torture/shared_memory.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/CTrvAssemblyIO.h>
#include <trvfiles/support/CFileFault.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace trv::testing {
namespace {

std::string nameOfFile(const ::testing::TestParamInfo<const char*>& info) {
    std::string name = info.param;
    for (char& c : name) {
        if (c == '.' || c == '-') c = '_';
    }
    return name;
}

class FailingReadOf : public ::testing::TestWithParam<const char*> {
protected:
    /// One run in its own process.
    ///
    /// @return how many calls failed
    int strike(int number, bool forEver) {
        *failures_ = -1;
        EXPECT_TRUE(passesInChild([&] {
            auto& calls = *new FailingCalls(number, forEver, EIO);
            ASSERT_TRUE(calls.isStarted());
            Workshop at(directory_.path(), calls);
            CTrvAssemblyIO file(QString::fromStdString(at.text(GetParam())));
            CTrvAssemblyData whole;
            ASSERT_EQ(file.read(whole), eFileIOSuccess);
            CTrvAssemblyData data;
            CFileFault fault;
            const int status = at.under([&] { return file.read(data, &fault); });
            *failures_ = calls.failures();
            calls.end();
            if (status == eFileIOSuccess) {
                EXPECT_TRUE(data == whole);
                EXPECT_EQ(fault.reason, "");
                return;
            }
            EXPECT_TRUE(status == eFileIOOpenError || status == eFileIOContentError) << status;
            EXPECT_TRUE(data == CTrvAssemblyData());
            EXPECT_EQ(fault.reason, "Input/output error");
            EXPECT_EQ(fault.systemError, EIO);
            EXPECT_EQ(fault.line, 0);
        })) << "call "
            << number;
        return *failures_;
    }

private:
    TemporaryDirectory directory_;
    Shared<int> failures_;
};

TEST_P(FailingReadOf, IsReportedWithTheErrorOfTheSystem) {
    if (!canFailCalls()) GTEST_SKIP() << "a process cannot answer its own system calls here";
    Workshop::makeFiles();
    for (const bool forEver : {false, true}) {
        for (int number = 1; strike(number, forEver) > 0; ++number)
            ASSERT_FALSE(HasFailure());
    }
}

INSTANTIATE_TEST_SUITE_P(Torture, FailingReadOf,
                         ::testing::Values("f.assembly", "large.assembly", "large-unusual.assembly",
                                           "deep-unusual.assembly"),
                         nameOfFile);

}  // namespace
}  // namespace trv::testing
