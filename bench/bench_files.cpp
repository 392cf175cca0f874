#include <bench/bench_files.h>
#include <bench/comparison.h>

#include <fstream>
#include <random>

namespace trv::bench {
namespace {

class WorkDirectory {
public:
    WorkDirectory() {
        std::random_device random;
        path_ =
            std::filesystem::temp_directory_path() / ("trvfiles-bench-" + std::to_string(random()));
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
    static const WorkDirectory directory;
    return directory.path();
}

std::string workFile(const std::string& name) {
    return (workDirectory() / name).string();
}

void writeText(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    require(file.good(), "writing a file to measure with");
}

}  // namespace trv::bench
