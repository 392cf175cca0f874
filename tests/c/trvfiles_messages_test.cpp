#include <tests/c/c_objects.h>
#include <tests/common/death_test.h>
#include <tests/common/file_bytes.h>
#include <tests/environment/installation.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trv::testing {
namespace {

using ::testing::ElementsAre;

class CMessages : public ::testing::Test {
protected:
    std::string file(const char* name) const { return (directory_ / name).string(); }
    std::vector<std::string> list(const char* section) const {
        EXPECT_EQ(trvfiles_messages_list(messages_, section, texts_, fault_), TRVFILES_SUCCESS);
        return texts_.all();
    }
    void setEntry(const char* entry) const {
        EXPECT_EQ(trvfiles_messages_set_entry(messages_, "var", entry, fault_), TRVFILES_SUCCESS);
    }

    TemporaryDirectory directory_;
    Messages messages_;
    Texts texts_;
    FaultHandle fault_;
};

TEST_F(CMessages, AreLoadedFromAFile) {
    const std::string path = file("a.msg");
    writeBytes(path, "[text]\nfirst\nKEY = caf\xC3\xA9\n[more]\n");
    // A message file is merged as entries, so texts without "=" are left out with a warning.
    trvfiles_channel_set_output(1, 0, 0);
    ASSERT_EQ(trvfiles_messages_load(messages_, path.c_str(), fault_), TRVFILES_SUCCESS);
    trvfiles_channel_set_output(0, 0, 0);
    ASSERT_EQ(trvfiles_messages_sections(messages_, texts_, 0), TRVFILES_SUCCESS);
    EXPECT_THAT(texts_.all(), ElementsAre("text", "more"));
    EXPECT_THAT(list("text"), ElementsAre("KEY = caf\xC3\xA9", "from '" + path + "' line 3"));
    for (const char* name : {"missing", "*.msg"}) {
        EXPECT_EQ(trvfiles_messages_load(messages_, file(name).c_str(), fault_),
                  TRVFILES_NOT_FOUND);
    }
}

TEST_F(CMessages, KeepWhatAFaultyFileGave) {
    const std::string path = file("a.msg");
    writeBytes(path, "[var]\nA = 1\n/endif\nB = 2\n");
    EXPECT_EQ(trvfiles_messages_load(messages_, path.c_str(), fault_), TRVFILES_FATAL_REPORT);
    EXPECT_NE(fault_.reason().find("line 3"), std::string::npos) << fault_.reason();
    EXPECT_EQ(list("var").front(), "A = 1");
}

TEST_F(CMessages, AreFoundByTheirNames) {
    setEntry("Key = a");
    setEntry("Key = +;b");
    ASSERT_EQ(trvfiles_messages_find(messages_, "var", "KEY", 0, texts_, 0), TRVFILES_SUCCESS);
    EXPECT_THAT(texts_.all(), ElementsAre("a;b", "set by program"));
    EXPECT_EQ(trvfiles_messages_find(messages_, "var", "KEY", 1, texts_, fault_),
              TRVFILES_NOT_FOUND);
    EXPECT_EQ(trvfiles_messages_find(messages_, "none", "KEY", 0, texts_, fault_),
              TRVFILES_NOT_FOUND);
    EXPECT_EQ(fault_.reason(), "the section does not exist");
    EXPECT_EQ(trvfiles_messages_list(messages_, "none", texts_, 0), TRVFILES_NOT_FOUND);
}

TEST_F(CMessages, AreSetAndRemoved) {
    ASSERT_EQ(trvfiles_messages_set(messages_, "text", 1, "caf\xC3\xA9", 0), TRVFILES_SUCCESS);
    EXPECT_THAT(list("text"), ElementsAre("undefined message", "set by program", "caf\xC3\xA9",
                                          "set by program"));
    setEntry("A = 1");
    ASSERT_EQ(trvfiles_messages_remove_entry(messages_, "var", "A", 0), TRVFILES_SUCCESS);
    EXPECT_THAT(list("var"), ElementsAre("", "set by program"));
    EXPECT_EQ(trvfiles_messages_remove_entry(messages_, "var", "B", 0), TRVFILES_NOT_FOUND);
    EXPECT_EQ(trvfiles_messages_remove_entry(messages_, "none", "A", 0), TRVFILES_NOT_FOUND);
}

TEST_F(CMessages, HaveLimits) {
    for (const std::int32_t number : {-1, 32767, INT32_MAX}) {
        EXPECT_EQ(trvfiles_messages_set(messages_, "text", number, "", fault_),
                  TRVFILES_BAD_ARGUMENT);
    }
    EXPECT_EQ(trvfiles_messages_set(messages_, "text", 32766, "last", 0), TRVFILES_SUCCESS);
    const std::string name(99, 'n');
    EXPECT_EQ(trvfiles_messages_set(messages_, name.c_str(), 0, "", 0), TRVFILES_SUCCESS);
    EXPECT_EQ(trvfiles_messages_set(messages_, (name + 'n').c_str(), 0, "", fault_),
              TRVFILES_FAILED);
    EXPECT_EQ(fault_.reason(), "the section cannot be added");
    trvfiles_channel_set_output(1, 0, 0);
    EXPECT_EQ(trvfiles_messages_set_entry(messages_, "var", "no entry", fault_), TRVFILES_FAILED);
    trvfiles_channel_set_output(0, 0, 0);
}

TEST_F(CMessages, AreSaved) {
    setEntry("A = caf\xC3\xA9");
    const std::string path = file("saved.cfg");
    ASSERT_EQ(trvfiles_messages_save(messages_, path.c_str(), 0, fault_), TRVFILES_SUCCESS);
    EXPECT_EQ(textOf(path), "[var]\nA = caf\xC3\xA9\n");
    ASSERT_EQ(trvfiles_messages_set(messages_, "text", 0, "first", 0), TRVFILES_SUCCESS);
    const std::string all = file("all.msg");
    ASSERT_EQ(trvfiles_messages_save(messages_, all.c_str(), 1, fault_), TRVFILES_SUCCESS);
    EXPECT_NE(textOf(all).find("[text]\nfirst\n"), std::string::npos) << textOf(all);
    EXPECT_EQ(trvfiles_messages_save(messages_, file("no/such").c_str(), 0, fault_),
              TRVFILES_FATAL_REPORT);
    EXPECT_EQ(trvfiles_messages_save(messages_, directory_.path().string().c_str(), 0, fault_),
              TRVFILES_FAILED);
    EXPECT_NE(fault_.values().system_error, 0);
}

using CProcessMessages = ChildProcessTest;

TEST_F(CProcessMessages, AreThoseThatTheProcessLoads) {
    const auto use = [] {
        const Installation installation;
        installation.write("config/environ.cfg", "[var]\nA = 1\n");
        installation.write("app.cfg", "[app]\nB = 2\n");
        installation.write("texts.msg", "[text]\nfirst\n");
        const Texts texts;
        const FaultHandle fault;
        Handle stores[3];
        for (std::int32_t store = 0; store < 3; ++store) {
            ASSERT_EQ(trvfiles_messages_open(store, stores[store].place(), 0), TRVFILES_SUCCESS);
            ASSERT_EQ(trvfiles_messages_sections(stores[store], texts, 0), TRVFILES_SUCCESS);
            EXPECT_THAT(texts.all(), ElementsAre());
            EXPECT_EQ(trvfiles_messages_list(stores[store], "var", texts, 0), TRVFILES_NOT_FOUND);
            EXPECT_EQ(trvfiles_messages_set(stores[store], "var", 0, "", fault),
                      TRVFILES_NOT_FOUND);
            EXPECT_EQ(fault.reason(), "the process does not have the store");
            EXPECT_EQ(trvfiles_messages_load(stores[store], "any", fault), TRVFILES_BAD_ARGUMENT);
        }
        ASSERT_EQ(trvfiles_variable_get(0, "A", texts, 0), TRVFILES_SUCCESS);
        ASSERT_EQ(trvfiles_messages_load_into(TRVFILES_STORE_APPLICATION, "app.cfg",
                                              installation.root().c_str(), fault),
                  TRVFILES_SUCCESS);
        const std::string catalogue = installation.file("texts.msg").string();
        ASSERT_EQ(trvfiles_messages_load_into(TRVFILES_STORE_CATALOGUE, catalogue.c_str(), nullptr,
                                              fault),
                  TRVFILES_SUCCESS);
        EXPECT_EQ(trvfiles_messages_find(stores[0], "var", "A", 1, texts, 0), TRVFILES_SUCCESS);
        EXPECT_EQ(texts.at(0), "1");
        EXPECT_EQ(trvfiles_messages_find(stores[1], "app", "B", 1, texts, 0), TRVFILES_SUCCESS);
        EXPECT_EQ(texts.at(0), "2");
        EXPECT_EQ(trvfiles_messages_list(stores[2], "text", texts, 0), TRVFILES_SUCCESS);
        EXPECT_EQ(texts.at(0), "first");
        for (const std::int32_t store : {-1, 0, 3})
            EXPECT_EQ(trvfiles_messages_load_into(store, "", "", 0), TRVFILES_BAD_ARGUMENT);
        EXPECT_EQ(trvfiles_messages_load_into(TRVFILES_STORE_CATALOGUE, "", "", 0),
                  TRVFILES_BAD_ARGUMENT);
        trvfiles_messages none = 0;
        for (const std::int32_t store : {-1, 3})
            EXPECT_EQ(trvfiles_messages_open(store, &none, 0), TRVFILES_BAD_ARGUMENT);
    };
    TRV_EXPECT_IN_CHILD(use);
}

}  // namespace
}  // namespace trv::testing
