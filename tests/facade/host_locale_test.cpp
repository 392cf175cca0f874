#include <tests/common/child_process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/host_locale.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <QCoreApplication>
#include <QLocale>
#include <gtest/gtest.h>

#include <array>
#include <clocale>
#include <functional>
#include <limits>
#include <string>

using namespace trv::testing;

namespace {

const std::array<double, 16> placement = {0.5, 0, 0, 0, 0, 1.25,       0,      0,
                                          0,   0, 2, 0, 0, 1234567.75, -0.001, 1};

const std::string axisBytes =
    "      1\n"
    "      0.500000      0.000000      0.000000      0.000000\n"
    "      0.000000      1.250000      0.000000  1234567.750000\n"
    "      0.000000      0.000000      2.000000     -0.001000\n"
    "      0.000000      0.000000      0.000000      1.000000\n"
    "      2.000000      0.000000      0.000000      0.000000\n"
    "      0.000000      0.800000      0.000000  -987654.200000\n"
    "      0.000000      0.000000      0.500000      0.000500\n"
    "      0.000000      0.000000      0.000000      1.000000\n"
    "  #1234567 0 2\n";

const std::string assemblyBytes =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"  ?>\n"
    "<ComponentInfo version=\"1\">\n"
    "   <Attributs>\n"
    "      <Dimension x=\"1234567.75\" y=\"0.5\" z=\"1e+20\"/>\n"
    "   </Attributs>\n"
    "   <Component name=\"Fr\xC3\xA4se\" comment=\"\" enabled=\"1\">\n"
    "      <Translation x=\"0\" y=\"-2.25\" z=\"nan\"/>\n"
    "      <Orientation>\n"
    "         <vec1 x=\"1\" y=\"0\" z=\"0\"/>\n"
    "         <vec2 x=\"0\" y=\"1\" z=\"0\"/>\n"
    "         <vec3 x=\"0\" y=\"0\" z=\"1\"/>\n"
    "      </Orientation>\n"
    "      <Data number=\"1\">\n"
    "         <File name=\"f.stl\"/>\n"
    "      </Data>\n"
    "   </Component>\n"
    "</ComponentInfo>\n";

CTrvAssemblyData assembly() {
    const double dimension[3] = {1234567.75, 0.5, 1e20};
    const double translation[3] = {0, -2.25, std::numeric_limits<double>::quiet_NaN()};
    CTrvAssemblyData data;
    data.setDimension(dimension);
    data.getRootComponent().setName("Fr\xC3\xA4se");
    data.getRootComponent().setTranslation(translation);
    data.getRootComponent().setGeometryFileName("f.stl");
    return data;
}

class HostLocaleFiles : public ::testing::Test {
protected:
    /// Writes and reads both kinds of files in the current locale.
    void expectTheFilesOfTheCLocale() {
        EXPECT_EQ(files_.writeAxis(L"axis", placement.data(), 1234567, 0, 2), eFileIOSuccess);
        EXPECT_EQ(textOf(directory_ / "axis"), axisBytes);
        EXPECT_EQ(files_.writeTrvAssembly("Fr\xC3\xA4se", assembly()), eFileIOSuccess);
        EXPECT_EQ(textOf(directory_ / "Fr\xC3\xA4se"), assemblyBytes);

        std::array<double, 16> matrix = {};
        std::array<int, 3> tags = {};
        EXPECT_EQ(files_.readAxis(L"axis", matrix.data(), tags[0], tags[1], tags[2]),
                  eFileIOSuccess);
        EXPECT_EQ(matrix, (std::array<double, 16>{2, 0, 0, 0, 0, 0.8, 0, 0, 0, 0, 0.5, 0, 0,
                                                  1234567.75, -0.001, 1}));
        EXPECT_EQ(tags, (std::array<int, 3>{1234567, 0, 2}));
        CTrvAssemblyData data;
        EXPECT_EQ(files_.readTrvAssembly(L"Fr\u00E4se", data), eFileIOSuccess);
        EXPECT_TRUE(data == assembly());
        double dimension[3] = {};
        data.getDimension(dimension);
        EXPECT_EQ(dimension[0], 1234567.75);
        EXPECT_EQ(dimension[1], 0.5);

        writeBytes(directory_ / "comma", "0\n1,5 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n");
        EXPECT_EQ(files_.readAxis(L"comma", matrix.data(), tags[0], tags[1], tags[2]),
                  eFileIOContentError);
    }

    TemporaryDirectory directory_;
    CQvFilesIO files_{directory_.wide()};
};

}  // namespace

TEST_F(HostLocaleFiles, AreWrittenAsExpectedUnderTheOwnLocale) {
    expectTheFilesOfTheCLocale();
}

TEST_F(HostLocaleFiles, AreTheSameInAHostThatWritesNumbersWithAComma) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    for (const char* charset : {"UTF-8", "ISO-8859-1"}) {
        const HostLocale german(charset);
        if (!german.exists()) GTEST_SKIP() << "localedef cannot compile a locale here";
        EXPECT_TRUE(passesInChild([&] {
            ASSERT_TRUE(german.adopt());
            QLocale::setDefault(QLocale(QLocale::German));
            expectTheFilesOfTheCLocale();
            EXPECT_STREQ(std::localeconv()->decimal_point, ",");
        })) << charset;
        EXPECT_TRUE(passesInChild([&] {
            ASSERT_TRUE(german.adopt());
            int count = 1;
            char program[] = "host";
            char* arguments[] = {program, nullptr};
            const QCoreApplication application(count, arguments);
            EXPECT_STREQ(std::localeconv()->decimal_point, ",");
            expectTheFilesOfTheCLocale();
            EXPECT_STREQ(std::localeconv()->decimal_point, ",");
        })) << charset;
    }
}
