// A sequence of store calls, decoded from the bytes of the input. The results are compared with a
// plain model of a store. Storage may run out in any call.

#include <fuzz/harness/host_channels.h>
#include <fuzz/harness/input_reader.h>
#include <fuzz/harness/own_directory.h>
#include <fuzz/harness/require.h>
#include <fuzz/harness/storage_balance.h>
#include <fuzz/targets.h>
#include <tests/environment/store_access.h>
#include <tests/environment/store_model.h>
#include <trvfiles/environment/store_writer.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>

namespace trv::fuzz {
namespace {

using testing::byProgram;
using testing::StoreModel;

constexpr std::uint64_t noMaximum = 4294967295;
constexpr const char* names[] = {"A", "a", "B", "Path", "PATH", "", "two words", "x+y", "\xE4+"};
constexpr const char* pieces[] = {"x", "+", "++", ";y", "\\n", "(z)", "=", "C:\\new", " ", ")"};
constexpr const char* fileNames[] = {"f0.cfg", "f1.cfg", "f2.cfg"};

std::uint64_t permanentBytes() {
    char text[64];
    storage_report(text, sizeof text);
    return std::strtoull(std::strchr(text, ':') + 1, nullptr, 10);
}

class Player {
public:
    explicit Player(std::string_view input) : input_(input) {
        addSection("anchor");
        append(0, "anchor", {}, 0);
        addSection("first");
    }
    ~Player() { set_storage_maximum(noMaximum); }
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    void play() {
        constexpr int maxOperations = 300;
        for (int i = 0; i < maxOperations && !input_.isAtEnd(); ++i)
            playOne();
        set_storage_maximum(noMaximum);
        compareAll();
    }

private:
    void playOne() {
        const int section = 1 + input_.number(sectionCount() - 1);
        const int count = model_.count(section);
        switch (input_.number(14)) {
            case 0:
                return addSection(name());
            case 1:
                return findOrAddSection(name());
            case 2:
                return append(section, text(), file(), input_.number(65536));
            case 3:
                return replace(section, input_.number(count + 1), text(), file());
            case 4:
                return setMessage(section, input_.number(count + 4), text());
            case 5:
            case 6:
                return setParameter(section, text(), file());
            case 7:
                model_.recordFlag = !model_.recordFlag;
                set_record_flag(model_.recordFlag);
                return;
            case 8:
                return remove(section, name());
            case 9:
                return compareLookup(section, name(), input_.number(2) == 0);
            case 10:
                convert_newlines(store_.get());
                return model_.convertNewlines();
            case 11:
                return saveParameters(file());
            case 12:
                return saveMessages();
            default:
                return limitStorage();
        }
    }

    std::string name() { return names[input_.number(std::size(names))]; }
    std::string file() {
        const auto choice = static_cast<std::size_t>(input_.number(4));
        return choice == std::size(fileNames) ? "" : ownFile(fileNames[choice]);
    }
    std::string text() {
        std::string result = name() + (input_.number(8) == 0 ? "" : " = ");
        for (int piece = input_.number(8); piece > 0; --piece) {
            const auto choice = static_cast<std::size_t>(input_.byte());
            if (choice < std::size(pieces)) {
                result += pieces[choice];
            } else if (choice == std::size(pieces)) {
                result += reference();
            } else {
                result += static_cast<char>(choice);
            }
        }
        return result;
    }
    // A reference to a text of the store, or to nothing.
    std::string reference() {
        const auto text = static_cast<std::size_t>(input_.byte());
        return StoreModel::reference(text < model_.texts.size() ? model_.texts[text].offset
                                                                : static_cast<int>(4 * text));
    }

    int sectionCount() const { return static_cast<int>(model_.sections.size()); }

    // A valid call may fail only if the storage is limited.
    bool hasSucceeded(bool result) const {
        require(result || isLimited_, "a call fails only if there is no storage");
        return result;
    }

    bool registered(const std::string& file, std::int32_t& registration) {
        registration = file.empty() ? byProgram : register_file_name(store_.get(), file.c_str());
        return hasSucceeded(file.empty() || registration >= 0);
    }

    void addSection(const std::string& name) {
        const std::uint16_t added = add_section(store_.get(), name.c_str());
        if (!hasSucceeded(added != 65535)) return;
        require(added == model_.sections.size(), "a section is added at the end");
        model_.sections.push_back({name, {}});
    }
    void findOrAddSection(const std::string& name) {
        const int known = model_.findSection(name);
        const int found = find_or_add_section(store_.get(), name.c_str());
        if (!hasSucceeded(found != -1)) return;
        require(found == (known == StoreModel::none ? sectionCount() : known),
                "the first section of a name is found");
        if (known == StoreModel::none) model_.sections.push_back({name, {}});
    }
    void append(int section, const std::string& text, const std::string& file, int line) {
        std::int32_t registration = byProgram;
        if (!registered(file, registration)) return;
        const int code = append_message(store_.get(), section, text.c_str(), registration, line);
        if (!hasSucceeded(code == 0)) return;
        model_.append(section, text, file, line);
        learnOffsets(section, model_.count(section) - 1);
    }
    void replace(int section, int number, const std::string& text, const std::string& file) {
        std::int32_t registration = byProgram;
        if (!registered(file, registration)) return;
        const bool isThere = number < model_.count(section);
        const int code =
            replace_message(store_.get(), section, number, text.c_str(), registration, 1);
        require(isThere || code == -1, "only an existing message is replaced");
        if (!isThere || !hasSucceeded(code == 0)) return;
        model_.replace(section, number, text, file, 1);
        learnOffsets(section, number);
    }
    void setMessage(int section, int number, const std::string& text) {
        if (!hasSucceeded(set_message(store_.get(), section, number, text.c_str()) == 0)) return;
        const int first = std::min(number, model_.count(section));
        if (number < model_.count(section)) {
            model_.replace(section, number, text, "", 0);
        } else {
            while (model_.count(section) < number)
                model_.append(section, "undefined message", "", 0);
            model_.append(section, text, "", 0);
        }
        learnOffsets(section, first);
    }
    void setParameter(int section, const std::string& text, const std::string& file) {
        std::int32_t registration = byProgram;
        if (!registered(file, registration)) return;
        const int code = set_parameter(store_.get(), section, text.c_str(), registration, 1);
        if (!StoreModel::isEntry(text)) {
            require(code == (file.empty() ? -1 : 0), "a text that is not an entry is rejected");
            return;
        }
        if (!hasSucceeded(code == 0)) return;
        learnOffsets(section, model_.setParameter(section, text, file, 1));
    }
    void remove(int section, const std::string& name) {
        const int code = remove_parameter(store_.get(), section, name.c_str());
        require(code == (model_.remove(section, name) ? 0 : -2), "the first entry is removed");
    }

    void saveParameters(const std::string& file) {
        if (file.empty()) return;
        if (!hasSucceeded(store_parameters(store_.get(), file.c_str()) == 0)) return;
        require(testing::bytesOf(file) == model_.saveParameters(file),
                "the parameters of a file are saved");
    }
    void saveMessages() {
        const std::string file = ownFile("messages.msg");
        if (!hasSucceeded(store_messages(store_.get(), file.c_str()) == 0)) return;
        require(testing::bytesOf(file) == model_.saveMessages(), "all messages are written");
    }

    void limitStorage() {
        constexpr std::uint64_t step = 64;
        const auto choice = static_cast<std::uint64_t>(input_.byte());
        isLimited_ = choice != 0;
        set_storage_maximum(isLimited_ ? permanentBytes() + step * choice : noMaximum);
        compareAll();
    }

    void compareLookup(int section, const std::string& name, bool exact) const {
        constexpr double maxReplacements = 500;
        const int number = model_.findEntry(section, name, exact, true);
        const char* value = find_parameter(store_.get(), section, name.c_str(), exact);
        require((value != nullptr) == (number != StoreModel::none),
                "an entry is found if and only if it exists");
        if (value == nullptr) return;
        const auto id = static_cast<std::size_t>(model_.idOf(section, number));
        // The library cuts off values that double at each step. The model does not.
        if (costs_[id] > maxReplacements) return;
        require(value == model_.resolve(section, number), "references are resolved");
    }
    void compareAll() const {
        require(section_count(store_.get()) == sectionCount(), "sections are counted");
        for (int section = 0; section < sectionCount(); ++section) {
            const int count = model_.count(section);
            require(message_count(store_.get(), section) == count, "messages are counted");
            require(section_name(store_.get(), section) ==
                        model_.sections[static_cast<std::size_t>(section)].name,
                    "sections keep their names");
            for (int number = 0; number < count; ++number)
                compareMessage(section, number);
        }
    }
    void compareMessage(int section, int number) const {
        const StoreModel::Text& expected = model_.message(section, number);
        const char* text = get_message(store_.get(), section, number);
        require(text == (expected.deleted ? std::string() : expected.text), "texts do not change");
        if (expected.deleted) return;
        const std::string origin = expected.file.empty() ? "set by program"
                                                         : "from '" + expected.file + "' line " +
                                                               std::to_string(expected.line);
        require(testing::originOf(store_.get(), text) == origin, "texts keep their origin");
    }

    // The model also identifies texts by their offsets. The offset of the first text is known.
    void learnOffsets(int section, int number) {
        constexpr std::int32_t anchorOffset = 12;
        for (; number < model_.count(section); ++number) {
            const int id = model_.idOf(section, number);
            const char* text = get_message(store_.get(), section, number);
            if (model_.at(id).offset != StoreModel::none) continue;
            const auto offset = static_cast<std::int32_t>(text - get_message(store_.get(), 0, 0));
            model_.at(id).offset = offset + anchorOffset;
            model_.idsByOffset[offset + anchorOffset] = id;
            costs_.resize(model_.texts.size(), 1);
            costs_[static_cast<std::size_t>(id)] = costOf(model_.at(id));
        }
    }
    // An upper bound of the number of references that are replaced when a text is resolved.
    double costOf(const StoreModel::Text& text) const {
        const auto pluses = std::count(text.text.begin(), text.text.end(), '+');
        const double most = *std::max_element(costs_.begin(), costs_.end());
        return 1 + static_cast<double>(pluses) * most;
    }

    InputReader input_;
    testing::Store store_;
    StoreModel model_;
    std::vector<double> costs_;
    bool isLimited_ = false;
};

}  // namespace

void checkStoreOperations(std::string_view input) {
    const HostChannels channels;
    const StorageBalance balance;
    set_record_flag(true);
    Player(input).play();
    set_record_flag(true);
}

}  // namespace trv::fuzz
