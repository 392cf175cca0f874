// Compares inputs that are chosen to slow a store down with ordinary inputs of the same size.

#include <bench/bench_files.h>
#include <bench/comparison.h>
#include <trvfiles/environment/message_file.h>
#include <trvfiles/environment/message_store.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace trv::bench {
namespace {

constexpr int count = 32000;
constexpr std::size_t nameLength = 240;

struct StoreEnd {
    void operator()(message_store* store) const { destroy_store(store); }
};
using Store = std::unique_ptr<message_store, StoreEnd>;
using NameOf = std::string (*)(int number);

std::string ordinaryName(int number) {
    std::string name = "SETTING_" + std::to_string(number);
    name.resize(nameLength, 'x');
    return name;
}

// Names that share a hash if the hash multiplies blocks of eight characters by an odd factor and
// shifts by 32, whatever the initial value of the hash.
std::string collidingName(int number) {
    std::string name;
    for (int pair = 0; pair < 15; ++pair) {
        std::string blocks(16, 'a');
        if ((number >> pair) % 2 != 0) blocks[7] = blocks[11] = blocks[15] = '\xE1';
        name += blocks;
    }
    return name;
}

// Names that share a hash if the hash ignores the case bit of every ASCII character.
std::string bracketName(int number) {
    std::string name(nameLength, 'x');
    for (int place = 0; place < 15; ++place)
        name[static_cast<std::size_t>(place)] = (number >> place) % 2 == 0 ? '@' : '`';
    return name;
}

Workload merge(const std::string& fileName, NameOf nameOf) {
    std::string text = "[var]\n";
    for (int number = 0; number < count; ++number)
        text += nameOf(number) + " = 1\n";
    const std::string path = workFile(fileName);
    writeText(path, text);
    const auto store = std::make_shared<Store>();
    return {[=] {
                store->reset();
                store->reset(load_message_file(nullptr, path.c_str()));
            },
            [=] {
                require(load_message_file(store->get(), path.c_str()) == store->get() &&
                            message_count(store->get(), 0) == count,
                        "merging variables");
            }};
}

Comparison mergingColliding() {
    const Peer ordinary = {"other names", merge("ordinary.msg", ordinaryName), 3.0};
    return {"merge 32,000 colliding names", merge("colliding.msg", collidingName), {ordinary}};
}

Comparison mergingBrackets() {
    const Peer ordinary = {"other names", merge("ordinary.msg", ordinaryName), 3.0};
    return {"merge 32,000 names of brackets", merge("brackets.msg", bracketName), {ordinary}};
}

// Renames every entry in the given order, from A to B or from A0, A1, ... to B0, B1, ...
Workload rename(const std::vector<int>& order, bool numbered) {
    const auto store = std::make_shared<Store>();
    const auto textOf = [=](const char* name, int number) {
        return name + (numbered ? std::to_string(number) : std::string()) + " = 1";
    };
    return {[=] {
                store->reset(create_store());
                add_section(store->get(), "var");
                for (int number = 0; number < count; ++number)
                    append_message(store->get(), 0, textOf("A", number).c_str(), -1, 0);
            },
            [=] {
                for (const int number : order) {
                    const std::string text = textOf("B", number);
                    require(replace_message(store->get(), 0, number, text.c_str(), -1, 0) == 0,
                            "replacing a message");
                }
            }};
}

std::vector<int> ascending() {
    std::vector<int> order(count);
    std::iota(order.begin(), order.end(), 0);
    return order;
}

std::vector<int> descending() {
    std::vector<int> order = ascending();
    std::reverse(order.begin(), order.end());
    return order;
}

std::vector<int> shuffled() {
    std::vector<int> order = ascending();
    std::shuffle(order.begin(), order.end(), std::mt19937(20260101));
    return order;
}

Comparison renaming(const char* name, const std::vector<int>& order, double bound) {
    return {
        name, rename(order, false), {{"entries of different names", rename(order, true), bound}}};
}

}  // namespace

Comparisons storeGrowthComparisons() {
    return {mergingColliding(), mergingBrackets(),
            renaming("rename 32,000 equal names", ascending(), 3.0),
            renaming("rename them backwards", descending(), 3.0),
            renaming("rename them in random order", shuffled(), 5.0)};
}

}  // namespace trv::bench
