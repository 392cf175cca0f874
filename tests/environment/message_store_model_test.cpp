#include <tests/common/channel_log.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <tests/environment/store_access.h>
#include <tests/environment/store_model.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/environment/store_writer.h>

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <memory>
#include <random>
#include <string>

namespace trv {
namespace {

using testing::byProgram;
using testing::ChannelLog;
using testing::originOf;
using testing::recordOf;
using testing::Store;
using testing::StoreModel;
using testing::TemporaryDirectory;
using testing::textOf;

// The offset of the first text of a store, which is after its record.
constexpr std::int32_t anchorOffset = 12;

// A store and its model, which get the same calls.
class Pair {
public:
    // The first text of the store, at a known offset, by which the offsets of others are found.
    Pair() {
        addSection("anchor");
        append(0, "anchor", "", 0);
    }

    void addSection(const std::string& name) {
        ASSERT_EQ(add_section(store_, name.c_str()), model_.sections.size());
        model_.sections.push_back({name, {}});
    }
    void findOrAddSection(const std::string& name) {
        const int known = model_.findSection(name);
        const int found = find_or_add_section(store_, name.c_str());
        if (known == StoreModel::none) model_.sections.push_back({name, {}});
        ASSERT_EQ(found, known == StoreModel::none ? model_.sections.size() - 1
                                                   : static_cast<std::size_t>(known));
    }
    void append(int section, const std::string& text, const std::string& file, int line) {
        ASSERT_EQ(append_message(store_, section, text.c_str(), registered(file), line), 0);
        model_.append(section, text, file, line);
        learnOffset(section, model_.count(section) - 1);
    }
    void replace(int section, int number, const std::string& text, const std::string& file,
                 int line) {
        const bool good = number < model_.count(section);
        ASSERT_EQ(replace_message(store_, section, number, text.c_str(), registered(file), line),
                  good ? 0 : -1);
        if (!good) return;
        model_.replace(section, number, text, file, line);
        learnOffset(section, number);
    }
    void setMessage(int section, int number, const std::string& text) {
        ASSERT_EQ(set_message(store_, section, number, text.c_str()), 0);
        if (number < model_.count(section)) {
            model_.replace(section, number, text, "", 0);
            learnOffset(section, number);
            return;
        }
        while (model_.count(section) <= number) {
            const int next = model_.count(section);
            model_.append(section, next < number ? "undefined message" : text, "", 0);
            learnOffset(section, next);
        }
    }
    void setParameter(int section, const std::string& text, const std::string& file, int line) {
        const int result = set_parameter(store_, section, text.c_str(), registered(file), line);
        const int number = model_.setParameter(section, text, file, line);
        ASSERT_EQ(result, number != StoreModel::none || !file.empty() ? 0 : -1);
        if (number != StoreModel::none) learnOffset(section, number);
    }
    void setVariableUnrecorded(int section, const std::string& text) {
        model_.recordFlag = false;
        const bool flag = set_record_flag(false);
        setParameter(section, text, "", 0);
        set_record_flag(flag);
        model_.recordFlag = flag;
    }
    void remove(int section, const std::string& name) {
        ASSERT_EQ(remove_parameter(store_, section, name.c_str()),
                  model_.remove(section, name) ? 0 : -2);
    }
    void convertNewlines() {
        convert_newlines(store_);
        model_.convertNewlines();
    }

    void compareLookup(int section, const std::string& name, bool exact) const {
        const int number = model_.findEntry(section, name, exact, true);
        const text_record* record = nullptr;
        const char* value = find_parameter(store_, section, name.c_str(), exact, &record);
        ASSERT_EQ(value != nullptr, number != StoreModel::none) << name;
        ASSERT_EQ(record != nullptr, number != StoreModel::none);
        if (value == nullptr) return;
        ASSERT_EQ(value, model_.resolve(section, number)) << name;
        ASSERT_EQ(record, &recordOf(get_message(store_, section, number)));
    }
    void compareMessage(int section, int number) const {
        const StoreModel::Text& expected = model_.message(section, number);
        const char* text = get_message(store_, section, number);
        ASSERT_NE(text, nullptr);
        ASSERT_EQ(text, expected.deleted ? "" : expected.text);
        if (expected.deleted) return;
        ASSERT_EQ(offsetOf(text), expected.offset);
        const std::string origin =
            "from '" + expected.file + "' line " + std::to_string(expected.line);
        ASSERT_EQ(originOf(store_, text), expected.file.empty() ? "set by program" : origin);
        ASSERT_EQ(recordOf(text).flags, expected.persistent ? persistent_text : 0);
        ASSERT_EQ(recordOf(text).previous,
                  expected.previous == StoreModel::none ? -1 : model_.at(expected.previous).offset);
    }
    void compareAll() const {
        ASSERT_EQ(section_count(store_), model_.sections.size());
        for (int section = 0; section < section_count(store_); ++section) {
            const std::string& name = model_.sections[static_cast<std::size_t>(section)].name;
            ASSERT_EQ(section_name(store_, section), name);
            ASSERT_EQ(find_section(store_, name.c_str()), model_.findSection(name));
            ASSERT_EQ(message_count(store_, section), model_.count(section));
            for (int number = 0; number < model_.count(section); ++number)
                ASSERT_NO_FATAL_FAILURE(compareMessage(section, number));
        }
    }

    void saveParameters(const std::string& path) {
        ASSERT_EQ(store_parameters(store_, path.c_str()), 0);
        ASSERT_EQ(textOf(path), model_.saveParameters(path));
    }
    void saveMessages(const std::string& path) {
        ASSERT_EQ(store_messages(store_, path.c_str()), 0);
        ASSERT_EQ(textOf(path), model_.saveMessages());
    }

    // If `merge` is false, each line becomes a new message.
    void load(const std::string& path, bool merge) {
        std::ifstream lines(path);
        int number = 0;
        for (std::string line; std::getline(lines, line);) {
            ++number;
            if (line.substr(0, 1) == "[") {
                const std::string name = line.substr(1, line.find(']') - 1);
                merge ? findOrAddSection(name) : addSection(name);
                section_ = merge ? model_.findSection(name) : sections() - 1;
            } else if (merge) {
                setParameter(section_, line, path, number);
            } else {
                append(section_, line, path, number);
            }
        }
    }

    int sections() const { return static_cast<int>(model_.sections.size()); }
    int count(int section) const { return model_.count(section); }
    std::size_t texts() const { return model_.texts.size(); }
    const StoreModel::Text& text(std::size_t id) const { return model_.texts[id]; }

private:
    std::int32_t registered(const std::string& file) {
        return file.empty() ? byProgram : register_file_name(store_, file.c_str());
    }
    std::int32_t offsetOf(const char* text) const {
        return static_cast<std::int32_t>(text - get_message(store_, 0, 0)) + anchorOffset;
    }
    void learnOffset(int section, int number) {
        const int id = model_.idOf(section, number);
        model_.at(id).offset = offsetOf(get_message(store_, section, number));
        model_.idsByOffset[model_.at(id).offset] = id;
    }

    Store store_;
    StoreModel model_;
    int section_ = 0;
};

class Player {
public:
    explicit Player(unsigned seed) : random_(seed) {}

    void play(Pair& pair) {
        const int section = 1 + number(pair.sections() - 1);
        const int count = pair.count(section);
        const int choice = number(100);
        if (choice < 1 && pair.sections() < 12) return pair.addSection(name());
        if (choice < 3 && pair.sections() < 12) return pair.findOrAddSection(name());
        if (choice < 13) return pair.append(section, text(pair), file(), number(70000) % 65536);
        if (choice < 23) {
            return pair.replace(section, number(count + 1), text(pair), file(), number(1000));
        }
        if (choice < 27) return pair.setMessage(section, number(count + 3), text(pair));
        if (choice < 47) return pair.setParameter(section, text(pair), file(), number(1000));
        if (choice < 49) return pair.setVariableUnrecorded(section, text(pair));
        if (choice < 55) return pair.remove(section, name());
        if (choice < 80) return pair.compareLookup(section, name(), number(2) == 0);
        if (choice == 99 && number(50) == 0) return pair.convertNewlines();
        if (count > 0) pair.compareMessage(section, number(count));
    }

    int number(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }

    std::array<std::string, 3> files;

private:
    std::string name() {
        static const std::array<const char*, 12> names = {
            "A", "a", "B", "Path", "PATH", "pAtH", "", "two words", "x+y", "\xE4+", "C1", "c1"};
        return names[static_cast<std::size_t>(number(names.size()))];
    }
    std::string file() {
        const int choice = number(4);
        return choice == 3 ? "" : files[static_cast<std::size_t>(choice)];
    }
    std::string text(const Pair& pair) {
        const int kind = number(20);
        std::string result = kind == 0 ? "no entry" : name();
        if (kind == 1) result = " \t" + result;
        if (kind > 1) result += number(2) == 0 ? " = " : "=";
        static const std::array<const char*, 8> pieces = {"x",   "++",  ";y", "a b",
                                                          "\\n", "(z)", "=",  "C:\\new"};
        for (int piece = number(4); piece > 0; --piece)
            result += pieces[static_cast<std::size_t>(number(pieces.size()))];
        if (number(3) == 0) result += "+";
        if (number(40) == 0) result += "+";
        if (number(3) == 0) result += ",";
        if (number(20) == 0) result += literalReference(pair);
        return result;
    }
    std::string literalReference(const Pair& pair) {
        const auto any = static_cast<std::size_t>(number(static_cast<int>(pair.texts())));
        const int offset = number(2) == 0 ? pair.text(any).offset : number(1 << 20);
        return StoreModel::reference(offset);
    }

    std::mt19937 random_;
};

TEST(MessageStoreModel, AgreesThroughAHundredThousandOperationsAndEachSaveAndReload) {
    constexpr int operations = 100000;
    constexpr int operationsPerSave = 1000;
    const TemporaryDirectory directory;
    const ChannelLog log;
    Player player(20240507);
    for (std::size_t i = 0; i < player.files.size(); ++i)
        player.files[i] = (directory / ("file" + std::to_string(i) + ".cfg")).string();

    auto pair = std::make_unique<Pair>();
    pair->addSection("first");
    for (int operation = 1; operation <= operations; ++operation) {
        player.play(*pair);
        if (::testing::Test::HasFatalFailure()) FAIL() << "operation " << operation;
        if (operation % operationsPerSave != 0) continue;

        ASSERT_NO_FATAL_FAILURE(pair->compareAll());
        const bool parameters = player.number(2) == 0;
        const std::string& path = player.files[static_cast<std::size_t>(player.number(3))];
        parameters ? pair->saveParameters(path) : pair->saveMessages(path);
        ASSERT_NO_FATAL_FAILURE(pair->compareAll());

        auto loaded = std::make_unique<Pair>();
        loaded->load(path, parameters);
        ASSERT_NO_FATAL_FAILURE(loaded->compareAll());
        ASSERT_FALSE(::testing::Test::HasFailure()) << "operation " << operation;
        // After every few saves the test continues with the loaded store.
        if (operation % (5 * operationsPerSave) == 0 && loaded->sections() > 1)
            pair = std::move(loaded);
    }
}

}  // namespace
}  // namespace trv
