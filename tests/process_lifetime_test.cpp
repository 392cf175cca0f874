/// @file
/// A host that uses the runtime before main() and while the process ends: in the constructor and in
/// the destructor of a static object, and in an exit handler.

#include <tests/common/death_test.h>
#include <tests/common/scoped_variable.h>
#include <tests/environment/installation.h>
#include <trvfiles/environment/configuration_loader.h>
#include <trvfiles/environment/path_search.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/support/file_system.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace trv {
namespace {

using Answers = std::vector<std::string>;

std::string textOrNone(const char* text) {
    return text == nullptr ? "<none>" : text;
}

// All texts but one are longer than a std::string can hold without an allocation.
class Inquiry {
public:
    Inquiry() {
        installation_.write("config/environ.cfg",
                            "[var]\nEXTENDED = one long value;++;another\nSHORT = 1++\n"
                            "TRVZONE = $TRVHOME/zone\nTRVTMP = $TRVHOME\n"
                            "[path]\nCFG = $TRVHOME/none;$TRVHOME/config\n");
        installation_.write("config/text.msg", "[texts]\nN = a catalogue's value;++\n");
        installation_.write("zone/workzone.num", "7\n");
        platform::set_environment("TRV_EXPAND_LOGFILE_NAME", installation_.path("log").c_str());
    }

    // Everything that lives until the process ends: the resolved values, the buffers of the
    // searches, the root, the stores, the work zone and the data of the expansion log.
    Answers answers() const {
        const testing::ScopedVariable minimum("TRV_EXPAND_MIN_BUFFER_SIZE", "100");
        const std::string shortValue = textOrNone(get_variable("SHORT"));
        char expanded[64] = "";
        _Expand("$EXTENDED", expanded, sizeof expanded);
        std::string found;
        expand_and_search("?CFG\\environ.cfg", &found);
        load_found_messages("text.msg", "?CFG");
        load_application_files("text.msg", "?CFG");
        return {shortValue,
                textOrNone(get_variable("EXTENDED")),
                expanded,
                found,
                textOrNone(get_catalogue_parameter("texts", "N")),
                textOrNone(get_application_parameter("texts", "N")),
                textOrNone(config_directory()),
                textOrNone(install_root(false)),
                textOrNone(get_variable("TMP")),
                textOrNone(directory_identity(installation_.root().c_str())).substr(8, 1)};
    }

    std::string root() const { return installation_.root(); }

    Answers expected() const {
        return {"1+",
                "one long value;+;another",
                "one long value;+;another",
                installation_.path("config/environ.cfg"),
                "a catalogue's value;+",
                "a catalogue's value;+",
                installation_.root() + "/config",
                installation_.root(),
                installation_.path("7"),
                "-"};
    }

private:
    testing::Installation installation_;
};

// Neither object is destroyed before the exit handler has run.
Inquiry* inquiry;
Answers* beforeMain;
bool endsWithInquiries = false;
const char* lastValue = nullptr;
const char* lastRoot = nullptr;

bool isRight(const char* element) {
    // The results of the previous stage are valid until the next lookup.
    const bool isKept = textOrNone(lastValue) == "one long value;+;another" &&
                        textOrNone(lastRoot) == inquiry->root();
    const bool isAnswered =
        inquiry->answers() == inquiry->expected() && textOrNone(list_next_element()) == element;
    lastValue = get_variable("EXTENDED");
    lastRoot = install_root(false);
    return isKept && isAnswered;
}

void inquireAtTheEnd(const char* stage, const char* element) {
    if (!endsWithInquiries) return;
    const bool right = isRight(element);
    std::fprintf(stderr, "%s: %s\n", stage, right ? "right" : "wrong");
    if (!right) std::_Exit(1);
}

void exitHandler() {
    inquireAtTheEnd("exit handler", "the third element of a list");
    delete inquiry;
    delete beforeMain;
}

// Its exit handler is registered before the library has created anything, so it runs last.
class StaticObject {
public:
    StaticObject() {
        static_cast<void>(std::atexit(exitHandler));
        inquiry = new Inquiry;
        list_begin(
            "the first element of a list;the second element of a list;"
            "the third element of a list");
        beforeMain = new Answers(inquiry->answers());
        beforeMain->push_back(textOrNone(list_next_element()));
        lastValue = get_variable("EXTENDED");
        lastRoot = install_root(false);
    }
    ~StaticObject() { inquireAtTheEnd("static destructor", "the second element of a list"); }
    StaticObject(const StaticObject&) = delete;
    StaticObject& operator=(const StaticObject&) = delete;
};

// Constructed before every other static object of the program, and destroyed after them.
[[gnu::init_priority(101)]] StaticObject made_first;

TEST(ProcessLifetime, ResultsAreReadyForTheConstructorOfAStaticObject) {
    Answers expected = inquiry->expected();
    expected.emplace_back("the first element of a list");
    EXPECT_EQ(*beforeMain, expected);
    EXPECT_STREQ(lastValue, "one long value;+;another");
}

TEST(ProcessLifetime, ResultsAreValidAfterMain) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            endsWithInquiries = true;
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "^static destructor: right\nexit handler: right\n$");
}

}  // namespace
}  // namespace trv
