// Names and values through narrow and wide calls in a process of a given code page: Western
// European (1252), Japanese (932) or UTF-8.

#include <tests/c/c_objects.h>
#include <tests/common/channel_log.h>
#include <tests/common/file_bytes.h>
#include <tests/common/scoped_variable.h>
#include <tests/common/temporary_directory.h>
#include <tests/environment/store_access.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/catalogue/CMachineContextUtils.h>
#include <trvfiles/environment/message_file.h>
#include <trvfiles/environment/store_writer.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables_internal.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/machine_context/CMachineContextData.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/text/text_conversion.h>

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

using namespace std::string_literals;
using namespace trv::testing;

namespace {

struct Sample {
    std::wstring wide;
    std::string narrow;
    std::string utf8;
    /// A text that the code page cannot hold, and its replacement.
    std::wstring foreign;
    std::string replaced;
    /// A name that no narrow path has, and the name that is nearest to it.
    std::wstring unnamed;
    std::wstring nearest;
};

const std::map<unsigned, Sample>& samples() {
    static const std::map<unsigned, Sample> all = {
        {1252,
         {L"Fr\u00E4se\u20AC", "Fr\xE4se\x80", "Fr\xC3\xA4se\xE2\x82\xAC", L"\u65E5", "?",
          L"\u0101", L"a"}},
        {932,
         {L"\u65E5\u672C\u30BD", "\x93\xFA\x96\x7B\x83\x5C", "\xE6\x97\xA5\xE6\x9C\xAC\xE3\x82\xBD",
          L"\u0E01", "?", L"\u00E9", L"e"}},
        {CP_UTF8,
         {L"\u00E4\u65E5\U0001F527", "\xC3\xA4\xE6\x97\xA5\xF0\x9F\x94\xA7",
          "\xC3\xA4\xE6\x97\xA5\xF0\x9F\x94\xA7", L"\u0E01", "\xE0\xB8\x81", L"\xD83D", L"\uFFFD"}},
    };
    return all;
}

class CodePage : public ::testing::Test {
protected:
    /// The code page that this run of the program is meant for.
    static unsigned expected() {
        const char* number = std::getenv("TRVFILES_CODE_PAGE");
        return number == nullptr ? 0 : static_cast<unsigned>(std::atoi(number));
    }
    const Sample& sample() const { return samples().at(::GetACP()); }
    std::string narrowPath(const std::string& name) const { return directory_.text() + "/" + name; }
    std::filesystem::path widePath() const { return directory_.path() / sample().wide; }

    /// All names in the directory and below it.
    std::set<std::wstring> contents() const {
        std::set<std::wstring> names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(directory_.path()))
            names.insert(entry.path().lexically_relative(directory_.path()).generic_wstring());
        return names;
    }

    static CTrvAssemblyData assembly(const std::string& text) {
        CTrvAssemblyData data;
        data.getRootComponent().setName(text);
        data.getRootComponent().setGeometryFileName(text + ".stl");
        return data;
    }

    TemporaryDirectory directory_;
    CQvFilesIO files_{directory_.wide()};
};

TEST_F(CodePage, HoldsTextsOfTheCInterfaceOrTheyAreRefused) {
    const Assembly held;
    held.setText(0, TRVFILES_COMPONENT_NAME, sample().utf8.c_str());
    EXPECT_EQ(held.text(0, TRVFILES_COMPONENT_NAME), sample().utf8);

    const std::string foreign = std::filesystem::path(sample().foreign).u8string();
    const bool isHeld = ::GetACP() == CP_UTF8;
    EXPECT_EQ(trvfiles_component_set_text(held, 0, TRVFILES_COMPONENT_NAME, foreign.c_str(), 0),
              isHeld ? TRVFILES_SUCCESS : TRVFILES_BAD_TEXT);
    EXPECT_EQ(held.text(0, TRVFILES_COMPONENT_NAME), isHeld ? foreign : sample().utf8);
}

TEST_F(CodePage, DoesNotLimitTheNamesOfFilesInTheCInterface) {
    const std::string name = std::filesystem::path(sample().foreign).u8string();
    const std::string path = (directory_ / name).u8string();
    const Context context;
    ASSERT_EQ(trvfiles_context_set_text(context, 0, name.c_str(), 0), TRVFILES_SUCCESS);
    auto axis = sized<trvfiles_axis>();
    ASSERT_EQ(trvfiles_axis_write(path.c_str(), &axis, 0), TRVFILES_SUCCESS);
    EXPECT_TRUE(std::filesystem::exists(directory_.path() / sample().foreign));
    const Texts text;
    ASSERT_EQ(trvfiles_context_get_text(context, 0, text, 0), TRVFILES_SUCCESS);
    EXPECT_EQ(text.one(), name);
}

}  // namespace

TEST_F(CodePage, IsTheExpectedOne) {
    ASSERT_NE(expected(), 0U);
    EXPECT_EQ(::GetACP(), expected());
    EXPECT_EQ(samples().count(::GetACP()), 1U);
}

TEST_F(CodePage, IsThatOfNarrowText) {
    EXPECT_EQ(trv::toWide(trv::fromNarrow(sample().narrow)), sample().wide);
    EXPECT_EQ(trv::toNarrow(trv::fromWide(sample().wide)), sample().narrow);
    EXPECT_EQ(trv::toNarrow(trv::fromWide(sample().foreign)), sample().replaced);
}

TEST_F(CodePage, KeepsAFirstByteOrderMark) {
    const std::wstring wide = L"\xFEFF" + sample().wide;
    EXPECT_EQ(trv::toWide(trv::fromWide(wide)), wide);
    if (::GetACP() != CP_UTF8) GTEST_SKIP() << "the code page lacks it";
    const std::string narrow = "\xEF\xBB\xBF\xEF\xBB\xBF" + sample().narrow;
    EXPECT_EQ(trv::toNarrow(trv::fromNarrow(narrow)), narrow);
    EXPECT_EQ(trv::toWide(trv::fromNarrow(narrow)), L"\xFEFF" + wide);
    EXPECT_EQ(files_.writeTrvAssembly(narrow.c_str(), assembly(narrow)), eFileIOSuccess);
    CTrvAssemblyData read;
    EXPECT_EQ(files_.readTrvAssembly(L"\xFEFF" + wide, read), eFileIOSuccess);
    EXPECT_EQ(read.getRootComponent().getName(), narrow);
}

TEST_F(CodePage, HoldsAMachineContextsTexts) {
    CMachineContextData context;
    context.setMachineName(sample().narrow);
    EXPECT_EQ(context.getMachineNameW(), sample().wide);
    context.setCommentW(sample().wide);
    EXPECT_EQ(context.getComment(), sample().narrow);
    context.setNameW(sample().foreign);
    EXPECT_EQ(context.getNameW(), sample().foreign);
    EXPECT_EQ(context.getName(), sample().replaced);
}

TEST_F(CodePage, IsThatOfMachineContextFiles) {
    CMachineContextData context;
    context.setNameW(sample().wide);
    context.setComment(sample().narrow);
    context.setMachinePositionW(sample().foreign);
    ASSERT_EQ(files_.writeMachineContext("a.mctx", context), eFileIOSuccess);
    EXPECT_EQ(bytesOf(directory_ / "a.mctx"),
              "[header]\r\nversion=2\r\ncomment=" + sample().narrow + "\r\nname=" +
                  sample().narrow + "\r\n[machine]\r\nname=\r\nposition=" + sample().replaced +
                  "\r\nproximity=0.000000\r\n[postpro]\r\n"
                  "origin_program=0.000000 0.000000 0.000000\r\nreference_axis=\r\n"
                  "[clamping_system]\r\nproximity=0.000000\r\n");
    CMachineContextData read;
    ASSERT_EQ(files_.readMachineContext("a.mctx", read), eFileIOSuccess);
    EXPECT_EQ(read.getNameW(), sample().wide);
    EXPECT_EQ(read.getName(), sample().narrow);
    EXPECT_EQ(read.getCommentW(), sample().wide);
    EXPECT_EQ(read.getMachinePosition(), sample().replaced);
}

TEST_F(CodePage, NamesMachineContextsThroughNarrowAndWideCalls) {
    CMachineContextData context;
    context.setName("n");
    EXPECT_EQ(files_.writeMachineContext(sample().narrow.c_str(), context), eFileIOSuccess);
    EXPECT_TRUE(std::filesystem::exists(widePath()));
    CMachineContextData read;
    EXPECT_EQ(files_.readMachineContext(sample().wide, read), eFileIOSuccess);
    EXPECT_EQ(files_.readMachineContext(sample().narrow.c_str(), read), eFileIOSuccess);
    EXPECT_EQ(CQvFilesIO::sReadMachineContext(widePath().wstring(), read), eFileIOSuccess);
    EXPECT_EQ(read.getName(), "n");
    context.setName("m");
    EXPECT_EQ(files_.writeMachineContext(sample().wide, context), eFileIOSuccess);
    EXPECT_EQ(files_.readMachineContext(sample().wide, read), eFileIOSuccess);
    EXPECT_EQ(read.getName(), "m");
    EXPECT_EQ(CQvFilesIO::sWriteMachineContext(widePath().wstring(), context), eFileIOSuccess);
    EXPECT_EQ(contents().size(), 1U);
}

TEST_F(CodePage, MayLackTheNameOfAMachineContextWhichIsReadButNotSaved) {
    CMachineContextData context;
    context.setName("n");
    EXPECT_EQ(files_.writeMachineContext("file", context), eFileIOSuccess);
    std::error_code error;
    std::filesystem::rename(directory_ / "file", directory_.path() / sample().unnamed, error);
    writeBytes(directory_.path() / sample().nearest, "old");
    const auto before = contents();
    const std::string bytes = bytesOf(directory_.path() / sample().unnamed);
    const std::string reported = "Store messages : error opening file '" +
                                 narrowPath(trv::toNarrow(trv::fromWide(sample().nearest))) +
                                 ".messages.tmp'";

    CMachineContextData read;
    // UTF-8 lacks half a surrogate pair. The file system under Wine may reject it as a name, too.
    if (!error) {
        EXPECT_EQ(files_.readMachineContext(sample().unnamed, read), eFileIOSuccess);
        EXPECT_EQ(read.getName(), "n");
    } else {
        EXPECT_EQ(::GetACP(), unsigned{CP_UTF8});
    }
    const ChannelLog log;
    EXPECT_EQ(files_.writeMachineContext(sample().unnamed, read), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sWriteMachineContext(directory_.wide() + L"/" + sample().unnamed, read),
              eFileIOOpenError);
    EXPECT_EQ(log.fatals(), std::vector<std::string>(2, reported));
    EXPECT_EQ(contents(), before);
    EXPECT_EQ(bytesOf(directory_.path() / sample().nearest), "old");
    EXPECT_EQ(bytesOf(directory_.path() / sample().unnamed), bytes);
}

TEST_F(CodePage, MayLackTheNameOfADirectoryInWhichNoMachineContextIsSaved) {
    const std::filesystem::path directory = directory_.path() / sample().unnamed;
    std::error_code error;
    if (!std::filesystem::create_directory(directory, error))
        GTEST_SKIP() << "the file system under Wine rejects half characters";
    std::filesystem::create_directory(directory_.path() / sample().nearest);
    const ChannelLog log;
    EXPECT_FALSE(CMachineContextUtils::sCreateDefaultMachineContext(directory.wstring(), 1, nullptr,
                                                                    nullptr));
    EXPECT_EQ(log.fatals().size(), 1U);
    EXPECT_EQ(contents(), (std::set<std::wstring>{sample().nearest, sample().unnamed,
                                                  sample().unnamed + L"/transfo.dat"}));
}

TEST_F(CodePage, NamesTheContextsThatTheCatalogueCreatesAndFinds) {
    std::filesystem::create_directory(widePath());
    std::wstring context;
    std::wstring reference;
    EXPECT_TRUE(CMachineContextUtils::sCreateDefaultMachineContext(widePath().wstring(), 2,
                                                                   &context, &reference));
    EXPECT_EQ(contents(), (std::set<std::wstring>{sample().wide, sample().wide + L"/" + context,
                                                  sample().wide + L"/" + reference,
                                                  sample().wide + L"/transfo.dat"}));
    std::filesystem::rename(widePath() / context, widePath() / (sample().wide + L".mctx"));
    const ScopedVariable favorites("TRV_MCTX_DEF", directory_.text().c_str());
    const std::vector<std::wstring> found = CMachineContextUtils::sGetFavoriteMachineContext(L"");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0], directory_.wide() + L"/" + sample().wide + L"/" + sample().wide + L".mctx");
    CMachineContextData read;
    EXPECT_EQ(CQvFilesIO::sReadMachineContext(found[0], read), eFileIOSuccess);
    const ScopedVariable narrow("TRV_MCTX_DEF", narrowPath(sample().narrow).c_str());
    EXPECT_EQ(CMachineContextUtils::sGetFavoriteMachineContextDirectoryW(),
              directory_.wide() + L"/" + sample().wide);
}

TEST_F(CodePage, IsWrittenToAssembliesAsUtf8) {
    ASSERT_EQ(files_.writeTrvAssembly("a.xml", assembly(sample().narrow)), eFileIOSuccess);
    const std::string bytes = bytesOf(directory_ / "a.xml");
    EXPECT_NE(bytes.find("<Component name=\"" + sample().utf8 + "\""), std::string::npos) << bytes;
    EXPECT_NE(bytes.find("<File name=\"" + sample().utf8 + ".stl\""), std::string::npos) << bytes;
    CTrvAssemblyData read;
    ASSERT_EQ(files_.readTrvAssembly("a.xml", read), eFileIOSuccess);
    EXPECT_EQ(read, assembly(sample().narrow));
    EXPECT_EQ(read.getRootComponent().getName(), sample().narrow);
}

TEST_F(CodePage, NamesFilesThroughNarrowAndWideCalls) {
    ASSERT_EQ(files_.writeTrvAssembly(sample().narrow.c_str(), assembly("n")), eFileIOSuccess);
    EXPECT_TRUE(std::filesystem::exists(widePath()));
    CTrvAssemblyData read;
    EXPECT_EQ(files_.readTrvAssembly(sample().wide, read), eFileIOSuccess);
    EXPECT_EQ(files_.readTrvAssembly(sample().narrow.c_str(), read), eFileIOSuccess);
    EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(widePath().wstring(), read), eFileIOSuccess);
    EXPECT_TRUE(files_.isfileExists(sample().narrow));
    EXPECT_TRUE(files_.isfileExists(sample().wide));
    EXPECT_EQ(files_.absoluteFileName(sample().narrow), narrowPath(sample().narrow));
    EXPECT_EQ(files_.absoluteFileName(sample().wide), directory_.wide() + L"/" + sample().wide);
    EXPECT_TRUE(files_.copyFile(narrowPath(sample().narrow), narrowPath(sample().narrow + "2")));
    EXPECT_TRUE(std::filesystem::exists(directory_.path() / (sample().wide + L"2")));
}

TEST_F(CodePage, NamesDirectoriesThroughNarrowAndWideCalls) {
    std::filesystem::create_directory(widePath());
    const double identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    CQvFilesIO narrow(narrowPath(sample().narrow));
    EXPECT_EQ(narrow.writeAxis(L"a.dat", identity, 1, 2, 3), eFileIOSuccess);
    EXPECT_TRUE(std::filesystem::exists(widePath() / "a.dat"));
    EXPECT_TRUE(CQvFilesIO(widePath().wstring()).isfileExists("a.dat"s));
}

TEST_F(CodePage, OpensWideNamesThatItCannotHold) {
    const double identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    EXPECT_EQ(files_.writeAxis(sample().foreign, identity, 1, 2, 3), eFileIOSuccess);
    EXPECT_TRUE(std::filesystem::exists(directory_.path() / sample().foreign));
    EXPECT_TRUE(files_.isfileExists(sample().foreign));
}

TEST_F(CodePage, IsThatOfTheRuntimesPaths) {
    const std::string path = narrowPath(sample().narrow);
    EXPECT_EQ(trv::make_directory(path.c_str()), 0);
    EXPECT_TRUE(std::filesystem::is_directory(widePath()));
    EXPECT_TRUE(trv::is_directory(path.c_str()));
    const auto names = trv::platform::directory_entries(directory_.text().c_str());
    ASSERT_EQ(names.size(), 1U);
    EXPECT_EQ(names.front(), sample().narrow);
    EXPECT_EQ(trv::platform::remove_file((path + "/none").c_str()), ENOENT);
}

TEST_F(CodePage, IsThatOfTheProcessEnvironment) {
    const ScopedVariable guard("TRVFILES_TEST", nullptr);
    ::_wputenv((L"TRVFILES_TEST=" + sample().wide).c_str());
    EXPECT_STREQ(trv::platform::get_environment("TRVFILES_TEST"), sample().narrow.c_str());
    EXPECT_TRUE(trv::platform::set_environment("TRVFILES_TEST", (sample().narrow + "+").c_str()));
    wchar_t value[100] = L"";
    ::GetEnvironmentVariableW(L"TRVFILES_TEST", value, 100);
    EXPECT_EQ(value, sample().wide + L"+");
}

TEST_F(CodePage, PassesThroughStoresAndTheirFilesUnchanged) {
    trv::message_store*& environment = trv::loaded_stores.environment;
    const Store store;
    trv::add_section(store, "var");
    environment = store;
    const std::string entry = "NAME = " + sample().narrow;
    EXPECT_EQ(trv::set_variable(store, 0, entry.c_str()), 0);
    std::string expanded;
    EXPECT_EQ(trv::expand_variables("<$NAME>", &expanded), trv::EXP_OK);
    EXPECT_EQ(expanded, "<" + sample().narrow + ">");
    environment = nullptr;

    const std::string path = narrowPath(sample().narrow);
    EXPECT_EQ(trv::store_parameters(store, path.c_str()), 0);
    EXPECT_EQ(bytesOf(widePath()), "[var]\r\n" + entry + "\r\n");
}
