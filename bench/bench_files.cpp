#include <bench/bench_files.h>
#include <bench/comparison.h>

#include <cstdint>
#include <fstream>
#include <iterator>
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

// The files need less than half of this.
std::filesystem::path directoryInMemory() {
    constexpr std::uintmax_t neededBytes = std::uintmax_t{512} << 20;
    const std::filesystem::path memory = "/dev/shm";
    std::error_code failure;
    const std::filesystem::space_info space = std::filesystem::space(memory, failure);
    const bool hasRoom = !failure && space.available >= neededBytes;
    return hasRoom ? memory : std::filesystem::temp_directory_path();
}

}  // namespace

const std::filesystem::path& workDirectory() {
    static const WorkDirectory directory(directoryInMemory());
    return directory.path();
}

std::string workFile(const std::string& name) {
    return (workDirectory() / name).string();
}

std::string diskFile(const std::string& name) {
    // Its files are kept when the system restarts, so it is on a disk. The directory for temporary
    // files may be in memory.
    static const WorkDirectory directory("/var/tmp");
    return (directory.path() / name).string();
}

std::string readText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    require(!text.empty(), "reading a file to measure with");
    return text;
}

void writeText(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    require(file.good(), "writing a file to measure with");
}

}  // namespace trv::bench
