// Documents that change, or cannot be read, between the scanner's reading and that of the DOM.

#include <tests/assembly/sample_components.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/assembly_reader.h>
#include <trvfiles/assembly/document_parser.h>
#include <trvfiles/assembly/dom_tree.h>
#include <trvfiles/support/CFileFault.h>

#include <QBuffer>
#include <QByteArray>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>

namespace {

using ::testing::ElementsAre;

// A document whose bytes from one place on cannot be read at first, and whose content may change
// when the device goes back to its beginning.
class ChangingDevice : public QBuffer {
public:
    explicit ChangingDevice(const QByteArray& content, qint64 readable = unlimited)
        : readable_(readable) {
        setData(content);
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    // What the second reading finds.
    void becomeAtSeek(const QByteArray& content, qint64 readable = unlimited) {
        next_ = content;
        nextReadable_ = readable;
    }

    bool seek(qint64 position) override {
        if (position == 0) {
            buffer() = next_;
            readable_ = nextReadable_;
        }
        return QBuffer::seek(position);
    }

protected:
    qint64 readData(char* data, qint64 size) override {
        constexpr qint64 step = 100;
        const qint64 left = readable_ - pos();
        if (left <= 0) return -1;
        return QBuffer::readData(data, std::min({size, left, step}));
    }

private:
    static constexpr qint64 unlimited = std::numeric_limits<qint64>::max();

    qint64 readable_;
    QByteArray next_;
    qint64 nextReadable_ = unlimited;
};

// The "1,5" is noted, so the scanner reads the document to its end and leaves it to the DOM.
const QByteArray noted =
    "<ComponentInfo version='3'><Attributs><Dimension x='1' y='2' z='3'/></Attributs>"
    "<Component name='root'><Translation x='1,5'/><Data number='2'>"
    "<Component name='a'><Data number='1'><File name='a.stl'/></Data></Component>"
    "<Component name='b'><Data number='1'><File name='b.stl'/></Data></Component>"
    "</Data></Component></ComponentInfo>";

const QByteArray other =
    "<ComponentInfo version='4'><Attributs/><Component name='other'>"
    "<Data number='1'><File name='o.stl'/></Data></Component></ComponentInfo>";

class SecondReading : public ::testing::Test {
protected:
    // The steps of CTrvAssemblyIO::read().
    EFileIOStatus read(QIODevice& device) {
        trv::setInvalidDataPolicy();
        if (trv::readPlainDocument(device, trv::Accepted::unaltered, version, data))
            return eFileIOSuccess;
        EXPECT_EQ(version, -1);
        expectUnchanged();
        EXPECT_TRUE(device.seek(0));
        trv::DomTree tree;
        fault = {};
        if (!trv::parseDocument(device, tree, &fault)) return eFileIOContentError;
        return trv::readDocument(tree.document, version, data, &fault);
    }

    void expectUnchanged() const {
        double dimension[3];
        data.getDimension(dimension);
        EXPECT_THAT(dimension, ElementsAre(0, 0, 0));
        EXPECT_TRUE(data.getRootComponent() == CTrvAssemblyComponentData());
    }

    int version = -1;
    CTrvAssemblyData data;
    CFileFault fault;
};

TEST_F(SecondReading, FindsTheRestOfADocumentThatGrows) {
    for (int length = 0; length < noted.size(); ++length) {
        version = -1;
        data = CTrvAssemblyData();
        ChangingDevice device(noted.left(length));
        device.becomeAtSeek(noted);
        ASSERT_EQ(read(device), eFileIOSuccess) << length;
        EXPECT_EQ(version, 3);
        EXPECT_EQ(data.getComponentNumber(), 2U);
        EXPECT_EQ(fault.notes.size(), 1U);
    }
}

TEST_F(SecondReading, RefusesADocumentThatShrinks) {
    for (int length = 0; length < noted.size(); ++length) {
        ChangingDevice device(noted);
        device.becomeAtSeek(noted.left(length));
        ASSERT_EQ(read(device), eFileIOContentError) << length;
        EXPECT_FALSE(fault.reason.empty());
        EXPECT_EQ(version, -1);
        expectUnchanged();
    }
}

TEST_F(SecondReading, KeepsNothingOfTheFirstOne) {
    ChangingDevice device(noted);
    device.becomeAtSeek(other);
    ASSERT_EQ(read(device), eFileIOSuccess);
    EXPECT_EQ(version, 4);
    double dimension[3];
    data.getDimension(dimension);
    EXPECT_THAT(dimension, ElementsAre(0, 0, 0));
    EXPECT_TRUE(data.getRootComponent() == trv::testing::leaf("other", "o.stl"));
    EXPECT_TRUE(fault.notes.empty());
}

TEST_F(SecondReading, ReadsWhatCouldNotBeReadAtFirst) {
    for (int readable = 0; readable < other.size(); ++readable) {
        version = -1;
        data = CTrvAssemblyData();
        ChangingDevice device(other, readable);
        device.becomeAtSeek(other);
        ASSERT_EQ(read(device), eFileIOSuccess) << readable;
        EXPECT_EQ(version, 4);
        EXPECT_TRUE(data.getRootComponent() == trv::testing::leaf("other", "o.stl"));
    }
}

// The scanner has seen the end of the root, but not whether a second one follows.
TEST_F(SecondReading, DecidesIfTheReadFailsAfterTheRoot) {
    const QByteArray unfinished = other + QByteArray(100000, '\n');
    for (const int readable : {other.size(), other.size() + 1, unfinished.size() - 1}) {
        version = -1;
        data = CTrvAssemblyData();
        ChangingDevice device(unfinished, readable);
        device.becomeAtSeek(noted);
        ASSERT_EQ(read(device), eFileIOSuccess) << readable;
        EXPECT_EQ(version, 3);
        EXPECT_EQ(data.getComponentNumber(), 2U);
    }
}

TEST_F(SecondReading, RefusesADocumentThatCannotBeReadToItsEnd) {
    for (int readable = 0; readable < noted.size(); ++readable) {
        ChangingDevice device(noted);
        device.becomeAtSeek(noted, readable);
        ASSERT_EQ(read(device), eFileIOContentError) << readable;
        EXPECT_EQ(version, -1);
        expectUnchanged();
    }
}

}  // namespace
