// The interface of a host: only the public headers, without Qt, and the exported symbols of the
// library.

#include <tests/common/child_process.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/assembly/CComponentInfo.h>
#include <trvfiles/assembly/CTrvAssemblyComponentData.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/CTrvAssemblyNode.h>
#include <trvfiles/assembly/XForm3Gen.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/facade/EFileIOStatus.h>
#include <trvfiles/machine_context/CMachineContextData.h>
#include <trvfiles/machine_context/CMachineContextUtils.h>
#include <trvfiles/support/CFileFault.h>

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

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

TEST(PublicInterface, NamesStatusesAndKindsOfNotes) {
    EXPECT_STREQ(fileIOStatusText(eFileIOSuccess), "success");
    EXPECT_STREQ(fileNoteKindName(CFileFault::Note::Kind::leftOut), "leftOut");
}

TEST(PublicInterface, SaysWhyAFileIsNotRead) {
    const trv::testing::TemporaryDirectory directory;
    CQvFilesIO files(directory.text());
    CTrvAssemblyData assembly;
    CFileFault fault;
    EXPECT_EQ(files.readTrvAssembly("missing", assembly, &fault), eFileIOOpenError);
    EXPECT_EQ(fault.reason, "No such file or directory");
}

TEST(PublicInterface, ReadsAndWritesInMemory) {
    std::string bytes;
    CTrvAssemblyData assembly;
    assembly.getRootComponent().setGeometryFileName("f.stl");
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssemblyToMemory(bytes, assembly), eFileIOSuccess);
    CTrvAssemblyData read;
    EXPECT_EQ(CQvFilesIO::sReadTrvAssemblyFromMemory(bytes, read), eFileIOSuccess);
    EXPECT_TRUE(read == assembly);

    CMachineContextData context;
    context.setMachineName("mill");
    EXPECT_EQ(CQvFilesIO::sWriteMachineContextToMemory(bytes, context), eFileIOSuccess);
    CMachineContextData other;
    EXPECT_EQ(CQvFilesIO::sReadMachineContextFromMemory(bytes, other), eFileIOSuccess);
    EXPECT_EQ(other.getMachineName(), "mill");

    Math::XForm3Gen<double> placement;
    placement(3, 0) = 7;
    EXPECT_EQ(CQvFilesIO::sWriteAxisToMemory(bytes, placement.data(), 1, 2, 3), eFileIOSuccess);
    Math::XForm3Gen<double> back;
    int tags[3] = {};
    EXPECT_EQ(CQvFilesIO::sReadAxisFromMemory(bytes, back.data(), tags[0], tags[1], tags[2]),
              eFileIOSuccess);
    EXPECT_EQ(back(3, 0), 7);
    EXPECT_EQ(tags[2], 3);
}

TEST(PublicInterface, EditsAnAssemblyInPlace) {
    CTrvAssemblyData assembly;
    CTrvAssemblyNode& root = assembly.getRootComponent().node();
    root.addChild(CTrvAssemblyComponentData()).setGeometryFileName("a.stl");
    for (CTrvAssemblyNode& child : root.children())
        child.setTranslation({1, 2, 3});
    ASSERT_EQ(assembly.getComponentFileList().size(), 1U);
    EXPECT_EQ(assembly.getComponentFileList()[0].getTranslation(),
              (std::array<double, 3>{1, 2, 3}));
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

TEST(PublicInterface, WritesAndReadsAMachineContext) {
    const trv::testing::TemporaryDirectory directory;
    CQvFilesIO files(directory.text());
    CMachineContextData context;
    context.setMachineName("mill");
    context.setClampingProximity(2.5);
    ASSERT_EQ(files.writeMachineContext("a.mctx", context), eFileIOSuccess);
    ASSERT_EQ(files.writeMachineContext(std::wstring(L"b.mctx"), context), eFileIOSuccess);
    const std::wstring path = directory.wide() + L"/c.mctx";
    ASSERT_EQ(CQvFilesIO::sWriteMachineContext(path, context), eFileIOSuccess);

    CMachineContextData read[3];
    ASSERT_EQ(files.readMachineContext("c.mctx", read[0]), eFileIOSuccess);
    ASSERT_EQ(files.readMachineContext(std::wstring(L"a.mctx"), read[1]), eFileIOSuccess);
    ASSERT_EQ(CQvFilesIO::sReadMachineContext(directory.wide() + L"/b.mctx", read[2]),
              eFileIOSuccess);
    for (const CMachineContextData& one : read) {
        EXPECT_EQ(one.getMachineName(), "mill");
        EXPECT_EQ(one.getClampingProximity(), 2.5);
    }
}

TEST(PublicInterface, HasTheCatalogue) {
    static_assert(
        std::is_same_v<decltype(CMachineContextUtils::sGetFavoriteMachineContextDirectoryW),
                       std::wstring()>);
    static_assert(std::is_same_v<decltype(CMachineContextUtils::sGetFavoriteMachineContext),
                                 std::vector<std::wstring>(std::wstring)>);
    static_assert(std::is_same_v<decltype(CMachineContextUtils::sGetDefaultMachineContext),
                                 bool(std::vector<std::wstring>, int&, int&)>);
    static_assert(std::is_same_v<decltype(CMachineContextUtils::sCreateDefaultMachineContext),
                                 bool(const std::wstring&, int, std::wstring*, std::wstring*)>);
    static_assert(std::is_same_v<decltype(CMachineContextUtils::sCreateMachineContext),
                                 bool(const std::wstring&, const std::wstring&, const std::wstring&,
                                      const std::wstring&, std::wstring*, std::wstring*)>);
}

TEST(PublicInterface, CreatesAndFindsMachineContexts) {
    const trv::testing::TemporaryDirectory directory;
    std::filesystem::create_directory(directory / "A");
    const std::wstring project = directory.wide() + L"/A";
    std::wstring context;
    std::wstring reference;
    ASSERT_TRUE(
        CMachineContextUtils::sCreateDefaultMachineContext(project, 3, &context, &reference));
    EXPECT_EQ(reference,
              L"[stockposition@" + context.substr(0, context.size() - 5) + L"]MACHINE.ref");

    int index = 0;
    int position = 0;
    EXPECT_TRUE(CMachineContextUtils::sGetDefaultMachineContext({L"x", context}, index, position));
    EXPECT_EQ(index, 1);
    EXPECT_EQ(position, 3);

    EXPECT_FALSE(CMachineContextUtils::sCreateMachineContext(project, L"m.mac", L"none.ref",
                                                             L"A.mctx", &context, &reference));
    const CMachineContextData favorite;
    ASSERT_EQ(CQvFilesIO(project).writeMachineContext("A.mctx", favorite), eFileIOSuccess);
    EXPECT_EQ(CMachineContextUtils::sGetFavoriteMachineContext(directory.wide()),
              std::vector<std::wstring>{project + L"/A.mctx"});
    CMachineContextUtils one;
    const CMachineContextUtils other;
    EXPECT_EQ(&(one = other), &one);
    EXPECT_EQ(&(one = CMachineContextUtils()), &one);
}

TEST(PublicInterface, KnowsTheDirectoryOfTheFavorites) {
    if (!trv::testing::can_fork) GTEST_SKIP() << "needs a child process";
    EXPECT_TRUE(trv::testing::passesInChild([] {
        ASSERT_TRUE(trv::testing::setEnvironment("TRV_MCTX_DEF", "/favourites"));
        EXPECT_EQ(CMachineContextUtils::sGetFavoriteMachineContextDirectoryW(), L"/favourites");
    }));
}

}  // namespace
