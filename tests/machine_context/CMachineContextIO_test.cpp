#include <tests/common/channel_log.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <tests/facade/memory_equality.h>
#include <tests/machine_context/context_samples.h>
#include <trvfiles/environment/file_replacement.h>
#include <trvfiles/machine_context/CMachineContextIO.h>
#include <trvfiles/support/CFileFault.h>
#include <trvfiles/support/dynamic_storage.h>
#include <trvfiles/support/platform.h>

#include <QString>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <memory>
#include <string>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;

namespace {

struct MissingKey {
    std::string section;
    std::string key;
    int headerLine;
};

class MachineContextFile : public ::testing::Test {
protected:
    EFileIOStatus readText(const std::string& text, CMachineContextData& data,
                           CFileFault* fault = nullptr) const {
        writeBytes(path, text);
        expectContextAsInMemory(path);
        return CMachineContextIO(QString::fromStdWString(path.wstring())).read(data, fault);
    }

    /// Reads a text and expects that it is complete.
    CMachineContextData read(const std::string& text) const {
        CMachineContextData data = prefilled();
        EXPECT_EQ(readText(text, data), eFileIOSuccess) << text;
        return data;
    }

    /// Expects that reading a text changes a prefilled record in exactly this way.
    template <class Change>
    void expectRead(const std::string& text, const Change& change) const {
        CMachineContextData expected = prefilled();
        change(expected);
        EXPECT_EQ(ContextFields(read(text)), ContextFields(expected)) << text;
    }

    void expectNothingRead(const std::string& text) const {
        expectRead(text, [](CMachineContextData&) {});
    }

    /// Expects that a text lacks a key, and the content of the record after the failed read.
    template <class Change>
    void expectMissing(const std::string& text, const MissingKey& key, const Change& change) const {
        CMachineContextData expected = prefilled();
        change(expected);
        CMachineContextData data = prefilled();
        CFileFault fault;
        EXPECT_EQ(readText(text, data, &fault), eFileIOContentError) << text;
        EXPECT_EQ(fault.reason, "section [" + key.section + "] has no \"" + key.key + "\"") << text;
        EXPECT_EQ(fault.line, key.headerLine) << text;
        EXPECT_EQ(fault.column, 0);
        EXPECT_EQ(fault.systemError, 0);
        EXPECT_EQ(ContextFields(data), ContextFields(expected)) << text;

        CMachineContextData again = prefilled();
        EXPECT_EQ(readText(text, again), eFileIOContentError);
        EXPECT_EQ(ContextFields(again), ContextFields(expected)) << text;
    }

    TemporaryDirectory directory;
    fs::path path = directory / "f.mctx";
};

const std::string completeText =
    "[header]\nversion=2\ncomment=c\nname=n\n"
    "[machine]\nname=m\nposition=p\nproximity=1.5\n"
    "[postpro]\norigin_program=1 2 3\nreference_axis=r\n"
    "[part]\nsurface_group=s\n"
    "[clamping_system]\nname=k\nproximity=2.5\n";

void setComplete(CMachineContextData& data) {
    data.setComment("c");
    data.setName("n");
    data.setMachineName("m");
    data.setMachinePosition("p");
    data.setMachineProximity(1.5);
    data.setOriginProgram(1, 2, 3);
    data.setReferenceAxisForOriginProgram("r");
    data.setSurfaceGroup("s");
    data.setClampingSystem("k");
    data.setClampingProximity(2.5);
}

/// The text with each line end replaced.
std::string withLineEnds(const std::string& text, const std::string& end) {
    std::string result;
    for (const char byte : text)
        result += byte == '\n' ? end : std::string(1, byte);
    return result;
}

}  // namespace

TEST_F(MachineContextFile, SetsEveryField) {
    expectRead(completeText, setComplete);
}

TEST_F(MachineContextFile, LeavesWhatItDoesNotSet) {
    expectNothingRead("");
    expectNothingRead("\n\n");
    expectNothingRead("name=n\nposition=p\n");
    expectNothingRead("[header]\nversion=2\n");
    expectRead("[header]\nname=n\n", [](auto& data) { data.setName("n"); });
    expectRead("[header]\ncomment=c\n", [](auto& data) { data.setComment("c"); });
    expectRead("[machine]\nname=m\nposition=p\n", [](auto& data) {
        data.setMachineName("m");
        data.setMachinePosition("p");
    });
    expectRead("[postpro]\norigin_program=1 2 3\n",
               [](auto& data) { data.setOriginProgram(1, 2, 3); });
    expectRead("[part]\nsurface_group=s\n", [](auto& data) { data.setSurfaceGroup("s"); });
    expectRead("[clamping_system]\nname=k\n", [](auto& data) { data.setClampingSystem("k"); });
    expectRead("[clamping_system]\nproximity=4\n",
               [](auto& data) { data.setClampingProximity(4); });
    expectNothingRead("[part]\nx=1\n[clamping_system]\nx=1\n");
}

TEST_F(MachineContextFile, SetsATextThatIsEmpty) {
    expectRead(
        "[header]\nname=\ncomment=  \n[machine]\nname=\nposition=\n"
        "[postpro]\norigin_program=1 2 3\nreference_axis=\n[part]\nsurface_group=\n"
        "[clamping_system]\nname=\n",
        [](auto& data) {
            for (const ContextText& text : contextTexts)
                (data.*text.set)("");
            data.setOriginProgram(1, 2, 3);
        });
}

TEST_F(MachineContextFile, NeedsTheNameAndThePositionOfItsMachine) {
    const auto nothing = [](CMachineContextData&) {};
    expectMissing("[machine]\nposition=p\nproximity=1\n", {"machine", "name", 1}, nothing);
    expectMissing("\n[x]\n[machine]\n\n", {"machine", "name", 3}, nothing);
    expectMissing("[machine]\nName=m\nposition=p\n", {"machine", "name", 1}, nothing);
    expectMissing("[machine]\n#name=m\nposition=p\n", {"machine", "name", 1}, nothing);
    expectMissing("[machine]\nname=m\nproximity=1\n[postpro]\norigin_program=1 2 3\n",
                  {"machine", "position", 1}, [](auto& data) { data.setMachineName("m"); });
    expectMissing("[header]\nname=n\ncomment=c\n[part]\nsurface_group=s\n[machine]\nname=m\n",
                  {"machine", "position", 6}, [](auto& data) {
                      data.setName("n");
                      data.setComment("c");
                      data.setMachineName("m");
                  });
}

TEST_F(MachineContextFile, NeedsTheOriginOfItsPostprocessor) {
    expectMissing("[postpro]\nreference_axis=r\n", {"postpro", "origin_program", 1},
                  [](CMachineContextData&) {});
    expectMissing(
        "[clamping_system]\nname=k\n[part]\nsurface_group=s\n[postpro]\n\n"
        "[machine]\nname=m\nposition=p\nproximity=3\n[header]\nname=n\n",
        {"postpro", "origin_program", 5}, [](auto& data) {
            data.setName("n");
            data.setMachineName("m");
            data.setMachinePosition("p");
            data.setMachineProximity(3);
        });
}

TEST_F(MachineContextFile, MissesNothingInASectionWithoutLines) {
    expectNothingRead("[machine]\n[postpro]\n");
    expectNothingRead("[machine]");
    expectNothingRead("[postpro]\n");
    expectMissing("[machine]\n\n[postpro]\n", {"machine", "name", 1}, [](CMachineContextData&) {});
}

TEST_F(MachineContextFile, CountsCaseInSectionsAndKeys) {
    expectNothingRead("[Machine]\nname=m\n");
    expectNothingRead("[HEADER]\nname=n\n[Postpro]\nx=1\n[Part]\nsurface_group=s\n");
    expectNothingRead("[header]\nName=n\nCOMMENT=c\n[part]\nSurface_group=s\n");
}

TEST_F(MachineContextFile, ReadsTheNumbersThatAProximityBeginsWith) {
    const struct {
        const char* text;
        double value;
    } proximities[] = {{"1.5", 1.5},
                       {"", 0},
                       {"abc", 0},
                       {"1.5xyz", 1.5},
                       {"1,5", 1},
                       {" 2 3", 2},
                       {"-0.0", -0.0},
                       {"+4", 4},
                       {".5", 0.5},
                       {"5.", 5},
                       {"1e3", 1000},
                       {"1e", 1},
                       {"0x10", 16},
                       {"--1", 0},
                       {"1e999", HUGE_VAL},
                       {"-1e999", -HUGE_VAL},
                       {"1e-999", 0},
                       {"inf", HUGE_VAL},
                       {"-Infinity", -HUGE_VAL},
                       {"nan", std::nan("")},
                       {"=1", 0},
                       {"1234.567749", 1234.567749},
                       {"100000000000000000000", 1e20}};
    for (const auto& proximity : proximities) {
        expectRead("[machine]\nname=m\nposition=p\nproximity="s + proximity.text + "\n",
                   [&](auto& data) {
                       data.setMachineName("m");
                       data.setMachinePosition("p");
                       data.setMachineProximity(proximity.value);
                   });
        expectRead("[clamping_system]\nproximity="s + proximity.text,
                   [&](auto& data) { data.setClampingProximity(proximity.value); });
    }
}

TEST_F(MachineContextFile, AcceptsAnOriginOfThreeNumbersOnly) {
    for (const char* origin :
         {"1 2 3", "1 2 3abc", "1 2 3 4", "\t1\t\v2\f3", "+1 2.0 3e0", "1 2 3,5", "1 2 0x3"}) {
        expectRead("[postpro]\norigin_program="s + origin + "\n",
                   [](auto& data) { data.setOriginProgram(1, 2, 3); });
    }
    for (const char* origin :
         {"", "1", "1 2", "a b c", "1 2 c", "1,2,3", "1 b 3", "1;2;3", "#1 2 3"}) {
        expectNothingRead("[postpro]\norigin_program="s + origin + "\n");
    }
    expectRead("[postpro]\norigin_program=nan -inf 1e300\n",
               [](auto& data) { data.setOriginProgram(std::nan(""), -HUGE_VAL, 1e300); });
    expectRead("[postpro]\norigin_program=1 2\nreference_axis=r\n",
               [](auto& data) { data.setReferenceAxisForOriginProgram("r"); });
}

TEST_F(MachineContextFile, IgnoresItsVersion) {
    for (const char* version : {"version=1\n", "version=99\n", "version=x\n", "version=\n", ""})
        expectRead("[header]\n"s + version + "name=n\n", [](auto& data) { data.setName("n"); });
}

TEST_F(MachineContextFile, MayHaveItsSectionsInAnyOrder) {
    expectRead(
        "[clamping_system]\nproximity=2.5\nname=k\n[part]\nsurface_group=s\n"
        "[postpro]\nreference_axis=r\norigin_program=1 2 3\n"
        "[machine]\nproximity=1.5\nposition=p\nname=m\n[header]\nname=n\ncomment=c\n",
        setComplete);
}

TEST_F(MachineContextFile, MayHoldWhatTheFormatDoesNotDefine) {
    expectRead("# first\nfree text\nname=none\n\n" + completeText +
                   "other=1\n\n[other]\nname=o\n[ ]\nposition=o\n[open\n",
               setComplete);
    std::string spread;
    for (const char byte : completeText)
        spread += byte == '\n' ? "\n\n# [part]\n#name=x\nunknown = y \n" : std::string(1, byte);
    expectRead(spread, setComplete);
}

TEST_F(MachineContextFile, ReadsEveryLineEnd) {
    expectRead(withLineEnds(completeText, "\r\n"), setComplete);
    expectRead(withLineEnds(completeText, " \t\r\n"), setComplete);
    expectRead(completeText.substr(0, completeText.size() - 1), setComplete);
    expectRead(completeText.substr(0, completeText.size() - 1) + "\r", setComplete);
    expectRead("\xEF\xBB\xBF" + completeText, setComplete);
    expectRead("\xEF\xBB\xBF" + withLineEnds(completeText, "\r\n"), setComplete);
}

TEST_F(MachineContextFile, UsesOnlyTheLastSectionOfAName) {
    expectRead(
        "[header]\nname=first\ncomment=first\n[machine]\nname=m\nposition=p\nproximity=9\n"
        "[header]\nname=last\n[ machine ]\nname=n\nposition=q\n",
        [](auto& data) {
            data.setName("last");
            data.setMachineName("n");
            data.setMachinePosition("q");
        });
    expectMissing("[machine]\nname=m\nposition=p\n[machine]\nname=n\n", {"machine", "position", 4},
                  [](auto& data) { data.setMachineName("n"); });
    expectNothingRead("[machine]\nname=m\nposition=p\n[machine]\n");
}

TEST_F(MachineContextFile, UsesTheLastLineOfAKey) {
    expectRead("[header]\nname=1\nname = 2\n  name=3  \n", [](auto& data) { data.setName("3"); });
    expectNothingRead("[postpro]\norigin_program=1 2 3\norigin_program=none\n");
}

TEST_F(MachineContextFile, EndsATextAtItsFirstZeroByte) {
    expectRead(
        "[header]\nname=ab\0cd\n[postpro]\norigin_program=1 2\0 3\n"
        "[clamping_system]\nproximity=1.5\0"s +
            "7\n",
        [](auto& data) {
            data.setName("ab");
            data.setClampingProximity(1.5);
        });
}

TEST_F(MachineContextFile, ExpandsNothing) {
    expectRead(
        "[header]\nname=$HOME\ncomment=?PATH\n[part]\nsurface_group=a++b+(0000000C)\n"
        "/if X\n[clamping_system]\nname=/else # no comment\n",
        [](auto& data) {
            data.setName("$HOME");
            data.setComment("?PATH");
            data.setSurfaceGroup("a++b+(0000000C)");
            data.setClampingSystem("/else # no comment");
        });
}

TEST_F(MachineContextFile, IsWrittenInTheLayoutOfTheFormat) {
    const fs::path golden = fs::path(TRV_TEST_DATA) / "machine_context";
    const auto expectFile = [&](const CMachineContextData& data, const char* name) {
        EXPECT_EQ(writeContext(path, data), eFileIOSuccess);
        const std::string expected = textOf(golden / name);
        EXPECT_FALSE(expected.empty()) << name;
        EXPECT_EQ(textOf(path), expected) << name;
        // Writes again, over the existing file.
        EXPECT_EQ(writeContext(path, data), eFileIOSuccess);
        EXPECT_EQ(textOf(path), expected) << name;
    };
    expectFile(firstOperation(), "first_operation.mctx");
    expectFile(allFields(), "all_fields.mctx");
    expectFile(CMachineContextData(), "empty_record.mctx");
    CMachineContextData extreme;
    extreme.setName("extreme");
    extreme.setMachineProximity(1e20);
    extreme.setClampingProximity(-3.4e38);
    extreme.setOriginProgram(1e300, -std::numeric_limits<double>::max(), -1e-9);
    expectFile(extreme, "extreme_numbers.mctx");
}

TEST_F(MachineContextFile, ReadsItsLayoutBack) {
    const fs::path golden = fs::path(TRV_TEST_DATA) / "machine_context";
    CMachineContextData data;
    EXPECT_EQ(readContext(golden / "first_operation.mctx", data), eFileIOSuccess);
    EXPECT_EQ(ContextFields(data), ContextFields(firstOperation()));
    EXPECT_EQ(readContext(golden / "all_fields.mctx", data), eFileIOSuccess);
    EXPECT_EQ(ContextFields(data), ContextFields(allFields()));

    // Without a section "part" and a clamping name, the earlier values stay.
    CMachineContextData expected;
    expected.setSurfaceGroup("FACES");
    expected.setClampingSystem("VISE");
    EXPECT_EQ(readContext(golden / "empty_record.mctx", data), eFileIOSuccess);
    EXPECT_EQ(ContextFields(data), ContextFields(expected));

    expected.setName("extreme");
    expected.setMachineProximity(1000000020040877342.0);
    expected.setClampingProximity(-339999995214436424.0);
    expected.setOriginProgram(1e300, -std::numeric_limits<double>::max(), -0.0);
    EXPECT_EQ(readContext(golden / "extreme_numbers.mctx", data), eFileIOSuccess);
    EXPECT_EQ(ContextFields(data), ContextFields(expected));
}

TEST_F(MachineContextFile, LeavesNothingElseInItsDirectory) {
    EXPECT_EQ(writeContext(path, allFields()), eFileIOSuccess);
    EXPECT_EQ(writeContext(path, allFields()), eFileIOSuccess);
    CMachineContextData data;
    EXPECT_EQ(readContext(path, data), eFileIOSuccess);
    EXPECT_EQ(std::distance(fs::directory_iterator(directory.path()), {}), 1);
}

TEST_F(MachineContextFile, HasFormatVersionTwo) {
    CMachineContextIO file(QString::fromStdWString(path.wstring()));
    EXPECT_EQ(file.getVersion(), 0);
    EXPECT_EQ(file.write(CMachineContextData()), eFileIOSuccess);
    EXPECT_EQ(file.getVersion(), 2);
}

TEST_F(MachineContextFile, IsWrittenAfterTheEarlierContentOfItsHeader) {
    CMachineContextIO file(QString::fromStdWString(path.wstring()));
    file.setHeaderValue("author", "shop");
    EXPECT_EQ(file.write(firstOperation()), eFileIOSuccess);
    const std::string text = textOf(path);
    EXPECT_EQ(text.substr(0, text.find("[machine]")),
              "[header]\nauthor=shop\nversion=2\ncomment=first op\nname=Setup A\n");
}

TEST_F(MachineContextFile, ReleasesItsStoreThroughItsBase) {
    char before[64];
    trv::storage_report(before, sizeof before);
    auto* file = new CMachineContextIO(QString::fromStdWString(path.wstring()));
    EXPECT_EQ(file->write(allFields()), eFileIOSuccess);
    std::unique_ptr<TrvIniFile> base(file);
    EXPECT_STREQ(base->getValue("machine", "name"), "MILL5");
    char during[64];
    trv::storage_report(during, sizeof during);
    EXPECT_STRNE(before, during);
    base.reset();
    char after[64];
    trv::storage_report(after, sizeof after);
    EXPECT_STREQ(before, after);
}

TEST_F(MachineContextFile, IsOpenedForReadingOnlyIfItIsAFile) {
    const ChannelLog log;
    CMachineContextData data = prefilled();
    for (const fs::path& name :
         {directory / "missing", directory / "missing" / "f", directory.path(), fs::path()}) {
        EXPECT_EQ(readContext(name, data), eFileIOOpenError);
        CFileFault fault;
        CMachineContextIO file(QString::fromStdWString(name.wstring()));
        EXPECT_EQ(file.read(data, &fault), eFileIOOpenError);
        EXPECT_NE(fault.reason, "");
        EXPECT_NE(fault.systemError, 0);
        EXPECT_TRUE(fault.notes.empty());
    }
    writeBytes(path, completeText);
    EXPECT_EQ(CQvFilesIO::sReadMachineContext(path.wstring() + L"\0"s, data), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sReadMachineContext(path.wstring() + L"\0x"s, data), eFileIOOpenError);
    EXPECT_EQ(ContextFields(data), ContextFields(prefilled()));
    EXPECT_TRUE(log.errors().empty() && log.fatals().empty() && log.traces().empty());
}

TEST_F(MachineContextFile, ThatBreaksOffWhileItIsReadGivesTwo) {
    if (!fs::exists("/proc/self/mem")) GTEST_SKIP() << "there is no file here that breaks off";
    CMachineContextData data = prefilled();
    EXPECT_EQ(readContext("/proc/self/mem", data), eFileIOOpenError);
    EXPECT_EQ(ContextFields(data), ContextFields(prefilled()));
}

TEST_F(MachineContextFile, KeepsItsRightsWhenItIsWritten) {
    if (trv::platform::backslash_separates()) GTEST_SKIP() << "files have other rights here";
    for (const unsigned mode : {0600U, 0640U, 0664U}) {
        writeBytes(path, completeText);
        fs::permissions(path, fs::perms(mode));
        EXPECT_EQ(writeContext(path, allFields()), eFileIOSuccess);
        EXPECT_EQ(static_cast<unsigned>(fs::status(path).permissions()), mode);
    }
}

TEST_F(MachineContextFile, IsWrittenThroughALink) {
    if (trv::platform::backslash_separates()) GTEST_SKIP() << "links take other rights here";
    writeBytes(path, completeText);
    fs::create_directory(directory / "links");
    fs::create_symlink("../f.mctx", directory / "links/g.mctx");
    EXPECT_EQ(writeContext(directory / "links/g.mctx", allFields()), eFileIOSuccess);
    EXPECT_TRUE(fs::is_symlink(directory / "links/g.mctx"));
    CMachineContextData data;
    EXPECT_EQ(readContext(path, data), eFileIOSuccess);
    EXPECT_EQ(ContextFields(data), ContextFields(allFields()));
}

TEST_F(MachineContextFile, IsWrittenUnderALockThatTheCallerHolds) {
    const ChannelLog log;
    CMachineContextIO file(QString::fromStdWString(path.wstring()));
    trv::file_replacement held(path.string());
    EXPECT_EQ(file.write(allFields(), &held), eFileIOSuccess);
    CMachineContextData data;
    EXPECT_EQ(readContext(path, data), eFileIOSuccess);
    EXPECT_EQ(ContextFields(data), ContextFields(allFields()));
    EXPECT_TRUE(log.fatals().empty());

    trv::file_replacement none((directory / "none/f").string());
    EXPECT_TRUE(log.fatals().empty());
    EXPECT_EQ(file.write(allFields(), &none), eFileIOOpenError);
    EXPECT_EQ(log.fatals().size(), 1U);
}
