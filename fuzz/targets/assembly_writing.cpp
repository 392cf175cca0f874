// Any assembly record. Both writers write it, and both readers read the file back.

#include <fuzz/harness/assembly_record.h>
#include <fuzz/harness/input_reader.h>
#include <fuzz/harness/require.h>
#include <fuzz/targets.h>
#include <tests/assembly/dom_writer.h>
#include <trvfiles/assembly/assembly_reader.h>
#include <trvfiles/assembly/assembly_writer.h>
#include <trvfiles/assembly/block_writer.h>
#include <trvfiles/assembly/component_body.h>
#include <trvfiles/assembly/dom_tree.h>
#include <trvfiles/text/text_conversion.h>

#include <QBuffer>
#include <QByteArray>

#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace trv::fuzz {
namespace {

// Enough for parents, siblings and what a file hides. Each further one costs the DOM 0.1 ms.
constexpr int maxComponents = 3;

double numberOf(InputReader& input) {
    constexpr double special[] = {1e-4,
                                  1e15,
                                  1e17,
                                  9007199254740992,
                                  std::numeric_limits<double>::max(),
                                  std::numeric_limits<double>::denorm_min(),
                                  std::numeric_limits<double>::infinity(),
                                  -std::numeric_limits<double>::quiet_NaN()};
    const unsigned form = input.byte();
    switch (form % 4) {
        case 0:
            return input.real();
        case 1:
            return special[form / 4 % std::size(special)];
        case 2:
            // Few decimal places.
            return (input.number(65536) - 32768) / 1000.0;
        default:
            // Few binary places, and halves: 18 digits that end in 5.
            return std::ldexp(input.number(65536) * 4 + 1, -static_cast<int>(form / 4) % 32);
    }
}

// Builds a tree from the commands in an input.
class Builder {
public:
    explicit Builder(std::string_view input) : input_(input) { open_.emplace_back(); }

    CTrvAssemblyData build() {
        const unsigned flags = input_.byte();
        givesFiles_ = flags % 8 != 0;
        hasBothReaders_ = flags % 32 >= 24;
        while (!input_.isAtEnd())
            command();
        while (open_.size() > 1)
            close();
        giveFile(open_.front());
        CTrvAssemblyData data;
        data.setDimension(dimension_);
        data.getRootComponent() = ComponentBody::toComponent(std::move(open_.front()));
        return data;
    }

    bool hasBothReaders() const { return hasBothReaders_; }

private:
    void command() {
        ComponentBody& component = open_.back();
        double* const vectors[] = {component.translation, component.vec1, component.vec2,
                                   component.vec3, dimension_};
        const unsigned what = input_.byte();
        switch (what % 8) {
            case 0:
                if (components_ < maxComponents) {
                    open_.emplace_back();
                    ++components_;
                }
                break;
            case 1:
                if (open_.size() > 1) close();
                break;
            case 2:
                component.name = input_.piece();
                break;
            case 3:
                component.comment = input_.piece();
                break;
            case 4:
                component.geometryFileName = input_.piece();
                break;
            case 5:
                component.enabled = !component.enabled;
                break;
            default:
                vectors[what / 8 % std::size(vectors)][what / 64 % 3] = numberOf(input_);
        }
    }

    // Most records can be written only if each component has a file or children.
    void giveFile(ComponentBody& component) const {
        if (givesFiles_ && component.components.empty() && component.geometryFileName.empty())
            component.geometryFileName = "f";
    }

    void close() {
        giveFile(open_.back());
        ComponentBody component = std::move(open_.back());
        open_.pop_back();
        open_.back().components.push_back(std::move(component));
    }

    InputReader input_;
    bool givesFiles_ = true;
    bool hasBothReaders_ = false;
    int components_ = 1;
    double dimension_[3] = {0, 0, 0};
    std::vector<ComponentBody> open_;
};

// What a file makes of a record, and what of it no file can hold.
struct Contents {
    bool hasEmptyComponent = false;
    bool hasNoncharacter = false;
    // Any but tab and line ends: written as they are, they are not allowed in a plain document.
    bool hasControlCharacter = false;
};

// Narrow text ends at its first zero, and bytes that are not UTF-8 become U+FFFD.
void passThroughFile(std::string& text, Contents& contents) {
    text = toNarrow(fromNarrow(text));
    contents.hasNoncharacter |= text.find("\xEF\xBF\xBE") != std::string::npos ||
                                text.find("\xEF\xBF\xBF") != std::string::npos;
    for (const char c : text) {
        const bool isEscaped = c == '\t' || c == '\n' || c == '\r';
        contents.hasControlCharacter |= c >= '\0' && c < ' ' && !isEscaped;
    }
}

// The signs of zeros and of NaN, and the other bits of NaN, are lost.
void passThroughFile(double vector[3]) {
    for (int i = 0; i < 3; ++i) {
        if (vector[i] == 0) vector[i] = 0;
        if (std::isnan(vector[i])) vector[i] = std::numeric_limits<double>::quiet_NaN();
    }
}

// Iterative, as all walks are.
Contents passThroughFile(CTrvAssemblyData& data) {
    double dimension[3];
    data.getDimension(dimension);
    passThroughFile(dimension);
    data.setDimension(dimension);
    ComponentBody root = ComponentBody::of(data.getRootComponent()).copy();
    Contents contents;
    std::vector<ComponentBody*> open = {&root};
    while (!open.empty()) {
        ComponentBody& component = *open.back();
        open.pop_back();
        passThroughFile(component.name, contents);
        passThroughFile(component.comment, contents);
        passThroughFile(component.geometryFileName, contents);
        for (double* vector :
             {component.translation, component.vec1, component.vec2, component.vec3})
            passThroughFile(vector);
        // A file hides the children.
        if (!component.geometryFileName.empty()) component.components.clear();
        const bool isGroup = !component.components.empty();
        contents.hasEmptyComponent |= component.geometryFileName.empty() && !isGroup;
        for (ComponentBody& child : component.components)
            open.push_back(&child);
    }
    data.getRootComponent() = ComponentBody::toComponent(std::move(root));
    return contents;
}

bool writeText(const CTrvAssemblyData& data, std::string& text) {
    CFileFault fault;
    const bool isAccepted = isWritable(data, &fault);
    require(isAccepted == fault.reason.empty(), "every refusal has a reason");
    if (!isAccepted) return false;
    BlockWriter out([&text](std::string_view block) {
        text += block;
        return true;
    });
    return writeAssembly(data, out);
}

CTrvAssemblyData readPlain(const QByteArray& document, bool& isPlain) {
    QBuffer device;
    device.setData(document);
    device.open(QIODevice::ReadOnly);
    CTrvAssemblyData data;
    int version = 0;
    isPlain = readPlainDocument(device, Accepted::unaltered, version, data);
    require(version == (isPlain ? 1 : 0), "the version is 1");
    return data;
}

// The DOM takes half of the time of an input, so it reads only some of the plain documents.
void requireItReadsBack(const std::string& text, const CTrvAssemblyData& expected,
                        const Contents& contents, bool hasBothReaders) {
    const std::string expectedBytes = bytesOf(expected);
    const QByteArray document = QByteArray::fromStdString(text);
    bool isPlain = false;
    const CTrvAssemblyData data = readPlain(document, isPlain);
    require(isPlain == !contents.hasControlCharacter,
            "a written file is plain unless a text contains a control character");
    require(!isPlain || bytesOf(data) == expectedBytes, "the scanner reads back the same");
    if (isPlain && !hasBothReaders) return;
    const Reading reading = readByDom(document);
    require(reading.status == eFileIOSuccess && reading.version == 1, "the DOM reads it");
    require(reading.fault.notes.empty(), "nothing in it is altered");
    require(bytesOf(reading.data) == expectedBytes, "the DOM reads back the same");
}

}  // namespace

void checkAssemblyWriting(std::string_view input) {
    setInvalidDataPolicy();
    Builder builder(input);
    const CTrvAssemblyData data = builder.build();
    std::string text;
    const bool isWritten = writeText(data, text);
    DomTree tree;
    std::string expectedText;
    require(testing::writeByDom(data, tree, expectedText) == isWritten,
            "both writers refuse the same records");
    CTrvAssemblyData expected = data;
    require(bytesOf(expected) == bytesOf(data), "a copy is equal");
    const Contents contents = passThroughFile(expected);
    require(isWritten == !(contents.hasEmptyComponent || contents.hasNoncharacter),
            "all but empty components and noncharacters is written");
    if (!isWritten) return;
    require(text == expectedText, "both writers write the same bytes");

    requireItReadsBack(text, expected, contents, builder.hasBothReaders());
}

}  // namespace trv::fuzz
