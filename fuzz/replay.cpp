// Runs a target over files, without a fuzzer.
// Usage: fuzz_replay TARGET FILE|DIRECTORY...

#include <fuzz/targets.h>
#include <tests/common/file_bytes.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> filesOf(const fs::path& path) {
    if (!fs::is_directory(path)) return {path};
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
        if (entry.path().filename() != ".gitignore") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

int main(int count, char** arguments) {
    const trv::fuzz::Target* target = count < 2 ? nullptr : trv::fuzz::findTarget(arguments[1]);
    if (target == nullptr) {
        std::fputs("usage: fuzz_replay TARGET FILE|DIRECTORY...\n", stderr);
        return 2;
    }
    std::size_t inputs = 0;
    for (int i = 2; i < count; ++i) {
        for (const fs::path& file : filesOf(arguments[i])) {
            // An input that fails ends the process. It is the last one that was printed.
            std::printf("%s\n", file.string().c_str());
            std::fflush(stdout);
            target->check(trv::testing::bytesOf(file));
            ++inputs;
        }
    }
    std::printf("%s: %zu inputs\n", arguments[1], inputs);
    return inputs == 0 ? 1 : 0;
}
