#include <tests/environment/store_access.h>
#include <trvfiles/environment/definitions.h>

#include <gtest/gtest.h>

#include <string>

namespace trv {
namespace {

class Definitions : public ::testing::Test {
protected:
    Definitions() {
        add_section(store_.get(), "var");
        file_ = register_file_name(store_.get(), "a.cfg");
    }

    void define(const char* text, int line) {
        EXPECT_EQ(set_parameter(store_.get(), 0, text, file_, line), 0);
    }

    static int append(const definition& definition, void* context) {
        std::string& lines = *static_cast<std::string*>(context);
        lines += definition.text;
        if (definition.file != nullptr) lines += std::string(" in ") + definition.file;
        lines += ':' + std::to_string(definition.line) + '\n';
        return 0;
    }

    std::string definitionsOf(const char* name, bool exact = true) {
        std::string lines;
        const int result = for_each_definition(store_.get(), 0, name, exact, append, &lines);
        return result == 0 ? lines : std::to_string(result);
    }

    testing::Store store_;
    std::int32_t file_ = -1;
};

int stop(const definition& definition, void*) {
    return definition.line;
}

TEST_F(Definitions, AreWalkedFromTheNewest) {
    define("X = a", 3);
    define("Y = y", 4);
    define("X = + b", 5);
    set_variable(store_.get(), 0, "X = ++c");
    EXPECT_EQ(definitionsOf("X"), "X = ++c:0\nX = + b in a.cfg:5\nX = a in a.cfg:3\n");
    EXPECT_EQ(definitionsOf("Y"), "Y = y in a.cfg:4\n");
}

TEST_F(Definitions, AreFoundWithOrWithoutCase) {
    define("Name = a", 1);
    EXPECT_EQ(definitionsOf("NAME"), "-1");
    EXPECT_EQ(definitionsOf("NAME", false), "Name = a in a.cfg:1\n");
}

TEST_F(Definitions, OfADeletedEntryAreNotFound) {
    define("X = a", 1);
    remove_parameter(store_.get(), 0, "X");
    EXPECT_EQ(definitionsOf("X"), "-1");
}

TEST_F(Definitions, EndWithTheFirstResultThatIsNotZero) {
    define("X = a", 7);
    define("X = b", 9);
    EXPECT_EQ(for_each_definition(store_.get(), 0, "X", true, stop, nullptr), 9);
}

TEST_F(Definitions, MayBeAddedByTheCallback) {
    define("X = a", 1);
    define("X = b", 2);
    struct Context {
        message_store* store;
        std::string texts;
    } context = {store_.get(), ""};
    const auto grow = [](const definition& definition, void* data) {
        Context& seen = *static_cast<Context*>(data);
        for (int i = 0; i < 100; ++i)
            set_variable(seen.store, 0,
                         ("N" + std::to_string(i) + " = " + std::string(500, 'n')).c_str());
        seen.texts += definition.text + std::string(definition.file);
        return 0;
    };
    EXPECT_EQ(for_each_definition(store_.get(), 0, "X", true, grow, &context), 0);
    EXPECT_EQ(context.texts, "X = ba.cfgX = aa.cfg");
}

TEST_F(Definitions, NeedAStoreASectionANameAndACallback) {
    define("X = a", 1);
    EXPECT_EQ(for_each_definition(nullptr, 0, "X", true, stop, nullptr), -1);
    EXPECT_EQ(for_each_definition(store_.get(), -1, "X", true, stop, nullptr), -1);
    EXPECT_EQ(for_each_definition(store_.get(), 1, "X", true, stop, nullptr), -1);
    EXPECT_EQ(for_each_definition(store_.get(), 65536, "X", true, stop, nullptr), -1);
    EXPECT_EQ(for_each_definition(store_.get(), 0, nullptr, true, stop, nullptr), -1);
    EXPECT_EQ(for_each_definition(store_.get(), 0, "Y", true, stop, nullptr), -1);
    EXPECT_EQ(for_each_definition(store_.get(), 0, "X", true, nullptr, nullptr), -1);
}

}  // namespace
}  // namespace trv
