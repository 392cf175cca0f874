#include <tests/c/c_objects.h>
#include <trvfiles/version.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

namespace trv::testing {
namespace {

TEST(CInterface, HasTheVersionOfTheLibrary) {
    EXPECT_EQ(trvfiles_version(), TRVFILES_VERSION);
    EXPECT_STREQ(trvfiles_version_text(), version_text());
}

TEST(CInterface, HasATextForEachStatus) {
    constexpr std::int32_t statuses[] = {1,   2,   3,   4,   5,   100, 101, 102, 103,
                                         104, 105, 106, -21, -31, -32, -42, -43, -44};
    std::set<std::string> texts;
    for (const std::int32_t status : statuses)
        texts.insert(trvfiles_status_text(status));
    EXPECT_EQ(texts.size(), 18U);
    EXPECT_STREQ(trvfiles_status_text(TRVFILES_BAD_HANDLE),
                 "a handle is 0, released or of another type");
    EXPECT_STREQ(trvfiles_status_text(0), "not a status");
    EXPECT_EQ(texts.count("not a status"), 0U);
}

TEST(CInterface, NamesTheKindsOfNotes) {
    EXPECT_STREQ(trvfiles_note_kind_name(0), "leftOut");
    EXPECT_STREQ(trvfiles_note_kind_name(11), "misplacedTags");
    EXPECT_STREQ(trvfiles_note_kind_name(-1), "");
    EXPECT_STREQ(trvfiles_note_kind_name(1000), "");
}

TEST(CFault, IsEmptyAfterASuccess) {
    const FaultHandle fault;
    const Texts texts;
    EXPECT_EQ(fault.reason(), "");
    EXPECT_EQ(trvfiles_axis_write_memory(nullptr, texts, fault), TRVFILES_BAD_ARGUMENT);
    EXPECT_EQ(fault.reason(), "an argument is NULL");
    EXPECT_EQ(fault.values().reason_length, 19U);
    std::size_t count = 1;
    EXPECT_EQ(trvfiles_texts_count(texts, &count, fault), TRVFILES_SUCCESS);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(fault.reason(), "");
}

TEST(CFault, HasTheSystemsErrorAndItsNumber) {
    const FaultHandle fault;
    auto axis = sized<trvfiles_axis>();
    EXPECT_EQ(trvfiles_axis_read("no such/file", &axis, fault), TRVFILES_OPEN_ERROR);
    EXPECT_EQ(fault.values().system_error, 2);
    EXPECT_EQ(fault.values().line, 0);
    EXPECT_NE(fault.reason(), "");
}

TEST(CFault, HasTheNotesOfASuccess) {
    constexpr std::string_view context = "[machine]\nname = m\nposition = p\nproximity = near\n";
    const FaultHandle fault;
    const Context data;
    ASSERT_EQ(trvfiles_context_read_memory(data, context.data(), context.size(), fault),
              TRVFILES_SUCCESS);
    // The other notes are about sections that the file does not have.
    const std::size_t count = fault.values().note_count;
    auto note = sized<trvfiles_note>();
    std::size_t index = 0;
    do {
        ASSERT_EQ(trvfiles_fault_get_note(fault, index++, &note), TRVFILES_SUCCESS);
    } while (std::string(trvfiles_note_kind_name(note.kind)) != "notANumber");
    EXPECT_EQ(note.line, 4);
    EXPECT_STREQ(note.subject, "machine.proximity");
    EXPECT_EQ(note.subject_length, 17U);
    EXPECT_GT(note.text_length, 0U);
    EXPECT_STREQ(note.attribute, "");
    EXPECT_EQ(trvfiles_fault_get_note(fault, count, &note), TRVFILES_BAD_ARGUMENT);
}

TEST(CTexts, AreReadByTheirIndex) {
    const Texts texts;
    const char* text = nullptr;
    EXPECT_EQ(trvfiles_texts_get(texts, 0, &text, nullptr, 0), TRVFILES_BAD_ARGUMENT);
    EXPECT_EQ(text, nullptr);
    ASSERT_EQ(trvfiles_expand("$$\xC3\xA9", 0, texts, 0), TRVFILES_SUCCESS);
    EXPECT_EQ(texts.one(), "$\xC3\xA9");
    EXPECT_EQ(trvfiles_texts_get(texts, 1, &text, nullptr, 0), TRVFILES_BAD_ARGUMENT);
    EXPECT_EQ(trvfiles_texts_get(texts, 0, &text, nullptr, 0), TRVFILES_SUCCESS);
    EXPECT_STREQ(text, "$\xC3\xA9");
}

TEST(CPaths, AreMadeAbsolute) {
    const Texts path;
    const std::string here = std::filesystem::current_path().generic_string();
    ASSERT_EQ(trvfiles_absolute_path("sub", "na\xC3\xAFve.xml", path, 0), TRVFILES_SUCCESS);
    EXPECT_EQ(path.one(), here + "/sub/na\xC3\xAFve.xml");
}

}  // namespace
}  // namespace trv::testing
