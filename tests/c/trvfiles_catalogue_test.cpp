#include <tests/c/c_objects.h>
#include <tests/common/current_directory.h>
#include <tests/common/death_test.h>
#include <tests/environment/installation.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trv::testing {
namespace {

using ::testing::ElementsAre;

// Each test loads a configuration, once in a process.
using CCatalogue = ChildProcessTest;

TEST_F(CCatalogue, ListsTheFavouriteContexts) {
    const auto list = [] {
        const Installation installation;
        installation.write("config/environ.cfg", "[var]\nA = 1\n");
        const std::string directory = "standard/machine_context";
        installation.write(directory + "/b\xC3\xA9/b\xC3\xA9.mctx", "");
        const Texts texts;
        ASSERT_EQ(trvfiles_catalogue_directory(texts, 0), TRVFILES_SUCCESS);
        const std::string found = texts.one();
        EXPECT_EQ(backslashed(found), installation.path(directory));
        ASSERT_EQ(trvfiles_catalogue_list("", texts, 0), TRVFILES_SUCCESS);
        EXPECT_THAT(texts.all(), ElementsAre(found + "/b\xC3\xA9/b\xC3\xA9.mctx"));
        ASSERT_EQ(trvfiles_catalogue_list("missing", texts, 0), TRVFILES_SUCCESS);
        EXPECT_THAT(texts.all(), ElementsAre());
    };
    TRV_EXPECT_IN_CHILD(list);
}

TEST_F(CCatalogue, HasNoDirectoryWithoutAnInstallation) {
    const auto ask = [] {
        const Installation installation;
        platform::set_environment("TRVHOME", nullptr);
        const Texts texts;
        const FaultHandle fault;
        EXPECT_EQ(trvfiles_catalogue_directory(texts, fault), TRVFILES_FATAL_REPORT);
        EXPECT_NE(fault.reason(), "");
        EXPECT_THAT(texts.all(), ElementsAre());
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST(CCatalogueDefault, IsTheHighestPosition) {
    const char* names[] = {"other.mctx", "[MACHINE_POSITION_2].mctx", "[MACHINE_POSITION_11].mctx",
                           "[MACHINE_POSITION_11].mctx"};
    std::size_t index = 77;
    std::int32_t position = 0;
    ASSERT_EQ(trvfiles_catalogue_choose_default(names, 4, &index, &position, 0), TRVFILES_SUCCESS);
    EXPECT_EQ(index, 2U);
    EXPECT_EQ(position, 11);
    EXPECT_EQ(trvfiles_catalogue_choose_default(names, 1, &index, &position, 0),
              TRVFILES_NOT_FOUND);
    EXPECT_EQ(index, 2U);
    EXPECT_EQ(trvfiles_catalogue_choose_default(nullptr, 0, &index, &position, 0),
              TRVFILES_NOT_FOUND);
    names[1] = nullptr;
    EXPECT_EQ(trvfiles_catalogue_choose_default(names, 4, &index, &position, 0),
              TRVFILES_BAD_ARGUMENT);
}

class CCatalogueCreation : public ::testing::Test {
protected:
    TemporaryDirectory directory_;
    CurrentDirectory here_{directory_.path()};
    Texts created_;
    FaultHandle fault_;
};

TEST_F(CCatalogueCreation, MakesADefaultContext) {
    const std::string where = directory_.text();
    ASSERT_EQ(trvfiles_catalogue_create_default(where.c_str(), 3, created_, fault_),
              TRVFILES_SUCCESS);
    EXPECT_THAT(created_.all(), ElementsAre("[MACHINE_POSITION_3].mctx",
                                            "[stockposition@[MACHINE_POSITION_3]]MACHINE.ref"));
    EXPECT_TRUE(std::filesystem::exists(directory_ / "[MACHINE_POSITION_3].mctx"));
    EXPECT_EQ(trvfiles_catalogue_create_default(where.c_str(), 3, created_, fault_),
              TRVFILES_FAILED);
    EXPECT_EQ(fault_.reason(), "the operation failed");
    EXPECT_EQ(trvfiles_catalogue_create_default(where.c_str(), 0, created_, fault_),
              TRVFILES_BAD_ARGUMENT);
    EXPECT_EQ(created_.all().size(), 2U);
}

TEST_F(CCatalogueCreation, MakesANamedContext) {
    EXPECT_EQ(trvfiles_catalogue_create("", "mill5.mac", "", "", created_, fault_),
              TRVFILES_FAILED);
    auto axis = sized<trvfiles_axis>();
    ASSERT_EQ(trvfiles_axis_write("transfo.dat", &axis, 0), TRVFILES_SUCCESS);
    ASSERT_EQ(trvfiles_catalogue_create("", "mill5.mac", "", "", created_, fault_),
              TRVFILES_SUCCESS);
    EXPECT_THAT(created_.all(),
                ElementsAre("mill5[MACHINE].mctx", "[stockposition@mill5[MACHINE]]MACHINE.ref"));
}

TEST_F(CCatalogueCreation, ReportsADirectoryThatIsMissing) {
    EXPECT_NE(trvfiles_catalogue_create_default("missing", 1, created_, fault_), TRVFILES_SUCCESS);
    EXPECT_THAT(created_.all(), ElementsAre());
    EXPECT_NE(fault_.reason(), "");
}

}  // namespace
}  // namespace trv::testing
