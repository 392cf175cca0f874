// Machine context files that are truncated, changed, huge or random.

#include <tests/common/channel_log.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <tests/facade/memory_equality.h>
#include <tests/machine_context/context_samples.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <map>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;

namespace {

const std::string completeText =
    "[header]\nversion=2\ncomment=first op\nname=Setup A\n"
    "[machine]\nname=MILL5\nposition=POS1\nproximity=10.000000\n"
    "[postpro]\norigin_program=12.500000 0.000000 -3.000000\nreference_axis=transfo.dat\n"
    "[part]\nsurface_group=FACES\n"
    "[clamping_system]\nname=VISE\nproximity=2.500000\n";

std::string trimmed(std::string text) {
    const char* blanks = " \t\f\v\n\r";
    text.erase(0, text.find_first_not_of(blanks));
    text.erase(text.find_last_not_of(blanks) + 1);
    return text;
}

/// A second implementation of the rules of the format, as simple as possible.
class Model {
public:
    explicit Model(const std::string& text) {
        std::istringstream stream(text.rfind("\xEF\xBB\xBF", 0) == 0 ? text.substr(3) : text);
        std::string name;
        for (std::string line; std::getline(stream, line);) {
            if (!line.empty() && line.back() == '\r') line.pop_back();
            if (line.empty() && stream.eof()) break;
            const std::size_t end = line.find(']');
            const std::size_t equals = line.find('=');
            if (line.rfind('[', 0) == 0 && end != std::string::npos) {
                name = trimmed(line.substr(1, end - 1));
                sections_.erase(name);
                continue;
            }
            Keys& section = sections_[name];
            if (line.rfind('#', 0) != 0 && equals != std::string::npos)
                section[trimmed(line.substr(0, equals))] = trimmed(line.substr(equals + 1));
        }
    }

    EFileIOStatus read(CMachineContextData& data) const {
        take("header", "comment", data, &CMachineContextData::setComment);
        take("header", "name", data, &CMachineContextData::setName);
        if (sections_.count("machine") != 0) {
            if (!take("machine", "name", data, &CMachineContextData::setMachineName) ||
                !take("machine", "position", data, &CMachineContextData::setMachinePosition))
                return eFileIOContentError;
            if (const auto number = valueOf("machine", "proximity"))
                data.setMachineProximity(std::strtod(number->c_str(), nullptr));
        }
        if (sections_.count("postpro") != 0) {
            const auto origin = valueOf("postpro", "origin_program");
            if (!origin) return eFileIOContentError;
            const char* start = origin->c_str();
            double numbers[3] = {};
            int count = 0;
            for (char* end = nullptr; count < 3; ++count, start = end) {
                numbers[count] = std::strtod(start, &end);
                if (end == start) break;
            }
            if (count == 3) data.setOriginProgram(numbers[0], numbers[1], numbers[2]);
            take("postpro", "reference_axis", data,
                 &CMachineContextData::setReferenceAxisForOriginProgram);
        }
        take("part", "surface_group", data, &CMachineContextData::setSurfaceGroup);
        take("clamping_system", "name", data, &CMachineContextData::setClampingSystem);
        if (const auto number = valueOf("clamping_system", "proximity"))
            data.setClampingProximity(std::strtod(number->c_str(), nullptr));
        return eFileIOSuccess;
    }

private:
    using Keys = std::map<std::string, std::string>;

    std::optional<std::string> valueOf(const char* section, const char* key) const {
        const auto found = sections_.find(section);
        if (found == sections_.end()) return {};
        const auto value = found->second.find(key);
        if (value == found->second.end()) return {};
        return value->second;
    }

    bool take(const char* section, const char* key, CMachineContextData& data,
              void (CMachineContextData::*set)(const std::string&)) const {
        const auto value = valueOf(section, key);
        if (value) (data.*set)(*value);
        return value.has_value();
    }

    std::map<std::string, Keys> sections_;
};

/// Any byte except the one that ends a text file on Windows.
char randomByte(std::mt19937& random) {
    const char byte = static_cast<char>(random());
    return byte == 0x1A ? 'x' : byte;
}

class DamagedContext : public ::testing::Test {
protected:
    /// Reads a text and expects the result of the model.
    EFileIOStatus expectAsTheModel(const std::string& text) {
        // A new file each time, because some file systems write a truncated file to the disk at
        // once.
        fs::remove(path);
        writeBytes(path, text);
        CMachineContextData data = prefilled();
        const EFileIOStatus status = readContext(path, data);
        CMachineContextData expected = prefilled();
        EXPECT_EQ(status, Model(text).read(expected)) << text;
        EXPECT_EQ(ContextFields(data), ContextFields(expected)) << text;
        expectContextAsInMemory(path);
        return status;
    }

    TemporaryDirectory directory;
    fs::path path = directory / "f.mctx";
    ChannelLog log;
};

}  // namespace

TEST_F(DamagedContext, IsReadUpToThePlaceAtWhichItIsCut) {
    for (const std::string& text : {completeText, "\xEF\xBB\xBF" + completeText}) {
        int complete = 0;
        int missing = 0;
        for (std::size_t length = 0; length <= text.size(); ++length) {
            const EFileIOStatus status = expectAsTheModel(text.substr(0, length));
            ++(status == eFileIOSuccess ? complete : missing);
            ASSERT_FALSE(HasFailure()) << length;
        }
        // From the first byte after "[machine]" to the "=" of "position=", and from the first byte
        // after "[postpro]" to the "=" of "origin_program=".
        EXPECT_EQ(missing, 19 + 14);
        EXPECT_EQ(complete, static_cast<int>(text.size()) + 1 - missing);
    }
}

TEST_F(DamagedContext, IsReadWhicheverLinesAreMissing) {
    std::vector<std::string> lines;
    std::istringstream stream(completeText);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line + "\n");
    ASSERT_EQ(lines.size(), 16U);
    for (unsigned kept = 0; kept < 1U << lines.size(); kept += 13) {
        std::string text;
        for (std::size_t line = 0; line < lines.size(); ++line) {
            if ((kept >> line & 1U) != 0) text += lines[line];
        }
        expectAsTheModel(text);
        ASSERT_FALSE(HasFailure());
    }
}

TEST_F(DamagedContext, IsReadByTheRulesWhateverHasChangedInIt) {
    std::mt19937 random(20260102);
    const std::string alphabet = "[]=#\n\r \tn0.-a\xEF\xBB\xBF\xC3\0"s;
    int complete = 0;
    for (int round = 0; round < 5000; ++round) {
        std::string text = completeText;
        for (std::size_t change = random() % 8; change > 0; --change) {
            const std::size_t place = random() % text.size();
            const std::size_t length = random() % 12;
            switch (random() % 4) {
                case 0:
                    text[place] = alphabet[random() % alphabet.size()];
                    break;
                case 1:
                    text.erase(place, length);
                    break;
                case 2:
                    text.insert(place, completeText.substr(random() % completeText.size(), length));
                    break;
                default:
                    text[place] = randomByte(random);
            }
            if (text.empty()) text = "\n";
        }
        complete += expectAsTheModel(text) == eFileIOSuccess ? 1 : 0;
        ASSERT_FALSE(HasFailure()) << round;
    }
    EXPECT_GT(complete, 500);
    EXPECT_LT(complete, 4500);
}

TEST_F(DamagedContext, OfRandomBytesSetsNothing) {
    std::mt19937 random(20260103);
    for (int round = 0; round < 3000; ++round) {
        std::string text(random() % 300, ' ');
        for (char& byte : text)
            byte = randomByte(random);
        EXPECT_EQ(expectAsTheModel(text), eFileIOSuccess);
    }
    EXPECT_TRUE(log.errors().empty() && log.fatals().empty() && log.traces().empty());
}

TEST_F(DamagedContext, OfRandomLinesIsReadByTheRules) {
    const char* lines[] = {"[header]",
                           "[machine]",
                           "[postpro]",
                           "[part]",
                           "[clamping_system]",
                           "[ machine ]",
                           "[Machine]",
                           "[]",
                           "[x",
                           "",
                           " ",
                           "name=n",
                           "name = m ",
                           "position=p",
                           "proximity=1.5",
                           "proximity=",
                           "origin_program=1 2 3",
                           "origin_program=4 5",
                           "reference_axis=r",
                           "surface_group=s",
                           "comment=c",
                           "#name=x",
                           "version=3",
                           "word",
                           "\xEF\xBB\xBF"};
    const char* ends[] = {"\n", "\n", "\r\n", "\n\n", "\r\r\n", ""};
    std::mt19937 random(20260104);
    for (int round = 0; round < 5000; ++round) {
        std::string text;
        for (std::size_t line = random() % 20; line > 0; --line) {
            text += lines[random() % std::size(lines)];
            text += ends[random() % std::size(ends)];
        }
        expectAsTheModel(text);
        ASSERT_FALSE(HasFailure()) << round;
    }
}

TEST_F(DamagedContext, OfAMillionLinesIsRead) {
    std::string text;
    for (int line = 0; line < 250000; ++line)
        text += "[header]\nname=" + std::to_string(line) + "\n# comment\n\n";
    text += completeText;
    for (int line = 0; line < 1000000; ++line)
        text += "key" + std::to_string(line) + "=value\n";
    writeBytes(path, text);
    CMachineContextData data = prefilled();
    EXPECT_EQ(readContext(path, data), eFileIOSuccess);
    EXPECT_EQ(ContextFields(data), ContextFields(allFields()));
}

TEST_F(DamagedContext, WithALineOfAHundredMillionBytesIsRead) {
    const std::size_t length = 100000000;
    writeBytes(path, "[header]\nunknown=" + std::string(length, 'x') +
                         "\ncomment=" + std::string(length, 'c') + "\nname=n\n");
    CMachineContextData data;
    EXPECT_EQ(readContext(path, data), eFileIOSuccess);
    EXPECT_EQ(data.getName(), "n");
    const std::string comment = data.getComment();
    EXPECT_EQ(comment.size(), length);
    EXPECT_EQ(comment.find_first_not_of('c'), std::string::npos);
}

TEST_F(DamagedContext, BeyondTheMaxSizeGivesTwo) {
    writeBytes(path, completeText);
    fs::resize_file(path, 268435457);
    CMachineContextData data = prefilled();
    EXPECT_EQ(readContext(path, data), eFileIOOpenError);
    EXPECT_EQ(ContextFields(data), ContextFields(prefilled()));
    if (!fs::exists("/dev/zero")) GTEST_SKIP() << "there is no file here that never ends";
    EXPECT_EQ(readContext("/dev/zero", data), eFileIOOpenError);
    EXPECT_EQ(ContextFields(data), ContextFields(prefilled()));
}

TEST_F(DamagedContext, OfAnotherKindIsASettingsFileWithoutSections) {
    for (const std::string& text :
         {"<?xml version=\"1.0\"?>\n<ComponentInfo version=\"1\"/>\n"s, "PK\x03\x04\0\0"s,
          "      1\n      1.000000      0.000000\n  #0 0 0\n"s}) {
        writeBytes(path, text);
        CMachineContextData data = prefilled();
        EXPECT_EQ(readContext(path, data), eFileIOSuccess);
        EXPECT_EQ(ContextFields(data), ContextFields(prefilled()));
    }
}
