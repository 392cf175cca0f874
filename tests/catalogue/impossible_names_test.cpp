#include <tests/catalogue/catalogue_files.h>
#include <tests/common/channel_log.h>
#include <tests/common/current_directory.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/catalogue/CMachineContextUtils.h>
#include <trvfiles/support/platform.h>

#include <QString>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;
using ::testing::IsEmpty;

namespace {

std::string& qtMessages() {
    static std::string messages;
    return messages;
}

/// The output of a call to standard error, and the messages of Qt during the call.
std::string printedBy(const std::function<void()>& call) {
    qtMessages().clear();
    const QtMessageHandler handler =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) {
            qtMessages() += message.toStdString() + "\n";
        });
    ::testing::internal::CaptureStderr();
    call();
    const std::string printed = ::testing::internal::GetCapturedStderr();
    qInstallMessageHandler(handler);
    return qtMessages() + printed;
}

bool surrogatesAreNames() {
    return !trv::platform::narrow_text_is_utf8();
}

/// Names that no file can have.
std::vector<std::wstring> impossibleNames() {
    std::vector<std::wstring> names = {L"\0"s, L"a\0b"s, L"transfo.dat\0"s, std::wstring(300, L'n'),
                                       std::wstring(100000, L'n')};
    if (!surrogatesAreNames()) {
        names.push_back(std::wstring(1, L'\xD800'));
        // Not a character of Unicode. A conversion replaces it by U+FFFD, which is a valid name.
        names.push_back(L"a" + std::wstring(1, static_cast<wchar_t>(0x110000)));
        names.push_back(L"a" + std::wstring(1, L'\xDFFF') + L"b");
    }
    return names;
}

/// Calls the catalogue in a current directory with an axis file and a context. No call prints,
/// reports or changes anything.
class ImpossibleNames : public ::testing::Test {
protected:
    ImpossibleNames() : here_(directory_.path()) {
        writeBytes(directory_ / "transfo.dat", "axis");
        fs::create_directory(directory_ / "A");
        writeBytes(directory_ / "A/A.mctx", "x");
    }

    /// Expects that `operation` does nothing for each impossible name.
    void expectNothing(const std::function<void(const std::wstring& name)>& operation) const {
        for (const std::wstring& name : impossibleNames()) {
            SCOPED_TRACE(QString::fromStdWString(name.substr(0, 20)).toStdString());
            const ChannelLog log;
            EXPECT_EQ(printedBy([&] { operation(name); }), "");
            EXPECT_THAT(log.errors(), IsEmpty());
            EXPECT_THAT(log.fatals(), IsEmpty());
            EXPECT_EQ(contentsOf(directory_.path()),
                      (Contents{{"transfo.dat", "axis"}, {"A", aDirectory}, {"A/A.mctx", "x"}}));
        }
    }

    std::wstring below(const std::wstring& name) const { return directory_.wide() + L"/" + name; }

    TemporaryDirectory directory_;

private:
    CurrentDirectory here_;
};

bool createNamed(const std::wstring& directory, const std::wstring& machine,
                 const std::wstring& axis, const std::wstring& context) {
    return CMachineContextUtils::sCreateMachineContext(directory, machine, axis, context, nullptr,
                                                       nullptr);
}

}  // namespace

TEST_F(ImpossibleNames, ListNothing) {
    expectNothing([&](const std::wstring& name) {
        EXPECT_THAT(CMachineContextUtils::sGetFavoriteMachineContext(name), IsEmpty());
        EXPECT_THAT(CMachineContextUtils::sGetFavoriteMachineContext(below(name)), IsEmpty());
        EXPECT_THAT(CMachineContextUtils::sGetFavoriteMachineContext(name + L"/A"), IsEmpty());
    });
}

TEST_F(ImpossibleNames, ChooseNoDefaultContext) {
    expectNothing([&](const std::wstring& name) {
        int index = 0;
        int position = 0;
        EXPECT_FALSE(CMachineContextUtils::sGetDefaultMachineContext({name, L""}, index, position));
    });
}

TEST_F(ImpossibleNames, CreateNoDefaultContext) {
    expectNothing([&](const std::wstring& name) {
        for (const std::wstring& directory : {name, below(name), name + L"/A"}) {
            EXPECT_FALSE(
                CMachineContextUtils::sCreateDefaultMachineContext(directory, 1, nullptr, nullptr));
        }
    });
}

TEST_F(ImpossibleNames, CreateNoNamedContext) {
    expectNothing([&](const std::wstring& name) {
        EXPECT_FALSE(createNamed(name, L"m", L"", L""));
        EXPECT_FALSE(createNamed(below(name), L"m", L"", L""));
        EXPECT_FALSE(createNamed(L"", name, L"", L""));
        EXPECT_FALSE(createNamed(L"", L"m", name, L""));
        EXPECT_FALSE(createNamed(L"", L"m", name, L"job.mctx"));
        EXPECT_FALSE(createNamed(L"", L"m", L"", name));
        EXPECT_FALSE(createNamed(L"", L"m", L"", name + L".mctx"));
        EXPECT_FALSE(createNamed(directory_.wide(), name, name, name));
    });
}

TEST_F(ImpossibleNames, AreIgnoredBesideNamesThatAreText) {
    if (surrogatesAreNames()) GTEST_SKIP() << "every name is text there";
    fs::create_directory(directory_.path() / "\xE4\xFF");
    writeBytes(directory_.path() / "\xE4\xFF/\xE4\xFF.mctx", "x");
    std::vector<std::wstring> found;
    EXPECT_EQ(printedBy([&] {
                  found = CMachineContextUtils::sGetFavoriteMachineContext(directory_.wide());
              }),
              "");
    EXPECT_THAT(found, ::testing::ElementsAre(directory_.wide() + L"/A/A.mctx"));
}

TEST_F(ImpossibleNames, AreNotPrintedInACurrentDirectoryThatIsGone) {
    if (surrogatesAreNames()) GTEST_SKIP() << "a current directory cannot be removed there";
    fs::create_directory(directory_ / "gone");
    const CurrentDirectory gone(directory_ / "gone");
    fs::remove(directory_ / "gone");
    for (const std::wstring& name : {L""s, L"."s, L"x"s, L".."s}) {
        EXPECT_EQ(printedBy([&] {
                      CMachineContextUtils::sGetFavoriteMachineContext(L"./" + name);
                      CMachineContextUtils::sCreateDefaultMachineContext(name, 1, nullptr, nullptr);
                      createNamed(name, L"m", L"", L"");
                  }),
                  "");
    }
}
