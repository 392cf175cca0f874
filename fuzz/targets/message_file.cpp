// A message file of any bytes. It is loaded from a file and from memory. A second file is merged
// over it, and the result is saved and loaded again.

#include <fuzz/harness/configured_variables.h>
#include <fuzz/harness/host_channels.h>
#include <fuzz/harness/input_reader.h>
#include <fuzz/harness/own_directory.h>
#include <fuzz/harness/plain_messages.h>
#include <fuzz/harness/require.h>
#include <fuzz/harness/storage_balance.h>
#include <fuzz/targets.h>
#include <tests/environment/store_access.h>
#include <trvfiles/environment/entry_text.h>
#include <trvfiles/environment/message_file.h>
#include <trvfiles/environment/store_writer.h>
#include <trvfiles/support/blanks.h>
#include <trvfiles/support/line_source.h>

#include <algorithm>
#include <string>
#include <vector>

namespace trv::fuzz {
namespace {

using testing::messagesOf;
using testing::Store;
using StoreHandle = std::unique_ptr<message_store, testing::StoreDestroyer>;

// A supplier of lines of a host.
class TextLines : public VCL8BLineSource {
public:
    explicit TextLines(std::string_view text) : rest_(text) {}

    std::uint64_t lineNumber() const override { return number_; }
    std::uint64_t readLine(char* buffer, std::int32_t size) override {
        if (rest_.empty()) return 0;
        ++number_;
        const std::size_t end = rest_.find('\n');
        const bool isTerminated = end != std::string_view::npos;
        const std::string_view line = rest_.substr(0, isTerminated ? end + 1 : end);
        buffer[line.copy(buffer, static_cast<std::size_t>(size - 1))] = '\0';
        // The end of the text after a full buffer counts as one character, like a newline.
        const bool isFull = line.size() >= static_cast<std::size_t>(size - 1);
        const std::uint64_t length = line.size() + (isFull && !isTerminated ? 1 : 0);
        rest_.remove_prefix(line.size());
        return length;
    }

private:
    std::string_view rest_;
    std::uint64_t number_ = 1;
};

int addSection(message_store* store, const char* name) {
    const int section = add_section(store, name);
    return section == 65535 ? -1 : section;
}

bool haveSameMessages(const message_store* left, const message_store* right) {
    if (section_count(left) != section_count(right)) return false;
    for (int section = 0; section < section_count(left); ++section) {
        if (std::string(section_name(left, section)) != section_name(right, section)) return false;
        if (messagesOf(left, section) != messagesOf(right, section)) return false;
    }
    return true;
}

bool holds(const message_store* store, const std::vector<PlainSection>& expected) {
    if (section_count(store) != static_cast<int>(expected.size())) return false;
    int section = 0;
    for (const PlainSection& plain : expected) {
        if (section_name(store, section) != plain.name) return false;
        if (messagesOf(store, section++) != plain.messages) return false;
    }
    return true;
}

std::vector<int> countsOf(const message_store* store) {
    std::vector<int> counts;
    for (int section = 0; section < section_count(store); ++section)
        counts.push_back(message_count(store, section));
    return counts;
}

// The comment and the trailing blanks of a line are removed, and the line ends at 1023 characters.
bool isKeptByALine(const std::string& text) {
    constexpr std::size_t maxLineLength = 1023;
    return text.find('#') == std::string::npos && text.size() < maxLineLength &&
           (text.empty() || !is_blank(text.back()));
}

// The texts that a save writes, section by section; empty if a line cannot hold one of them.
std::vector<std::string> savedTexts(const message_store* store) {
    std::vector<std::string> texts;
    for (int section = 0; section < section_count(store); ++section) {
        const std::vector<std::string> messages = messagesOf(store, section);
        if (messages.empty()) continue;
        if (!isKeptByALine("[" + std::string(section_name(store, section)) + "]")) return {};
        for (const std::string& message : messages) {
            const std::string text = without_references(message);
            if (!isKeptByALine(text)) return {};
            texts.push_back(text);
        }
    }
    return texts;
}

void requireASaveLoads(const std::string& path) {
    const StoreHandle merged(create_store());
    if (load_message_file(merged.get(), path.c_str()) == nullptr) return;
    const std::vector<std::string> expected = savedTexts(merged.get());
    require(store_parameters(merged.get(), path.c_str()) == 0,
            "a store that was loaded can be saved");
    if (expected.empty()) return;

    const StoreHandle again(create_store());
    require(load_message_file(again.get(), path.c_str()) != nullptr, "a saved file can be loaded");
    std::vector<std::string> texts;
    for (int section = 0; section < section_count(again.get()); ++section) {
        for (const std::string& message : messagesOf(again.get(), section))
            texts.push_back(message);
    }
    require(texts == expected, "a saved file loads the same");
}

void check(InputReader& input) {
    const std::string_view first = input.piece();
    const std::string_view second = input.rest();

    const std::string path = writeOwnFile("first.msg", first);
    const StoreHandle fromFile(load_message_file(nullptr, path.c_str()));
    const StoreHandle fromLines(create_store());
    TextLines lines(first);
    require(load_messages(fromLines.get(), lines, "lines", addSection, append_message) == 0,
            "any lines load");
    require(fromFile == nullptr || haveSameMessages(fromFile.get(), fromLines.get()),
            "a file loads like its lines");
    require(fromFile == nullptr || holds(fromFile.get(), parseMessagesPlainly(first)),
            "sections and messages are as the rules say");

    const std::string other = writeOwnFile("second.msg", second);
    const bool isMerged = load_message_file(fromLines.get(), other.c_str()) != nullptr;
    const std::vector<int> counts = countsOf(fromLines.get());
    const bool isMergedAgain = load_message_file(fromLines.get(), other.c_str()) != nullptr;
    require(isMerged == isMergedAgain, "a file loads again with the same result");
    require(countsOf(fromLines.get()) == counts, "a file merged again adds nothing");
    require(store_messages(fromLines.get(), ownFile("all.msg").c_str()) == 0,
            "everything that was loaded can be saved");
    requireASaveLoads(other);
}

}  // namespace

void checkMessageFile(std::string_view input) {
    const StorageBalance balance;
    InputReader reader(input);
    const unsigned host = reader.byte();
    const HostChannels channels((host & 1U) != 0, (host & 2U) != 0);
    ConfiguredVariables variables;
    variables.variable("ONE = 1");
    variables.variable("TWO = two words");
    variables.variable("EMPTY =");
    try {
        check(reader);
    } catch (const FatalReport&) {
        require((host & 1U) != 0, "a handler that returns throws nothing");
    }
}

}  // namespace trv::fuzz
