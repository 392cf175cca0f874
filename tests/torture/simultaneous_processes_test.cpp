// Several processes save, read and start zones at the same time.

#include <tests/common/child_process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <tests/common/torture_rounds.h>
#include <tests/torture/saves.h>
#include <tests/torture/shared_memory.h>
#include <trvfiles/environment/work_zone.h>
#include <trvfiles/support/diagnostics.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace trv::testing {
namespace {

namespace fs = std::filesystem;

void failAtReports() {
    set_error_handler([](const char* text) { ADD_FAILURE() << text; });
    set_fatal_handler([](const char* text) { ADD_FAILURE() << text; });
}

class SimultaneousSavesOf : public ::testing::TestWithParam<Save> {
protected:
    struct Counts {
        std::atomic<int> saves = 0;
        std::atomic<int> failedSaves = 0;
        std::atomic<int> reads = 0;
        std::atomic<int> tornReads = 0;
        std::atomic<int> savers = 0;
    };

    SimultaneousSavesOf() {
        for (const bool second : {false, true}) {
            run(target(), second);
            texts_.push_back(bytesOf(target()));
        }
    }
    void TearDown() override {
        RecordProperty("saves", counts_->saves);
        RecordProperty("failedSaves", counts_->failedSaves);
        RecordProperty("reads", counts_->reads);
        RecordProperty("tornReads", counts_->tornReads);
    }

    fs::path target() const { return directory_ / "target"; }
    static bool run(const fs::path& path, bool second) {
        return GetParam().run(path, second) == GetParam().success;
    }
    bool isWhole(const std::string& text) const {
        return std::find(texts_.begin(), texts_.end(), text) != texts_.end();
    }
    void save(int times) const {
        for (int time = 0; time < times; ++time) {
            ++counts_->saves;
            if (!run(target(), time % 2 == 1)) ++counts_->failedSaves;
        }
    }
    void readUntilAllAreSaved() const {
        while (counts_->savers > 0) {
            ++counts_->reads;
            if (!isWhole(bytesOf(target()))) ++counts_->tornReads;
        }
    }
    void expectTargetAlone() const {
        EXPECT_TRUE(isWhole(bytesOf(target())));
        EXPECT_EQ(std::distance(fs::directory_iterator(directory_.path()), {}), 1);
    }

    TemporaryDirectory directory_;
    std::vector<std::string> texts_;
    Shared<Counts> counts_;
};

TEST_P(SimultaneousSavesOf, OneFileAllSucceedAndAreReadCompletely) {
    constexpr int readers = 2;
    constexpr int savers = 2;
    const int times = 300 * tortureRounds();
    counts_->savers = savers;
    EXPECT_TRUE(passesInChildren(readers + savers, [&](int child) {
        failAtReports();
        if (child < readers) return readUntilAllAreSaved();
        save(times);
        --counts_->savers;
    }));
    EXPECT_EQ(counts_->saves, savers * times);
    EXPECT_EQ(counts_->failedSaves, 0);
    EXPECT_GT(counts_->reads, 0);
    EXPECT_EQ(counts_->tornReads, 0);
    expectTargetAlone();
}

TEST_P(SimultaneousSavesOf, OneFileSucceedBesideOneThatIsKilled) {
    const int kills = 50 * tortureRounds();
    counts_->savers = 1;
    const pid_t reader = startChild([&] { readUntilAllAreSaved(); });
    const pid_t saver = startChild([&] {
        failAtReports();
        while (counts_->savers > 0)
            save(1);
    });
    for (int kill = 0; kill < kills; ++kill) {
        const pid_t killed = startChild([&] {
            for (;;)
                run(target(), true);
        });
        ::usleep(static_cast<useconds_t>(500 + 97 * kill % 5000));
        ::kill(killed, SIGKILL);
        ::waitpid(killed, nullptr, 0);
    }
    counts_->savers = 0;
    EXPECT_TRUE(hasPassed(saver));
    EXPECT_TRUE(hasPassed(reader));
    EXPECT_GT(counts_->saves, 0);
    EXPECT_EQ(counts_->failedSaves, 0);
    EXPECT_EQ(counts_->tornReads, 0);
    EXPECT_TRUE(run(target(), false));
    expectTargetAlone();
}

TEST_P(SimultaneousSavesOf, TwoFilesOfADirectoryKeepTheirTexts) {
    const int times = 300 * tortureRounds();
    const Shared<std::atomic<int>> swapped;
    EXPECT_TRUE(passesInChildren(2, [&](int child) {
        failAtReports();
        const bool second = child == 1;
        const fs::path path = directory_ / (second ? "b" : "a");
        for (int time = 0; time < times; ++time) {
            ++counts_->saves;
            if (!run(path, second)) ++counts_->failedSaves;
            if (bytesOf(path) != texts_[static_cast<std::size_t>(child)]) ++*swapped;
        }
    }));
    EXPECT_EQ(counts_->failedSaves, 0);
    EXPECT_EQ(*swapped, 0) << "of " << 2 * times;
}

INSTANTIATE_TEST_SUITE_P(Torture, SimultaneousSavesOf, allSaves, nameOfSave);

class SimultaneousZones : public ::testing::Test {
protected:
    static constexpr int processes = 20;
    struct Directory {
        char name[256] = "";
    };

    SimultaneousZones() {
        for (const char* name : {"conf", "tmp"})
            fs::create_directory(directory_ / name);
        writeBytes(directory_ / "conf/workzone.num", "0000000a\n");
    }

    /// The directories of several processes, each of which starts in the zone of its number.
    std::vector<std::string> start(const std::function<std::string(int)>& zoneOf) const {
        const Shared<std::array<Directory, processes>> found;
        EXPECT_TRUE(passesInChildren(processes, [&](int child) {
            failAtReports();
            platform::set_environment("TRVTMPDIR", nullptr);
            platform::set_environment("TRVCONF", (directory_ / "conf").c_str());
            platform::set_environment("TRVTMP", (directory_ / "tmp").c_str());
            platform::set_environment("TRVZONE", (directory_ / zoneOf(child)).c_str());
            const char* directory = get_temporary_directory();
            ASSERT_NE(directory, nullptr);
            EXPECT_TRUE(fs::is_directory(platform::native_path(directory)));
            std::string(directory).copy((*found)[static_cast<std::size_t>(child)].name, 255);
        }));
        std::vector<std::string> names;
        for (const Directory& directory : *found)
            names.emplace_back(directory.name);
        return names;
    }
    std::size_t filesIn(const std::string& name) const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(directory_ / name), {}));
    }

    TemporaryDirectory directory_;
};

TEST_F(SimultaneousZones, OfOneZoneHaveOneDirectory) {
    const int rounds = 20 * tortureRounds();
    for (int round = 0; round < rounds; ++round) {
        const std::string zone = "zone" + std::to_string(round);
        fs::create_directory(directory_ / zone);
        const std::vector<std::string> found = start([&](int) { return zone; });
        EXPECT_EQ(std::set<std::string>(found.begin(), found.end()).size(), 1U);
        EXPECT_EQ(filesIn(zone), 1U);
        ASSERT_FALSE(HasFailure()) << "in round " << round;
    }
    EXPECT_EQ(filesIn("tmp"), static_cast<std::size_t>(rounds));
}

TEST_F(SimultaneousZones, OfTheirOwnHaveDirectoriesOfTheirOwn) {
    const int rounds = 20 * tortureRounds();
    for (int round = 0; round < rounds; ++round) {
        const auto zoneOf = [&](int child) {
            return "zone" + std::to_string(round) + '.' + std::to_string(child);
        };
        for (int child = 0; child < processes; ++child)
            fs::create_directory(directory_ / zoneOf(child));
        const std::vector<std::string> found = start(zoneOf);
        EXPECT_EQ(std::set<std::string>(found.begin(), found.end()).size(), found.size());
        ASSERT_FALSE(HasFailure()) << "in round " << round;
    }
    EXPECT_EQ(filesIn("tmp"), static_cast<std::size_t>(rounds * processes));
    // Each number is allocated once.
    char last[16];
    std::snprintf(last, sizeof last, "%08x\n", 10 + rounds * processes);
    EXPECT_EQ(bytesOf(directory_ / "conf/workzone.num"), last);
}

}  // namespace
}  // namespace trv::testing
