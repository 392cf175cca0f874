#include <tests/c/c_objects.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trv::testing {
namespace {

constexpr int textCount = 7;

class CContext : public ::testing::Test {
protected:
    CContext() {
        // All texts differ, and have characters beyond ASCII.
        for (int field = 0; field < textCount; ++field)
            set(field, ("\xC3\xA9 " + std::to_string(field)).c_str());
        numbers_ = {sizeof numbers_, {1, -2, 3.5}, 0.25, 0.5};
        EXPECT_EQ(trvfiles_context_set_numbers(context_, &numbers_, 0), TRVFILES_SUCCESS);
    }

    void set(int field, const char* text) const {
        EXPECT_EQ(trvfiles_context_set_text(context_, field, text, 0), TRVFILES_SUCCESS);
    }
    static std::string text(trvfiles_context context, int field) {
        const Texts text;
        EXPECT_EQ(trvfiles_context_get_text(context, field, text, 0), TRVFILES_SUCCESS);
        return text.one();
    }
    static void expectAllFields(trvfiles_context context) {
        for (int field = 0; field < textCount; ++field)
            EXPECT_EQ(text(context, field), "\xC3\xA9 " + std::to_string(field));
        auto numbers = sized<trvfiles_context_numbers>();
        EXPECT_EQ(trvfiles_context_get_numbers(context, &numbers, 0), TRVFILES_SUCCESS);
        EXPECT_THAT(numbers.origin_program, ::testing::ElementsAre(1, -2, 3.5));
        EXPECT_EQ(numbers.machine_proximity, 0.25);
        EXPECT_EQ(numbers.clamping_proximity, 0.5);
    }

    TemporaryDirectory directory_;
    std::string path_ = (directory_ / "\xE4\xB8\xAD.mctx").u8string();
    FaultHandle fault_;
    Context context_;
    trvfiles_context_numbers numbers_;
};

TEST_F(CContext, IsReadAsItWasWritten) {
    ASSERT_EQ(trvfiles_context_write(context_, path_.c_str(), fault_), TRVFILES_SUCCESS);
    const Context read;
    ASSERT_EQ(trvfiles_context_read(read, path_.c_str(), fault_), TRVFILES_SUCCESS);
    expectAllFields(read);
}

TEST_F(CContext, HasTheBytesOfItsFileInMemory) {
    const Texts bytes;
    ASSERT_EQ(trvfiles_context_write(context_, path_.c_str(), fault_), TRVFILES_SUCCESS);
    ASSERT_EQ(trvfiles_context_write_memory(context_, bytes, fault_), TRVFILES_SUCCESS);
    EXPECT_EQ(bytes.one(), textOf(std::filesystem::u8path(path_)));
    const Context read;
    const std::string text = bytes.one();
    ASSERT_EQ(trvfiles_context_read_memory(read, text.data(), text.size(), fault_),
              TRVFILES_SUCCESS);
    expectAllFields(read);
}

TEST_F(CContext, HasItsFieldsByTheirNumbers) {
    ASSERT_EQ(trvfiles_context_write(context_, path_.c_str(), fault_), TRVFILES_SUCCESS);
    const std::string text = textOf(std::filesystem::u8path(path_));
    set(TRVFILES_CONTEXT_MACHINE_NAME, "mill.mac");
    set(TRVFILES_CONTEXT_MACHINE_POSITION, "axis.ref");
    EXPECT_EQ(trvfiles_context_write(context_, path_.c_str(), 0), TRVFILES_SUCCESS);
    const std::string changed = textOf(std::filesystem::u8path(path_));
    EXPECT_NE(changed.find("mill.mac"), std::string::npos);
    EXPECT_NE(changed.find("axis.ref"), std::string::npos);
    EXPECT_EQ(text.find("mill.mac"), std::string::npos);
}

TEST_F(CContext, RefusesTextsThatItDoesNotHave) {
    const Texts text;
    for (const std::int32_t field : {-1, textCount, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(trvfiles_context_get_text(context_, field, text, fault_), TRVFILES_BAD_ARGUMENT);
        EXPECT_EQ(trvfiles_context_set_text(context_, field, "", 0), TRVFILES_BAD_ARGUMENT);
    }
    EXPECT_EQ(trvfiles_context_set_text(context_, 0, "\xFF", fault_), TRVFILES_BAD_TEXT);
    expectAllFields(context_);
}

TEST_F(CContext, IsCopiedAndCleared) {
    Handle copy;
    ASSERT_EQ(trvfiles_context_copy(context_, copy.place(), 0), TRVFILES_SUCCESS);
    EXPECT_EQ(trvfiles_context_clear(context_, 0), TRVFILES_SUCCESS);
    std::int32_t isNull = -1;
    EXPECT_EQ(trvfiles_context_is_null(context_, &isNull, 0), TRVFILES_SUCCESS);
    EXPECT_EQ(isNull, 1);
    EXPECT_EQ(trvfiles_context_is_null(copy, &isNull, 0), TRVFILES_SUCCESS);
    EXPECT_EQ(isNull, 0);
    expectAllFields(copy);
}

TEST_F(CContext, ReportsWhatItsFileLacks) {
    EXPECT_EQ(trvfiles_context_read(context_, path_.c_str(), fault_), TRVFILES_OPEN_ERROR);
    constexpr std::string_view noPosition = "[machine]\nname = m\n";
    EXPECT_EQ(trvfiles_context_read_memory(context_, noPosition.data(), noPosition.size(), fault_),
              TRVFILES_CONTENT_ERROR);
    EXPECT_EQ(fault_.values().line, 1);
}

// The temporary file cannot be opened, which the runtime reports as fatal.
TEST_F(CContext, IsNotSavedInAMissingDirectory) {
    const std::string path = (directory_ / "missing/a.mctx").u8string();
    EXPECT_EQ(trvfiles_context_write(context_, path.c_str(), fault_), TRVFILES_FATAL_REPORT);
    EXPECT_NE(fault_.reason().find("a.mctx.messages.tmp"), std::string::npos) << fault_.reason();
    EXPECT_EQ(fault_.reason().find('\n'), std::string::npos);
}

}  // namespace
}  // namespace trv::testing
