// Streams that fail, and huge files.

#include <tests/common/file_bytes.h>
#include <tests/common/growth.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/machine_context/CSectionedFile.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <istream>
#include <map>
#include <random>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using namespace std::string_literals;
using trv::testing::growth;
using trv::testing::processorTime;
using trv::testing::TemporaryDirectory;
using trv::testing::writeBytes;

namespace {

constexpr std::uintmax_t maxBytes = 268435456;

std::string valueOf(const CSectionedFile& file, const std::string& section,
                    const std::string& key) {
    std::string value = "<none>";
    file.value(section, true, key, true, value);
    return value;
}

// Returns a text and then fails, so its stream becomes bad.
class FailingText : public std::stringbuf {
public:
    explicit FailingText(const std::string& text) : std::stringbuf(text, std::ios::in) {}

protected:
    int_type underflow() override {
        const int_type next = std::stringbuf::underflow();
        if (next == traits_type::eof()) throw std::runtime_error("the medium is gone");
        return next;
    }
};

// Returns the same byte forever.
class EndlessText : public std::streambuf {
protected:
    int_type underflow() override {
        for (char& byte : block_)
            byte = 'x';
        setg(block_, block_, block_ + sizeof block_);
        return traits_type::to_int_type(block_[0]);
    }

private:
    char block_[65536];
};

std::string trimmed(std::string text) {
    const char* blanks = " \t\f\v\n\r";
    text.erase(0, text.find_first_not_of(blanks));
    text.erase(text.find_last_not_of(blanks) + 1);
    return text;
}

// A reader of the format line by line, as simple as possible.
std::string expectedDump(const std::string& text) {
    std::map<std::string, std::vector<std::string>> sections;
    std::string name;
    std::vector<std::string> lines;
    const auto store = [&] {
        const auto isBlank = [](const std::string& line) { return trimmed(line).empty(); };
        if (!name.empty() || !std::all_of(lines.begin(), lines.end(), isBlank))
            sections[name] = lines;
        lines.clear();
    };
    std::istringstream stream(text.substr(text.rfind("\xEF\xBB\xBF", 0) == 0 ? 3 : 0));
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() && stream.eof()) break;
        const std::size_t end = line.find(']');
        if (line.rfind('[', 0) == 0 && end != std::string::npos) {
            store();
            name = trimmed(line.substr(1, end - 1));
        } else {
            lines.push_back(line);
        }
    }
    store();

    std::string dump;
    for (const auto& [sectionName, sectionLines] : sections) {
        std::map<std::string, std::string> keys;
        dump += "[" + sectionName + "]\n";
        for (const std::string& line : sectionLines) {
            dump += line + "\n";
            const std::size_t equals = line.find('=');
            if (line.rfind('#', 0) != 0 && equals != std::string::npos)
                keys[trimmed(line.substr(0, equals))] = trimmed(line.substr(equals + 1));
        }
        dump += "-- Vars:" + std::to_string(keys.size()) + " --\n";
        for (const auto& [key, value] : keys)
            dump += key + "={" + value + "}\n";
        dump += "------------------\n";
    }
    return dump;
}

}  // namespace

TEST(SectionedFileLimits, RefuseAStreamThatIsNotGoodAtTheStart) {
    for (const std::ios::iostate state : {std::ios::badbit, std::ios::failbit, std::ios::eofbit}) {
        std::istringstream stream("[s]\nk=v\n");
        stream.setstate(state);
        CSectionedFile file;
        EXPECT_EQ(file.parse(stream), -1);
        EXPECT_EQ(valueOf(file, "s", "k"), "<none>");
    }
    std::istream none(nullptr);
    EXPECT_EQ(CSectionedFile().parse(none), -1);
}

TEST(SectionedFileLimits, StopAtTheLineInWhichAStreamGoesBad) {
    FailingText text("[s]\nk=v\nj=w\nl=cut of");
    std::istream stream(&text);
    CSectionedFile file;
    EXPECT_EQ(file.parse(stream), 0);
    EXPECT_EQ(valueOf(file, "s", "k"), "v");
    EXPECT_EQ(valueOf(file, "s", "j"), "w");
    EXPECT_EQ(valueOf(file, "s", "l"), "<none>");
    EXPECT_EQ(file.section("s", true).lineCount(), 2);

    FailingText line("no line end");
    std::istream badFromTheFirstLine(&line);
    EXPECT_EQ(file.parse(badFromTheFirstLine), 0);
    EXPECT_EQ(file.section("", true).lineCount(), 0);
}

TEST(SectionedFileLimits, FailOnAFileThatCannotBeRead) {
    const TemporaryDirectory directory;
    std::FILE* opened = std::fopen(directory.text().c_str(), "rb");
    if (opened == nullptr) GTEST_SKIP() << "a directory does not open here";
    CSectionedFile file;
    std::istringstream before("[s]\nk=v\n");
    ASSERT_EQ(file.parse(before), 0);
    EXPECT_EQ(file.parse(opened), -1);
    EXPECT_EQ(valueOf(file, "s", "k"), "<none>");
    EXPECT_EQ(std::fclose(opened), 0);
}

TEST(SectionedFileLimits, FailOnAFileThatBreaksOff) {
    if (!fs::exists("/proc/self/mem")) GTEST_SKIP() << "there is no file here that breaks off";
    EXPECT_EQ(CSectionedFile().parseFile(L"/proc/self/mem"), -1);
}

TEST(SectionedFileLimits, AreReachedBeyond256MebibytesOfAFile) {
    const TemporaryDirectory directory;
    const fs::path path = directory / "f";
    writeBytes(path, "[s]\nk=v\n");
    fs::resize_file(path, maxBytes);
    CSectionedFile file;
    EXPECT_EQ(file.parseFile(path.wstring()), 0);
    EXPECT_EQ(valueOf(file, "s", "k"), "v");
    EXPECT_EQ(file.section("s", true).lineCount(), 2);
    fs::resize_file(path, maxBytes + 1);
    EXPECT_EQ(file.parseFile(path.wstring()), -1);
    EXPECT_EQ(valueOf(file, "s", "k"), "<none>");
}

TEST(SectionedFileLimits, AreReachedByAnEndlessStream) {
    EndlessText text;
    std::istream stream(&text);
    EXPECT_EQ(CSectionedFile().parse(stream), -1);
    if (!fs::exists("/dev/zero")) GTEST_SKIP() << "there is no file here that never ends";
    EXPECT_EQ(CSectionedFile().parseFile(L"/dev/zero"), -1);
}

TEST(SectionedFileLimits, HoldAMillionLines) {
    std::string text = "[s]\n";
    for (int line = 0; line < 1000000; ++line)
        text += "key" + std::to_string(line % 500000) + "=" + std::to_string(line) + "\n";
    text += "[t]\n" + std::string(1000000, '\n') + "k=v";
    std::istringstream stream(text);
    CSectionedFile file;
    ASSERT_EQ(file.parse(stream), 0);
    EXPECT_EQ(file.section("s", true).lineCount(), 1000000);
    EXPECT_EQ(valueOf(file, "s", "key0"), "500000");
    EXPECT_EQ(valueOf(file, "s", "key499999"), "999999");
    std::string value;
    int line = 0;
    EXPECT_TRUE(file.value("t", true, "k", true, value, &line));
    EXPECT_EQ(line, 2000002);
}

TEST(SectionedFileLimits, HoldAMillionSections) {
    std::string text;
    for (int section = 0; section < 1000000; ++section)
        text += "[" + std::to_string(section) + "]\n" + "k=" + std::to_string(section) + "\n";
    std::istringstream stream(text);
    CSectionedFile file;
    ASSERT_EQ(file.parse(stream), 0);
    EXPECT_EQ(valueOf(file, "0", "k"), "0");
    EXPECT_EQ(valueOf(file, "999999", "k"), "999999");
    EXPECT_EQ(file.section("999999", true).headerLine(), 1999998);
}

TEST(SectionedFileLimits, HoldLinesOfAnyLength) {
    const std::size_t length = 100000000;
    const TemporaryDirectory directory;
    writeBytes(directory / "f", "[s]\nk=" + std::string(length, 'x') + "\nj=w\n");
    CSectionedFile file;
    ASSERT_EQ(file.parseFile((directory / "f").wstring()), 0);
    EXPECT_EQ(valueOf(file, "s", "j"), "w");
    const std::string value = valueOf(file, "s", "k");
    EXPECT_EQ(value.size(), length);
    EXPECT_EQ(value.find_first_not_of('x'), std::string::npos);
}

// Sixteen times the text: linear work takes 16 times as long, n log n 20 times, quadratic 256
// times.
TEST(SectionedFileLimits, TakeATimeThatGrowsAsTheText) {
    // The clock of Windows also counts the time of other programs.
    if (trv::platform::backslash_separates()) GTEST_SKIP() << "no processor time to compare";
    const auto repeated = [](const std::string& lines, std::size_t size) {
        std::string text;
        while (text.size() < size)
            text += lines;
        return text;
    };
    const struct {
        const char* name;
        std::string before;  // repeated to half of the text
        std::string between;
        std::string after;  // repeated to the other half
    } inputs[] = {{"equal keys", "k=\n", "", "k=\n"},
                  {"equal headers", "[a]\n", "", "[a]\n"},
                  {"a long key with short ones", "a", "=\n", "a=\n"},
                  {"blanks before a key", " ", "a=\n", "a=\n"},
                  {"blanks before a value", "a=\n", "k=", " "},
                  {"a long header with short ones", "[", "]\n", "[a]\n"},
                  {"brackets without their ends", "[\n", "", "[\n"}};
    for (const auto& input : inputs) {
        const auto timeToParse = [&](int size) {
            const auto half = static_cast<std::size_t>(size) / 2;
            std::istringstream stream(repeated(input.before, half) + input.between +
                                      repeated(input.after, half));
            return processorTime([&] {
                CSectionedFile file;
                ASSERT_EQ(file.parse(stream), 0);
            });
        };
        EXPECT_LT(growth(16384, 262144, timeToParse), 80) << input.name;
    }
}

TEST(SectionedFileLimits, TakeRandomBytesByTheRules) {
    std::mt19937 random(20260101);
    const std::string alphabet = "[[]]==##\n\n\n\r \tab\xEF\xBB\xBF\0"s;
    const TemporaryDirectory directory;
    for (int round = 0; round < 20000; ++round) {
        std::string text(random() % 64, ' ');
        for (char& byte : text) {
            byte =
                round % 4 == 0 ? static_cast<char>(random()) : alphabet[random() % alphabet.size()];
        }
        if (round % 10 == 0) text.insert(0, "\xEF\xBB\xBF");
        std::istringstream stream(text);
        CSectionedFile file;
        ASSERT_EQ(file.parse(stream), 0);
        std::ostringstream dump;
        file.dump(dump);
        ASSERT_EQ(dump.str(), expectedDump(text));
        // On Windows a text file has an end mark, and "\r\r\n" is read as "\r\n".
        const bool isSameEverywhere =
            text.find('\x1A') == std::string::npos && text.find("\r\r\n") == std::string::npos;
        if (round % 100 != 0 || !isSameEverywhere) continue;
        writeBytes(directory / "f", text);
        ASSERT_EQ(file.parseFile((directory / "f").wstring()), 0);
        std::ostringstream same;
        file.dump(same);
        ASSERT_EQ(same.str(), dump.str());
    }
}
