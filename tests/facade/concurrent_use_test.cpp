#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <tests/machine_context/context_samples.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

using namespace trv::testing;

namespace {

constexpr int rounds = 100;

/// Starts all threads at the same moment and waits for them.
void runAtOnce(const std::vector<std::function<void()>>& works) {
    std::atomic<std::size_t> waiting = works.size();
    std::vector<std::thread> threads;
    threads.reserve(works.size());
    for (const auto& work : works) {
        threads.emplace_back([&waiting, &work] {
            --waiting;
            while (waiting > 0)
                std::this_thread::yield();
            work();
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

CTrvAssemblyData assembly(const std::string& name, int round) {
    CTrvAssemblyComponentData child;
    child.setName(name);
    child.setGeometryFileName(name + ".stl");
    const double translation[3] = {round + 0.5, 0, 0};
    child.setTranslation(translation);
    CTrvAssemblyData data;
    data.getRootComponent().setComponents({child, child, child});
    return data;
}

/// Writes and reads the files of one thread. Counts the results that differ from what was written.
int useFiles(const std::filesystem::path& directory, const std::string& name) {
    CQvFilesIO files(directory.wstring());
    const std::wstring axisName = std::filesystem::path(name + ".axis").wstring();
    int failures = 0;
    for (int round = 0; round < rounds; ++round) {
        const std::array<double, 16> written = {0, 1, 0, 0, -1,           0, 0, 0,
                                                0, 0, 1, 0, round + 0.25, 0, 0, 1};
        std::array<double, 16> matrix = {};
        std::array<int, 3> tags = {};
        if (files.writeAxis(axisName, written.data(), round, 1, 2) != eFileIOSuccess) ++failures;
        if (files.readAxis(axisName, matrix.data(), tags[0], tags[1], tags[2]) != eFileIOSuccess)
            ++failures;
        if (matrix != written || tags != std::array<int, 3>{round, 1, 2}) ++failures;

        const CTrvAssemblyData before = assembly(name, round);
        CTrvAssemblyData after;
        if (files.writeTrvAssembly(name.c_str(), before) != eFileIOSuccess) ++failures;
        if (files.readTrvAssembly(name.c_str(), after) != eFileIOSuccess) ++failures;
        if (after != before || after.getComponentFileList().size() != 3) ++failures;
        if (!files.isfileExists(name) || files.absoluteFileName(name).empty()) ++failures;
        if (files.readTrvAssembly("missing", after) != eFileIOOpenError) ++failures;
    }
    return failures;
}

}  // namespace

TEST(ConcurrentUse, OfSeveralFacadesKeepsTheirFilesApart) {
    const TemporaryDirectory directory;
    std::atomic<int> failures = 0;
    runAtOnce({[&] { failures += useFiles(directory.path(), "one"); },
               [&] { failures += useFiles(directory.path(), "two"); }});
    EXPECT_EQ(failures, 0);
}

TEST(ConcurrentUse, OfOneFileByTwoReadersSucceeds) {
    const TemporaryDirectory directory;
    CQvFilesIO files(directory.wide());
    const std::array<double, 16> identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    ASSERT_EQ(files.writeAxis(L"axis", identity.data(), 1, 2, 3), eFileIOSuccess);
    ASSERT_EQ(files.writeTrvAssembly("assembly", assembly("a", 1)), eFileIOSuccess);
    std::atomic<int> failures = 0;
    const auto read = [&] {
        CQvFilesIO own(directory.wide());
        for (int round = 0; round < rounds; ++round) {
            std::array<double, 16> matrix = {};
            std::array<int, 3> tags = {};
            CTrvAssemblyData data;
            if (own.readAxis(L"axis", matrix.data(), tags[0], tags[1], tags[2]) != eFileIOSuccess)
                ++failures;
            if (matrix != identity || tags != std::array<int, 3>{1, 2, 3}) ++failures;
            if (own.readTrvAssembly("assembly", data) != eFileIOSuccess) ++failures;
            if (data != assembly("a", 1)) ++failures;
        }
    };
    runAtOnce({read, read});
    EXPECT_EQ(failures, 0);
}

TEST(ConcurrentUse, OfOneMachineContextBySeveralReadersSucceeds) {
    const TemporaryDirectory directory;
    CQvFilesIO files(directory.wide());
    ASSERT_EQ(files.writeMachineContext("f.mctx", allFields()), eFileIOSuccess);
    const std::wstring path = (directory / "f.mctx").wstring();
    const ContextFields written(allFields());
    std::atomic<int> failures = 0;
    const auto readByName = [&] {
        CQvFilesIO own(directory.wide());
        for (int round = 0; round < rounds; ++round) {
            CMachineContextData data;
            if (own.readMachineContext("f.mctx", data) != eFileIOSuccess) ++failures;
            if (!(ContextFields(data) == written)) ++failures;
            if (own.readMachineContext(L"missing", data) != eFileIOOpenError) ++failures;
        }
    };
    const auto readByPath = [&] {
        for (int round = 0; round < rounds; ++round) {
            CMachineContextData data;
            if (CQvFilesIO::sReadMachineContext(path, data) != eFileIOSuccess) ++failures;
            if (!(ContextFields(data) == written)) ++failures;
        }
    };
    runAtOnce({readByName, readByName, readByPath});
    EXPECT_EQ(failures, 0);
}

// Contexts are read while one thread writes another one. The runtime allows this.
TEST(ConcurrentUse, OfMachineContextsByReadersAndOneWriterSucceeds) {
    const TemporaryDirectory directory;
    CQvFilesIO files(directory.wide());
    ASSERT_EQ(files.writeMachineContext("read.mctx", firstOperation()), eFileIOSuccess);
    std::atomic<int> failures = 0;
    const auto read = [&] {
        CQvFilesIO own(directory.wide());
        for (int round = 0; round < rounds; ++round) {
            CMachineContextData data;
            if (own.readMachineContext("read.mctx", data) != eFileIOSuccess) ++failures;
            if (!(ContextFields(data) == ContextFields(firstOperation()))) ++failures;
        }
    };
    const auto write = [&] {
        CQvFilesIO own(directory.wide());
        for (int round = 0; round < rounds; ++round) {
            if (own.writeMachineContext("written.mctx", allFields()) != eFileIOSuccess) ++failures;
        }
    };
    runAtOnce({read, write, read});
    EXPECT_EQ(failures, 0);
}

TEST(ConcurrentUse, OfOneFileForACopyAndForReadersSucceeds) {
    const TemporaryDirectory directory;
    CQvFilesIO files(directory.wide());
    ASSERT_EQ(files.writeTrvAssembly("assembly", assembly("a", 1)), eFileIOSuccess);
    std::atomic<int> failures = 0;
    const auto copy = [&](const char* name) {
        CQvFilesIO own(directory.wide());
        const std::string source = own.absoluteFileName(std::string("assembly"));
        const std::string destination = own.absoluteFileName(std::string(name));
        for (int round = 0; round < rounds; ++round) {
            if (!own.copyFile(source, destination)) ++failures;
            CTrvAssemblyData data;
            if (own.readTrvAssembly(name, data) != eFileIOSuccess) ++failures;
            if (data != assembly("a", 1)) ++failures;
        }
    };
    runAtOnce({[&] { copy("one"); }, [&] { copy("two"); }, [&] { copy("three"); }});
    EXPECT_EQ(failures, 0);
}

TEST(ConcurrentUse, OfOneMachineContextRecordByTwoReadersSucceeds) {
    const CMachineContextData data = allFields();
    const CMachineContextData untouched;
    const ContextFields expected(data);
    std::atomic<int> failures = 0;
    const auto read = [&] {
        for (int round = 0; round < rounds; ++round) {
            CMachineContextData copy = data;
            copy.setName("another");
            if (!(ContextFields(data) == expected) || data.isNull()) ++failures;
            if (copy.getNameW() != L"another" || !untouched.isNull()) ++failures;
        }
    };
    runAtOnce({read, read});
    EXPECT_EQ(failures, 0);
}

TEST(ConcurrentUse, OfOneRecordByTwoReadersSucceeds) {
    const CTrvAssemblyData data = assembly("a", 1);
    const CTrvAssemblyData untouched;
    std::atomic<int> failures = 0;
    const auto read = [&] {
        for (int round = 0; round < rounds; ++round) {
            const CTrvAssemblyData copy = data;
            if (copy != data || data.getComponentNumber() != 3) ++failures;
            if (data.getComponentFileList().size() != 3) ++failures;
            if (untouched.getRootComponent() != CTrvAssemblyComponentData()) ++failures;
        }
    };
    runAtOnce({read, read});
    EXPECT_EQ(failures, 0);
}
