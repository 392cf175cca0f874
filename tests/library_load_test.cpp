// Loading the library sets defaults and has no other visible effect.

#include <tests/common/current_directory.h>
#include <tests/common/system.h>
#include <tests/common/temporary_directory.h>

#include <QLibrary>
#include <QProcessEnvironment>
#include <QString>
#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <locale>
#include <string>

namespace trv::testing {
namespace {

class LibraryLoad : public ::testing::Test {
protected:
    // A first lookup would load this, or fail because of it.
    LibraryLoad() {
        for (const char* name : {"TRVHOME", "TRVZONE", "TRVTMPDIR", "TRV_EXPAND_LOGFILE_NAME"})
            qputenv(name, QByteArray::fromStdString((directory_ / "missing").string()));
        qputenv("TRV_EXPAND_MIN_BUFFER_SIZE", "-100000");
        qputenv("TRV_BUFFER_TOO_SMALL_OPTION", "crash");
        qputenv("TRV_TRVFILES_VERBOSE", "on");
    }

    template <class Function>
    Function* function(const char* symbol) {
        return reinterpret_cast<Function*>(library_.resolve(symbol));
    }

    TemporaryDirectory directory_;
    QLibrary library_{QStringLiteral(TRV_LIBRARY)};
};

TEST_F(LibraryLoad, ShowsNothingAndChangesNothing) {
    const CurrentDirectory here(directory_.path());
    const QStringList environment = QProcessEnvironment::systemEnvironment().toStringList();
    const std::string locale = std::setlocale(LC_ALL, nullptr);
    const std::string streamLocale = std::locale().name();
    const std::ptrdiff_t descriptors = openDescriptors();
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    const bool loaded = library_.load();
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    ASSERT_TRUE(loaded) << library_.errorString().toStdString();
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_EQ(QProcessEnvironment::systemEnvironment().toStringList(), environment);
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), locale);
    EXPECT_EQ(std::locale().name(), streamLocale);
    EXPECT_EQ(std::filesystem::current_path(), std::filesystem::canonical(directory_.path()));
    EXPECT_TRUE(std::filesystem::is_empty(directory_.path()));
}

TEST_F(LibraryLoad, ReadsTheEnvironmentWhenItIsAskedAndNotBefore) {
    qputenv("TRV_TRVFILES_VERBOSE", "off");
    ASSERT_TRUE(library_.load()) << library_.errorString().toStdString();
    auto* const isVerbose = function<int()>("_ZN3trv10is_verboseEv");
    auto* const installRoot = function<const char*(bool)>("_ZN3trv12install_rootEb");
    ASSERT_TRUE(isVerbose != nullptr && installRoot != nullptr);
    EXPECT_EQ(isVerbose(), 0);
    qputenv("TRV_TRVFILES_VERBOSE", "on");
    EXPECT_EQ(isVerbose(), 1);
    qputenv("TRVHOME", "later");
    EXPECT_STREQ(installRoot(false), "later");
}

TEST_F(LibraryLoad, SetsTheDefaults) {
    ASSERT_TRUE(library_.load()) << library_.errorString().toStdString();
    auto* const quietErrors = function<int()>("_ZN3trv12quiet_errorsEv");
    auto* const echoOutput = function<int()>("_ZN3trv11echo_outputEv");
    auto* const storageReport = function<void(char*, std::size_t)>(
        sizeof(long) == sizeof(std::size_t) ? "_ZN3trv14storage_reportEPcm"
                                            : "_ZN3trv14storage_reportEPcy");
    ASSERT_TRUE(quietErrors != nullptr && echoOutput != nullptr && storageReport != nullptr);
    EXPECT_EQ(quietErrors(), 0);
    EXPECT_EQ(echoOutput(), 0);
    char report[100] = "";
    storageReport(report, sizeof report);
    EXPECT_STREQ(report, "data base memory : 0/0");
}

}  // namespace
}  // namespace trv::testing
