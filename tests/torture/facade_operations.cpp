#include <tests/assembly/sample_components.h>
#include <tests/machine_context/context_samples.h>
#include <tests/torture/operations.h>
#include <trvfiles/catalogue/CMachineContextUtils.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <sys/xattr.h>

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <vector>

namespace trv::testing {
namespace {

std::string narrow(const std::wstring& text) {
    return std::filesystem::path(text).string();
}

Outcome readContextOf(Workshop& at) {
    CQvFilesIO files(at.wide(""));
    CMachineContextData data;
    const int status = at.under([&] { return files.readMachineContext("f.mctx", data); });
    if (status != eFileIOSuccess && status != threwBadAlloc) {
        EXPECT_EQ(ContextFields(data), ContextFields(CMachineContextData()));
    }
    return {status, ::testing::PrintToString(ContextFields(data))};
}

Outcome readContextByPath(Workshop& at) {
    CMachineContextData data;
    const std::wstring path = at.wide("f.mctx");
    const int status = at.under([&] { return CQvFilesIO::sReadMachineContext(path, data); });
    return {status, ::testing::PrintToString(ContextFields(data))};
}

// A failure has a reason, a success has none.
void expectReason(int status, const CFileFault& fault) {
    if (status != threwBadAlloc && status != handlerThrew) {
        EXPECT_EQ(fault.reason.empty(), status == eFileIOSuccess) << fault.reason;
    }
}

Outcome readContextWithAFault(Workshop& at) {
    CQvFilesIO files(at.wide(""));
    CMachineContextData data;
    CFileFault fault;
    const int status = at.under([&] { return files.readMachineContext("f.mctx", data, &fault); });
    expectReason(status, fault);
    return {status, ::testing::PrintToString(ContextFields(data))};
}

Outcome writeContextWithAFault(Workshop& at) {
    CQvFilesIO files(at.wide(""));
    const CMachineContextData data = allFields();
    CFileFault fault;
    const int status = at.under([&] { return files.writeMachineContext("f.mctx", data, &fault); });
    expectReason(status, fault);
    return {status, ""};
}

Outcome writeContextTo(Workshop& at, const char* name) {
    CQvFilesIO files(at.wide(""));
    const CMachineContextData data = allFields();
    return {at.under([&] { return files.writeMachineContext(name, data); }), ""};
}

unsigned modeOf(const std::filesystem::path& path) {
    return static_cast<unsigned>(std::filesystem::status(path).permissions());
}

Outcome replacePrivateContext(Workshop& at) {
    const std::filesystem::path path = at.path("private.mctx");
    ::setxattr(path.c_str(), "user.comment", "kept", 4, 0);
    const Outcome outcome = writeContextTo(at, "private.mctx");
    EXPECT_EQ(modeOf(path), 0600U);
    return outcome;
}

Outcome replaceLinkedContext(Workshop& at) {
    const Outcome outcome = writeContextTo(at, "link.mctx");
    EXPECT_TRUE(std::filesystem::is_symlink(at.path("link.mctx")));
    return outcome;
}

Outcome readAssemblyOf(Workshop& at, const char* name) {
    CQvFilesIO files(at.wide(""));
    CTrvAssemblyData data;
    const int status = at.under([&] { return files.readTrvAssembly(name, data); });
    if (status != eFileIOSuccess) {
        EXPECT_TRUE(data.getRootComponent() == CTrvAssemblyComponentData());
    }
    return {status, std::to_string(data.getComponentNumber()) + data.getRootComponent().getName()};
}

Outcome readAssemblyWithAFault(Workshop& at) {
    CQvFilesIO files(at.wide(""));
    CTrvAssemblyData data;
    CFileFault fault;
    const int status = at.under([&] { return files.readTrvAssembly("f.assembly", data, &fault); });
    expectReason(status, fault);
    return {status, std::to_string(data.getComponentNumber()) + data.getRootComponent().getName()};
}

Outcome writeAssemblyTo(Workshop& at, const CTrvAssemblyData& data) {
    const std::wstring path = at.wide("old");
    return {at.under([&] { return CQvFilesIO::sWriteTrvAssembly(path, data); }), ""};
}

Outcome writeAssemblyWithAFault(Workshop& at, const CTrvAssemblyData& data) {
    const std::string path = at.text("old");
    CFileFault fault;
    const int status =
        at.under([&] { return CQvFilesIO::sWriteTrvAssembly(path.c_str(), data, &fault); });
    expectReason(status, fault);
    return {status, ""};
}

CTrvAssemblyData flatAssembly() {
    return assemblyOf(group("new", {leaf("x", "x.stl"), leaf("y", "y.stl")}), {1, 2, 3});
}

// Three blocks of 64 KiB.
CTrvAssemblyData largeAssembly() {
    constexpr int children = 500;
    return assemblyOf(
        group("root", std::vector<CTrvAssemblyComponentData>(children, leaf("a", "f"))));
}

CTrvAssemblyData deepAssembly() {
    constexpr int deep = 110;
    return assemblyOf(chain(deep));
}

Outcome readAxisOf(Workshop& at) {
    CQvFilesIO files(at.wide(""));
    std::array<double, 16> matrix = {};
    std::array<int, 3> tags = {};
    const int status = at.under(
        [&] { return files.readAxis(L"f.axis", matrix.data(), tags[0], tags[1], tags[2]); });
    if (status != eFileIOSuccess) {
        EXPECT_EQ(matrix, (std::array<double, 16>{}));
        EXPECT_EQ(tags, (std::array<int, 3>{}));
    }
    return {status, ::testing::PrintToString(matrix) + ::testing::PrintToString(tags)};
}

Outcome readAxisWithAFault(Workshop& at) {
    CQvFilesIO files(at.wide(""));
    std::array<double, 16> matrix = {};
    std::array<int, 3> tags = {};
    CFileFault fault;
    const int status = at.under(
        [&] { return files.readAxis("f.axis", matrix.data(), tags[0], tags[1], tags[2], &fault); });
    expectReason(status, fault);
    return {status, ::testing::PrintToString(matrix) + ::testing::PrintToString(tags)};
}

// The reason of an incomplete write is stored beside a success.
Outcome writeAxisWithAFault(Workshop& at) {
    const std::string path = at.text("old");
    const double matrix[16] = {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 7, 8, 9, 1};
    CFileFault fault;
    const int status =
        at.under([&] { return CQvFilesIO::sWriteAxis(path.c_str(), matrix, 4, 5, 6, &fault); });
    if (status == eFileIOOpenError) {
        EXPECT_NE(fault.reason, "");
    }
    return {status, ""};
}

Outcome writeAxisTo(Workshop& at) {
    CQvFilesIO files(at.wide(""));
    const double matrix[16] = {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 7, 8, 9, 1};
    return {at.under([&] { return files.writeAxis(L"old", matrix, 4, 5, 6); }), ""};
}

Outcome copy(Workshop& at) {
    CQvFilesIO files(at.wide(""));
    const std::string from = at.text("f.assembly");
    const std::string to = at.text("old");
    return {at.under([&] { return files.copyFile(from, to); }), ""};
}

Outcome testExistence(Workshop& at) {
    CQvFilesIO files(at.wide(""));
    const std::string name = "f.axis";
    return {at.under([&] { return files.isfileExists(name); }), ""};
}

Outcome askForFavouriteDirectory(Workshop& at) {
    std::wstring directory;
    const int status = at.under([&] {
        directory = CMachineContextUtils::sGetFavoriteMachineContextDirectoryW();
        return directory.empty() ? 0 : 1;
    });
    return {status, narrow(directory)};
}

Outcome listFavourites(Workshop& at) {
    std::vector<std::wstring> found;
    const int status = at.under([&] {
        found = CMachineContextUtils::sGetFavoriteMachineContext(L"");
        return found.size();
    });
    std::string result;
    for (const std::wstring& file : found)
        result += narrow(file) + '\n';
    return {status, result};
}

Outcome chooseDefault(Workshop& at) {
    const std::vector<std::wstring> files = {L"[MACHINE_POSITION_2].mctx", L"other.mctx",
                                             L"[MACHINE_POSITION_11].mctx"};
    int index = 0;
    int position = 0;
    const int status = at.under(
        [&] { return CMachineContextUtils::sGetDefaultMachineContext(files, index, position); });
    return {status, std::to_string(index) + ' ' + std::to_string(position)};
}

Outcome createDefault(Workshop& at, const char* directory) {
    std::filesystem::create_directory(at.path("empty"));
    std::wstring context;
    std::wstring reference;
    const std::wstring where = at.wide(directory);
    const int status = at.under([&] {
        return CMachineContextUtils::sCreateDefaultMachineContext(where, 1, &context, &reference);
    });
    if (status == 0) {
        EXPECT_EQ(context + reference, L"");
    }
    return {status, narrow(context + reference)};
}

Outcome createNamed(Workshop& at) {
    std::wstring context;
    std::wstring reference;
    const std::wstring where = at.wide("");
    const int status = at.under([&] {
        return CMachineContextUtils::sCreateMachineContext(where, L"mill5.mac", L"", L"", &context,
                                                           &reference);
    });
    if (status == 0) {
        EXPECT_EQ(context + reference, L"");
    }
    return {status, narrow(context + reference)};
}

template <class... Arguments>
auto bound(Outcome (*run)(Workshop&, Arguments...), Arguments... arguments) {
    return [=](Workshop& at) { return run(at, arguments...); };
}

}  // namespace

std::vector<Operation> facadeOperations() {
    const std::string reference = "[stockposition@[MACHINE_POSITION_1]]MACHINE.ref";
    const std::string namedReference = "[stockposition@mill5[MACHINE]]MACHINE.ref";
    return {
        {"ReadAMachineContext", 1, {2}, readContextOf},
        {"ReadAMachineContextByItsPath", 1, {2}, readContextByPath},
        {"ReadAMachineContextWithAFault", 1, {2}, readContextWithAFault},
        {"ReplaceAMachineContextWithAFault", 1, {2, 4, 5}, writeContextWithAFault},
        {"ReplaceAMachineContext", 1, {2, 4, 5}, bound(writeContextTo, "f.mctx")},
        {"ReplaceAPrivateMachineContext", 1, {2, 4, 5}, replacePrivateContext},
        {"ReplaceAMachineContextThroughALink", 1, {2, 4, 5}, replaceLinkedContext},
        {"WriteANewMachineContext", 1, {2, 4, 5}, bound(writeContextTo, "new.mctx")},
        inQt({"ReadAnAssembly", 1, {2, 4}, bound(readAssemblyOf, "f.assembly")}),
        inQt({"ReadAnAssemblyWithAFault", 1, {2, 4}, readAssemblyWithAFault}),
        inQt({"ReadADeepAssembly", 1, {2, 4}, bound(readAssemblyOf, "deep.assembly")}),
        inQt({"ReadALargeAssembly", 1, {2, 4}, bound(readAssemblyOf, "large.assembly")}),
        inQt({"ReadALargeUnusualAssembly",
              1,
              {2, 4},
              bound(readAssemblyOf, "large-unusual.assembly")}),
        inQt({"ReadADeepUnusualAssembly",
              1,
              {2, 4},
              bound(readAssemblyOf, "deep-unusual.assembly")}),
        {"WriteAnAssembly",
         1,
         {2, 3},
         [](Workshop& at) { return writeAssemblyTo(at, flatAssembly()); },
         {"old"}},
        {"WriteAnAssemblyWithAFault",
         1,
         {2, 3},
         [](Workshop& at) { return writeAssemblyWithAFault(at, flatAssembly()); },
         {"old"}},
        {"WriteALargeAssembly",
         1,
         {2, 3},
         [](Workshop& at) { return writeAssemblyTo(at, largeAssembly()); },
         {"old"}},
        {"WriteADeepAssembly",
         1,
         {2, 3},
         [](Workshop& at) { return writeAssemblyTo(at, deepAssembly()); },
         {"old"}},
        {"ReadAnAxis", 1, {2, 4}, readAxisOf},
        {"WriteAnAxis", 1, {2}, writeAxisTo, {"old"}, false, true},
        {"ReadAnAxisWithAFault", 1, {2, 4}, readAxisWithAFault},
        {"WriteAnAxisWithAFault", 1, {2}, writeAxisWithAFault, {"old"}, false, true},
        {"CopyAFile", 1, {0}, copy, {"old"}, false, true},
        {"AskWhetherAFileExists", 1, {0}, testExistence},
        {"AskForTheFavouriteDirectory", 1, {0}, askForFavouriteDirectory},
        inQt({"ListTheFavouriteContexts", 2, {0, 1}, listFavourites}),
        {"ChooseTheDefaultContext", 1, {}, chooseDefault},
        {"CreateADefaultContext", 1, {0}, bound(createDefault, ""), {reference}, false, true},
        {"CreateADefaultContextWithItsAxis",
         1,
         {0},
         bound(createDefault, "empty"),
         {"empty/transfo.dat", "empty/" + reference},
         false,
         true},
        {"CreateANamedContext", 1, {0}, createNamed, {namedReference}, false, true, true},
    };
}

}  // namespace trv::testing
