#include <bench/bench_files.h>
#include <bench/comparison.h>
#include <trvfiles/support/dynamic_storage.h>
#include <trvfiles/support/file_system.h>

#include <dirent.h>
#include <fnmatch.h>

#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <memory>

namespace trv::bench {
namespace {

// Sizes that are typical of a program that handles texts.
constexpr std::size_t blockSize(std::size_t i) {
    return 16 + i * 37 % 500;
}

template <class Allocate, class Free>
void allocateAndFree(Allocate allocate, Free free) {
    constexpr std::size_t blocks = 1000;
    void* block[blocks];
    for (std::size_t i = 0; i < blocks; ++i)
        block[i] = allocate(blockSize(i));
    benchmark::DoNotOptimize(block);
    for (std::size_t i = 0; i < blocks; ++i)
        free(block[i]);
}

Comparison heap() {
    const auto ours = [] {
        allocateAndFree([](std::size_t size) { return _Wmalloc(temporary_tag, size); },
                        [](void* block) { _Wfree(block); });
    };
    const auto plain = [] {
        allocateAndFree([](std::size_t size) { return std::malloc(size); },
                        [](void* block) { std::free(block); });
    };
    return {"_Wmalloc and _Wfree, 1,000 blocks", ours, {{"malloc and free", plain, 4.0}}};
}

Comparison listing() {
    constexpr int files = 10000;
    const std::string directory = workFile("listing");
    std::filesystem::create_directory(directory);
    for (int i = 0; i < files; ++i)
        std::ofstream(directory + "/tool-" + std::to_string(i) + (i % 2 == 0 ? ".mctx" : ".txt"));

    const auto ours = [pattern = directory + "/tool-*.mctx"] {
        const std::unique_ptr<file_listing, decltype(&listing_free)> list(
            list_matching(pattern.c_str()), listing_free);
        require(listing_count(list.get()) == files / 2, "a listing");
    };
    const auto plain = [directory] {
        int count = 0;
        DIR* entries = ::opendir(directory.c_str());
        while (const dirent* entry = ::readdir(entries)) {
            if (::fnmatch("tool-*.mctx", entry->d_name, 0) == 0) ++count;
        }
        ::closedir(entries);
        require(count == files / 2, "a listing by hand");
    };
    return {"list 10,000 files by wildcard", ours, {{"readdir and fnmatch", plain, 2.0}}};
}

}  // namespace

Comparisons supportComparisons() {
    return {heap(), listing()};
}

}  // namespace trv::bench
