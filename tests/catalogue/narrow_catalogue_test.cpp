// The catalogue in narrow text.

#include <tests/common/current_directory.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/catalogue/CMachineContextUtils.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using namespace trv::testing;
using Utils = CMachineContextUtils;

TEST(NarrowCatalogue, FindsContexts) {
    const TemporaryDirectory directory;
    fs::create_directory(directory / "\xC3\xA4");
    writeBytes(directory / "\xC3\xA4/\xC3\xA4.mctx", "");
    EXPECT_EQ(Utils::sGetFavoriteMachineContextNarrow(directory.text()),
              std::vector<std::string>{directory.text() + "/\xC3\xA4/\xC3\xA4.mctx"});
    EXPECT_TRUE(Utils::sGetFavoriteMachineContextNarrow(directory.text() + "/missing").empty());
}

TEST(NarrowCatalogue, ChoosesTheDefault) {
    int index = 7;
    int position = 7;
    EXPECT_TRUE(Utils::sGetDefaultMachineContextNarrow(
        {"a.mctx", "[MACHINE_POSITION_3].mctx", "[MACHINE_POSITION_2].mctx"}, index, position));
    EXPECT_EQ(index, 1);
    EXPECT_EQ(position, 3);
    EXPECT_FALSE(Utils::sGetDefaultMachineContextNarrow({"a.mctx"}, index, position));
    EXPECT_EQ(index, -1);
}

TEST(NarrowCatalogue, CreatesTheDefault) {
    const TemporaryDirectory directory;
    std::string context = "old";
    std::string reference = "old";
    EXPECT_TRUE(
        Utils::sCreateDefaultMachineContextNarrow(directory.text(), 2, &context, &reference));
    EXPECT_EQ(context, "[MACHINE_POSITION_2].mctx");
    EXPECT_EQ(reference, "[stockposition@[MACHINE_POSITION_2]]MACHINE.ref");
    EXPECT_TRUE(fs::exists(directory / context));
    EXPECT_TRUE(fs::exists(directory / reference));
    context = "old";
    EXPECT_FALSE(Utils::sCreateDefaultMachineContextNarrow(directory.text(), 2, &context, nullptr));
    EXPECT_EQ(context, "old");
    EXPECT_TRUE(Utils::sCreateDefaultMachineContextNarrow(directory.text(), 3, nullptr, nullptr));
}

TEST(NarrowCatalogue, CreatesAContextOfAMachine) {
    const TemporaryDirectory directory;
    const CurrentDirectory current(directory.path());
    writeBytes(directory / "\xC3\xB6.dat", "axis");
    std::string context;
    std::string reference;
    EXPECT_TRUE(Utils::sCreateMachineContextNarrow(directory.text(), "\xC3\xA4.mac", "\xC3\xB6.dat",
                                                   "", &context, &reference));
    EXPECT_EQ(context, "\xC3\xA4[\xC3\xB6.dat].mctx");
    EXPECT_TRUE(fs::exists(directory / context));
    EXPECT_EQ(bytesOf(directory / reference), "axis");
    reference = "old";
    EXPECT_FALSE(Utils::sCreateMachineContextNarrow(directory.text(), "\xC3\xA4.mac",
                                                    "\xC3\xB6.dat", "", &context, &reference));
    EXPECT_EQ(reference, "old");
}
