// Reading from memory and writing to it.

#include <tests/assembly/sample_components.h>
#include <tests/common/channel_log.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <tests/facade/memory_equality.h>
#include <trvfiles/support/dynamic_storage.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;

namespace {

/// The files of the samples, of the test data and of the seeds for fuzzing.
std::vector<fs::path> sampleFiles() {
    const fs::path examples = TRV_SAMPLE_PROJECT;
    const fs::path seeds = examples / ".." / ".." / "fuzz" / "corpus";
    std::vector<fs::path> files;
    for (const fs::path& root :
         {examples / "project", examples / "installation" / "standard", fs::path(TRV_TEST_DATA),
          seeds / "machine_context_read", seeds / "sectioned_file", seeds / "assembly_xml",
          seeds / "axis_text"}) {
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
            if (entry.is_regular_file()) files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

class SampleFile : public ::testing::TestWithParam<fs::path> {};

std::string nameOf(const ::testing::TestParamInfo<fs::path>& sample) {
    std::string name = std::to_string(sample.index) + '_' + sample.param.filename().string();
    for (char& c : name) {
        if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(All, SampleFile, ::testing::ValuesIn(sampleFiles()), nameOf);

const std::string machineContext =
    "[header]\nversion=2\ncomment=first op\nname=Setup A\n"
    "[machine]\nname=MILL5\nposition=POS1\nproximity=10.000000\n"
    "[postpro]\norigin_program=12.500000 0.000000 -3.000000\nreference_axis=transfo.dat\n"
    "[clamping_system]\nname=VISE\nproximity=2.500000\n";

const std::string axisLines =
    "      1.000000      0.000000      0.000000      7.000000\n"
    "      0.000000      1.000000      0.000000      8.000000\n"
    "      0.000000      0.000000      1.000000      9.000000\n"
    "      0.000000      0.000000      0.000000      1.000000\n";

struct Axis {
    double matrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 7, 8, 9, 1};
    int tags[3] = {-7, -8, -9};

    EFileIOStatus read(const std::string& bytes, CFileFault* fault = nullptr) {
        return CQvFilesIO::sReadAxisFromMemory(bytes, matrix, tags[0], tags[1], tags[2], fault);
    }
};

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

std::string assemblyOfDepth(int elements) {
    std::string text = "<ComponentInfo version='1'><Attributs/><Component name='a'/>";
    for (int i = 1; i < elements; ++i)
        text += "<x>";
    for (int i = 1; i < elements; ++i)
        text += "</x>";
    return text + "</ComponentInfo>";
}

}  // namespace

// Each reader gets every sample: those of the other formats are refused.
TEST_P(SampleFile, HasTheSameOutcomesInMemory) {
    expectContextAsInMemory(GetParam());
    expectAssemblyAsInMemory(GetParam());
    expectAxisAsInMemory(GetParam());
}

TEST_P(SampleFile, IsWrittenToMemoryAsToAFile) {
    const TemporaryDirectory directory;
    const std::string bytes = bytesOf(GetParam());
    CFileFault fault;
    std::string written;
    CMachineContextData context;
    static_cast<void>(CQvFilesIO::sReadMachineContextFromMemory(bytes, context));
    CQvFilesIO files(directory.text());
    ASSERT_EQ(files.writeMachineContext("f", context), eFileIOSuccess);
    EXPECT_EQ(CQvFilesIO::sWriteMachineContextToMemory(written, context, &fault), eFileIOSuccess);
    EXPECT_EQ(written, textOf(directory / "f"));

    CTrvAssemblyData assembly;
    static_cast<void>(CQvFilesIO::sReadTrvAssemblyFromMemory(bytes, assembly));
    CFileFault ofFile;
    fs::remove(directory / "f");
    const EFileIOStatus status = files.writeTrvAssembly("f", assembly, &ofFile);
    written.clear();
    EXPECT_EQ(reportOf(CQvFilesIO::sWriteTrvAssemblyToMemory(written, assembly, &fault), fault),
              reportOf(status, ofFile));
    EXPECT_EQ(written, bytesOf(directory / "f"));

    Axis axis;
    static_cast<void>(axis.read(bytes));
    ASSERT_EQ(files.writeAxis("f", axis.matrix, axis.tags[0], axis.tags[1], axis.tags[2]),
              eFileIOSuccess);
    EXPECT_EQ(CQvFilesIO::sWriteAxisToMemory(written, axis.matrix, axis.tags[0], axis.tags[1],
                                             axis.tags[2], &fault),
              eFileIOSuccess);
    EXPECT_EQ(written, textOf(directory / "f"));
}

TEST(ContextInMemory, IsWrittenAndRead) {
    std::string text = "old";
    EXPECT_EQ(CQvFilesIO::sWriteMachineContextToMemory(text, firstOperation()), eFileIOSuccess);
    EXPECT_EQ(text, machineContext);
    CMachineContextData data;
    EXPECT_EQ(CQvFilesIO::sReadMachineContextFromMemory(text, data), eFileIOSuccess);
    EXPECT_EQ(ContextFields(data), ContextFields(firstOperation()));
}

TEST(ContextInMemory, IsReadWithEachLineEnd) {
    CMachineContextData data;
    CFileFault fault;
    EXPECT_EQ(CQvFilesIO::sReadMachineContextFromMemory(replaced(machineContext, "\n", "\r\n"),
                                                        data, &fault),
              eFileIOSuccess);
    EXPECT_EQ(ContextFields(data), ContextFields(firstOperation()));
    EXPECT_TRUE(fault.notes.empty());
}

// In a file it ends the text on Windows.
TEST(ContextInMemory, TakesTheEndMarkOfWindowsAsAByte) {
    CMachineContextData data;
    EXPECT_EQ(CQvFilesIO::sReadMachineContextFromMemory("[header]\ncomment=a\x1A"
                                                        "b\nname=n\n",
                                                        data),
              eFileIOSuccess);
    EXPECT_EQ(data.getComment(),
              "a\x1A"
              "b");
    EXPECT_EQ(data.getName(), "n");
}

TEST(ContextInMemory, KeepsTheFieldsOfTheEmptyText) {
    CMachineContextData data = prefilled();
    EXPECT_EQ(CQvFilesIO::sReadMachineContextFromMemory({}, data), eFileIOSuccess);
    EXPECT_EQ(ContextFields(data), ContextFields(prefilled()));
}

TEST(ContextInMemory, HasAtMost256Mebibytes) {
    constexpr std::size_t max = 268435456;
    std::string text = "[header]\nname=n\n";
    text.resize(max, 'x');
    CMachineContextData data;
    CFileFault fault;
    EXPECT_EQ(CQvFilesIO::sReadMachineContextFromMemory(text, data, &fault), eFileIOSuccess);
    EXPECT_EQ(data.getName(), "n");
    text += 'x';
    EXPECT_EQ(CQvFilesIO::sReadMachineContextFromMemory(text, data, &fault), eFileIOOpenError);
    EXPECT_EQ(fault.reason, "the file is longer than 256 MiB");
}

TEST(ContextInMemory, IsNotWrittenWithoutStorage) {
    const ChannelLog log;
    std::string text = "old";
    CFileFault fault;
    trv::set_storage_maximum(1);
    EXPECT_EQ(CQvFilesIO::sWriteMachineContextToMemory(text, allFields(), &fault),
              eFileIOContentError);
    trv::set_storage_maximum(4294967295U);
    EXPECT_EQ(fault.reason, "no storage is left for the record");
    EXPECT_EQ(text, "old");
    EXPECT_TRUE(log.fatals().empty());
}

TEST(AssemblyInMemory, IsWrittenAndRead) {
    const CTrvAssemblyData assembly = assemblyOf(leaf("a<b", "a.stl"), {1, 2, 3});
    std::string bytes = "old";
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssemblyToMemory(bytes, assembly), eFileIOSuccess);
    EXPECT_EQ(bytes,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"  ?>\n"
              "<ComponentInfo version=\"1\">\n"
              "   <Attributs>\n"
              "      <Dimension x=\"1\" y=\"2\" z=\"3\"/>\n"
              "   </Attributs>\n"
              "   <Component name=\"a&lt;b\" comment=\"\" enabled=\"1\">\n"
              "      <Translation x=\"0\" y=\"0\" z=\"0\"/>\n"
              "      <Orientation>\n"
              "         <vec1 x=\"1\" y=\"0\" z=\"0\"/>\n"
              "         <vec2 x=\"0\" y=\"1\" z=\"0\"/>\n"
              "         <vec3 x=\"0\" y=\"0\" z=\"1\"/>\n"
              "      </Orientation>\n"
              "      <Data number=\"1\">\n"
              "         <File name=\"a.stl\"/>\n"
              "      </Data>\n"
              "   </Component>\n"
              "</ComponentInfo>\n");
    CTrvAssemblyData read;
    EXPECT_EQ(CQvFilesIO::sReadTrvAssemblyFromMemory(bytes, read), eFileIOSuccess);
    EXPECT_TRUE(read == assembly);
}

// More than one block of the writer and of the scanner.
TEST(AssemblyInMemory, HasSeveralBlocks) {
    const CTrvAssemblyData assembly = assemblyOf(group("root", Components(1000, leaf("a", "f"))));
    std::string bytes;
    ASSERT_EQ(CQvFilesIO::sWriteTrvAssemblyToMemory(bytes, assembly), eFileIOSuccess);
    EXPECT_GT(bytes.size(), 300000U);
    CTrvAssemblyData read;
    EXPECT_EQ(CQvFilesIO::sReadTrvAssemblyFromMemory(bytes, read), eFileIOSuccess);
    EXPECT_TRUE(read == assembly);
}

TEST(AssemblyInMemory, IsReadAsADocumentThatNeedsTheDom) {
    CTrvAssemblyData data;
    EXPECT_EQ(CQvFilesIO::sReadTrvAssemblyFromMemory(
                  "<!DOCTYPE ComponentInfo><ComponentInfo version='1'><Attributs/>"
                  "<Component name='a'><![CDATA[x]]></Component></ComponentInfo>",
                  data),
              eFileIOSuccess);
    EXPECT_EQ(data.getRootComponent().getName(), "a");
}

TEST(AssemblyInMemory, HasThePlaceOfAFault) {
    CTrvAssemblyData data = assemblyOf(named("old"));
    CFileFault fault;
    EXPECT_EQ(
        CQvFilesIO::sReadTrvAssemblyFromMemory("<ComponentInfo version='1'>\n <a>", data, &fault),
        eFileIOContentError);
    EXPECT_EQ(fault.line, 2);
    EXPECT_NE(fault.reason, "");
    EXPECT_EQ(CQvFilesIO::sReadTrvAssemblyFromMemory("<a/>", data, &fault), eFileIOStructureError);
    EXPECT_EQ(reportOf(eFileIOStructureError, fault),
              "5 1:3 the root element is <a>, not <ComponentInfo> (0)\n");
    EXPECT_EQ(CQvFilesIO::sReadTrvAssemblyFromMemory({}, data, &fault), eFileIOContentError);
    EXPECT_NE(fault.reason, "");
    EXPECT_EQ(data.getRootComponent().getName(), "old");
}

TEST(AssemblyInMemory, NestsAtMost2000Elements) {
    CTrvAssemblyData data;
    CFileFault fault;
    EXPECT_EQ(CQvFilesIO::sReadTrvAssemblyFromMemory(assemblyOfDepth(2000), data, &fault),
              eFileIOSuccess);
    EXPECT_EQ(CQvFilesIO::sReadTrvAssemblyFromMemory(assemblyOfDepth(2001), data, &fault),
              eFileIOContentError);
    EXPECT_EQ(fault.reason, "more than 2000 elements are open");
    EXPECT_EQ(fault.line, 1);
}

TEST(AssemblyInMemory, IsNotWrittenDeeperThan999Components) {
    std::string bytes = "old";
    CFileFault fault;
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssemblyToMemory(bytes, assemblyOf(chain(1000)), &fault),
              eFileIOContentError);
    EXPECT_EQ(fault.reason, "component \"level\" is nested too deeply");
    EXPECT_EQ(bytes, "old");
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssemblyToMemory(bytes, assemblyOf(chain(999)), &fault),
              eFileIOSuccess);
    EXPECT_EQ(fault.reason, "");
    CTrvAssemblyData read;
    EXPECT_EQ(CQvFilesIO::sReadTrvAssemblyFromMemory(bytes, read), eFileIOSuccess);
    EXPECT_TRUE(read == assemblyOf(chain(999)));
}

TEST(AxisInMemory, IsWrittenAndRead) {
    Axis axis;
    std::string text = "old";
    EXPECT_EQ(CQvFilesIO::sWriteAxisToMemory(text, axis.matrix, 4, 5, 6), eFileIOSuccess);
    EXPECT_EQ(text, "      1\n" + axisLines +
                        "      1.000000      0.000000      0.000000     -7.000000\n"
                        "      0.000000      1.000000      0.000000     -8.000000\n"
                        "      0.000000      0.000000      1.000000     -9.000000\n"
                        "      0.000000      0.000000      0.000000      1.000000\n"
                        "  #4 5 6\n");
    axis.matrix[12] = 0;
    CFileFault fault;
    EXPECT_EQ(axis.read(text, &fault), eFileIOSuccess);
    EXPECT_EQ(axis.matrix[12], 7);
    EXPECT_EQ(axis.tags[0], 4);
    EXPECT_EQ(axis.tags[2], 6);
    EXPECT_EQ(reportOf(eFileIOSuccess, fault), "1 0:0  (0)\n");
}

TEST(AxisInMemory, IsReadWithEachLineEnd) {
    Axis axis;
    EXPECT_EQ(axis.read(replaced("1\n" + axisLines + "\n\n\n\n#1 2 3\n", "\n", "\r\n")),
              eFileIOSuccess);
    EXPECT_EQ(axis.matrix[13], 8);
    EXPECT_EQ(axis.tags[2], 3);
}

TEST(AxisInMemory, TakesTheEndMarkOfWindowsAsAByte) {
    Axis axis;
    EXPECT_EQ(axis.read("\x1A\n" + axisLines + "\n\n\n\n#1 2 3\n"), eFileIOSuccess);
    EXPECT_EQ(axis.tags[2], 3);
}

TEST(AxisInMemory, IsUnchangedByAFailure) {
    Axis axis;
    CFileFault fault;
    EXPECT_EQ(axis.read("0\n1 0 0 0\n0 1 0\n", &fault), eFileIOContentError);
    EXPECT_EQ(reportOf(eFileIOContentError, fault), "4 3:0 four numbers are expected (0)\n");
    EXPECT_EQ(axis.read("", &fault), eFileIOContentError);
    EXPECT_EQ(fault.line, 2);
    EXPECT_EQ(axis.matrix[12], 7);
    EXPECT_EQ(axis.tags[0], -7);
}

// 511 characters of a line count.
TEST(AxisInMemory, HasLinesOfAnyLength) {
    Axis axis;
    const std::string rest = axisLines.substr(axisLines.find('\n'));
    EXPECT_EQ(axis.read("0\n1 0 0" + std::string(506, ' ') + "5" + rest), eFileIOContentError);
    EXPECT_EQ(axis.read("0\n1 0 0" + std::string(505, ' ') + "5" + rest), eFileIOSuccess);
    EXPECT_EQ(axis.matrix[12], 5);
    EXPECT_EQ(axis.read(std::string(100000, 'x') + "\n1 0 0 6" + rest), eFileIOSuccess);
    EXPECT_EQ(axis.matrix[12], 6);
}

TEST(AxisInMemory, TakesNullForTheMatrix) {
    int tag = 0;
    EXPECT_EQ(CQvFilesIO::sReadAxisFromMemory("0\n" + axisLines, nullptr, tag, tag, tag),
              eFileIOSuccess);
    std::string text;
    EXPECT_EQ(CQvFilesIO::sWriteAxisToMemory(text, nullptr, -1, 0, 0), eFileIOSuccess);
    EXPECT_EQ(text.substr(0, 22), "      1\n      0.000000");
}
