// What a host sees: the public headers alone, without Qt, and the library with what it exports.

#include <tests/common/temporary_directory.h>
#include <trvfiles/assembly/CComponentInfo.h>
#include <trvfiles/assembly/CTrvAssemblyComponentData.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/XForm3Gen.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/facade/EFileIOStatus.h>
#include <trvfiles/machine_context/CMachineContextData.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>

#ifdef QT_CORE_LIB
#error "a host needs no Qt"
#endif

namespace {

TEST(PublicInterface, HasStatusesWithFixedNumbers) {
    static_assert(std::is_same_v<std::underlying_type_t<EFileIOStatus>, std::int32_t>);
    EXPECT_EQ(eFileIOSuccess, 1);
    EXPECT_EQ(eFileIOOpenError, 2);
    EXPECT_EQ(eFileIOShortWrite, 3);
    EXPECT_EQ(eFileIOContentError, 4);
    EXPECT_EQ(eFileIOStructureError, 5);
}

TEST(PublicInterface, BuildsWritesAndReadsAnAssembly) {
    const trv::testing::TemporaryDirectory directory;
    CQvFilesIO files(directory.text());
    CTrvAssemblyComponentData part;
    part.setName("part");
    part.setGeometryFileName("part.stl");
    CTrvAssemblyComponentData root;
    root.setComponents({part});
    CTrvAssemblyData assembly;
    assembly.setRootComponent(root);
    ASSERT_EQ(files.writeTrvAssembly("a.xml", assembly), eFileIOSuccess);

    CTrvAssemblyData read;
    ASSERT_EQ(files.readTrvAssembly(std::wstring(L"a.xml"), read), eFileIOSuccess);
    EXPECT_EQ(read, assembly);
    ASSERT_EQ(read.getComponentFileList().size(), 1u);
    const CComponentInfo placed = read.getComponentFileList().front();
    EXPECT_EQ(placed.getFileName(), "part.stl");
    const double* origin = nullptr;
    placed.getTranslation(origin);
    EXPECT_EQ(origin[2], 0);
}

TEST(PublicInterface, WritesAndReadsAnAxis) {
    const trv::testing::TemporaryDirectory directory;
    CQvFilesIO files(directory.text());
    const Math::XForm3Gen<double> identity;
    ASSERT_EQ(files.writeAxis(L"a.dat", identity.data(), 1, 2, 3), eFileIOSuccess);
    Math::XForm3Gen<double> read;
    int tags[3] = {};
    ASSERT_EQ(files.readAxis(L"a.dat", read.data(), tags[0], tags[1], tags[2]), eFileIOSuccess);
    EXPECT_EQ(tags[2], 3);
    EXPECT_TRUE(files.isfileExists(std::string("a.dat")));
}

TEST(PublicInterface, HoldsAMachineContext) {
    CMachineContextData context;
    EXPECT_TRUE(context.isNull());
    context.setMachineNameW(L"mill");
    const CMachineContextData copy = std::as_const(context);
    EXPECT_EQ(copy.getMachineName(), "mill");
    EXPECT_TRUE(copy.isNotNull());
}

}  // namespace
