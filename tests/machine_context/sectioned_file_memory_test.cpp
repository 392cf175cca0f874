// The peak memory of parsing. This test is a separate program, because it replaces the allocation
// functions of the whole program.

#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/machine_context/CSectionedFile.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <new>
#include <sstream>
#include <string>

using trv::testing::TemporaryDirectory;
using trv::testing::writeBytes;

namespace {

std::size_t bytesInUse = 0;
std::size_t peakBytes = 0;

// The size of each block is stored before it, in as many bytes as keep the block aligned.
constexpr std::size_t headerSize = alignof(std::max_align_t);
static_assert(headerSize >= sizeof(std::size_t));

}  // namespace

void* operator new(std::size_t size) {
    auto* const header = static_cast<char*>(std::malloc(headerSize + size));
    if (header == nullptr) throw std::bad_alloc();
    new (header) std::size_t(size);
    bytesInUse += size;
    peakBytes = std::max(peakBytes, bytesInUse);
    return header + headerSize;
}

void operator delete(void* block) noexcept {
    if (block == nullptr) return;
    char* const header = static_cast<char*>(block) - headerSize;
    bytesInUse -= *reinterpret_cast<std::size_t*>(header);
    std::free(header);
}

void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}

namespace {

/// The peak memory of a call, without the bytes in use before the call.
std::size_t peakOf(const std::function<void()>& call) {
    const std::size_t before = bytesInUse;
    peakBytes = before;
    call();
    return peakBytes - before;
}

// Slightly more than a power of two. A buffer that grows by doubling is then half empty.
constexpr std::size_t length = (std::size_t{1} << 20) + 10000;

std::string repeated(const std::string& lines) {
    std::string text;
    while (text.size() < length)
        text += lines;
    return text;
}

// All texts of this number of these characters, each between two other characters.
std::string names(const std::string& before, int size, const std::string& after) {
    const std::string letters =
        "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz!%&/()?";
    std::string text;
    std::string name(static_cast<std::size_t>(size), letters.front());
    std::size_t place = 0;
    while (place < name.size() && text.size() < length) {
        text.append(before).append(name).append(after);
        for (place = 0; place < name.size(); ++place) {
            const std::size_t next = letters.find(name[place]) + 1;
            name[place] = letters[next % letters.size()];
            if (next != letters.size()) break;
        }
    }
    return text;
}

struct Input {
    const char* name;
    std::string text;

    friend void PrintTo(const Input& input, std::ostream* stream) { *stream << input.name; }
};

class SectionedFileMemory : public ::testing::TestWithParam<Input> {
protected:
    void expectAtMostEightTimes(const char* reader, const std::function<void()>& parse) {
        const std::size_t size = GetParam().text.size();
        const std::size_t peak = peakOf(parse);
        const std::string tenths = std::to_string(peak * 10 / size);
        RecordProperty(std::string(reader) + "InTenthsOfTheText", tenths);
        EXPECT_LE(peak, 8 * size) << reader << ": " << tenths << " tenths";
    }
};

}  // namespace

TEST_P(SectionedFileMemory, IsAtMostEightTimesTheText) {
    const TemporaryDirectory directory;
    writeBytes(directory / "f", GetParam().text);
    const std::wstring path = (directory / "f").wstring();
    expectAtMostEightTimes("file", [&] {
        CSectionedFile file;
        EXPECT_EQ(file.parseFile(path), 0);
    });
    std::istringstream stream(GetParam().text);
    expectAtMostEightTimes("stream", [&] {
        CSectionedFile file;
        EXPECT_EQ(file.parse(stream), 0);
    });
}

INSTANTIATE_TEST_SUITE_P(
    Of, SectionedFileMemory,
    ::testing::Values(
        Input{"LinesOfAnEqualsSign", repeated("=\n")}, Input{"EqualKeys", repeated("k=\n")},
        Input{"ShortKeys", names("", 3, "=\n")},
        Input{"ShortKeysInManySections", repeated("[s]\n" + names("", 1, "=\n"))},
        Input{"ShortKeysInSectionsOfDifferentNames", names("[", 3, "]\na=\nb=\nc=\nd=\n")},
        Input{"EqualHeaders", repeated("[a]\n")},
        Input{"HeadersOfOneLetter", repeated(names("[", 1, "]\n"))},
        Input{"HeadersOfTwoLetters", names("[", 2, "]\n") + repeated("[a]\n")},
        Input{"HeadersOfThreeLetters", names("[", 3, "]\n")},
        Input{"HeadersWithoutANameOverAWord", repeated("[]\nx\n")},
        Input{"HeadersWithoutANameOverAKey", repeated("[]\n=\n")},
        Input{"HeadersWithoutAName", repeated("[]\n")},
        Input{"HeadersOverAKey", repeated("[a]\n=\n")},
        Input{"HeadersOfThreeLettersOverAKey", names("[", 3, "]\n=\n")},
        Input{"EmptyLines", repeated("\n")}, Input{"LinesOfABracket", repeated("[\n")},
        Input{"CommentsWithAnEqualsSign", repeated("#=\n")}, Input{"EqualsSigns", repeated("=")},
        Input{"OneLongLine", repeated("x")}, Input{"OneLongValue", "[s]\nk=" + repeated("x")},
        Input{"LongLines", repeated("k=" + std::string(100000, 'x') + "\n")},
        Input{"OneLongHeader", "[" + repeated("x") + "]\n"}),
    [](const auto& input) { return std::string(input.param.name); });
