#include <bench/bench_files.h>
#include <bench/comparison.h>

#include <cstdint>
#include <fstream>
#include <random>

namespace trv::bench {
namespace {

class WorkDirectory {
public:
    explicit WorkDirectory(const std::filesystem::path& parent) {
        std::random_device random;
        path_ = parent / ("trvfiles-bench-" + std::to_string(random()));
        require(std::filesystem::create_directory(path_), "making the work directory");
    }
    ~WorkDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    WorkDirectory(const WorkDirectory&) = delete;
    WorkDirectory& operator=(const WorkDirectory&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace

const std::filesystem::path& workDirectory() {
    static const WorkDirectory directory(std::filesystem::temp_directory_path());
    return directory.path();
}

std::string workFile(const std::string& name) {
    return (workDirectory() / name).string();
}

std::string memoryFile(const std::string& name) {
    static constexpr char memory[] = "/dev/shm";
    constexpr std::uintmax_t neededBytes = std::uintmax_t{512} << 20;
    static const bool hasRoom = [] {
        std::error_code failure;
        return std::filesystem::space(memory, failure).available >= neededBytes && !failure;
    }();
    if (!hasRoom) return workFile(name);
    static const WorkDirectory directory(memory);
    return (directory.path() / name).string();
}

void writeText(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    require(file.good(), "writing a file to measure with");
}

}  // namespace trv::bench
