// Compares wildcards with a table of all prefixes, and a listing with the tree that it lists.
// Searches lists of directories.

#include <fuzz/harness/configured_variables.h>
#include <fuzz/harness/host_channels.h>
#include <fuzz/harness/input_reader.h>
#include <fuzz/harness/own_directory.h>
#include <fuzz/harness/require.h>
#include <fuzz/harness/storage_balance.h>
#include <fuzz/targets.h>
#include <trvfiles/environment/path_search.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/support/blanks.h>
#include <trvfiles/support/file_system.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace trv::fuzz {
namespace {

constexpr const char* treeFiles[] = {".hidden", "A.T",   "[m].mctx", "a b.txt",   "a.t",
                                     "abc",     "b.cfg", "aab",      "\xC3\xA9.t"};

// A directory with files and a directory "sub" with one of them.
const std::string& tree() {
    static const std::string root = [] {
        namespace fs = std::filesystem;
        fs::create_directories(ownDirectory() / "tree" / "sub");
        for (const char* name : treeFiles)
            writeOwnFile((std::string("tree/") + name).c_str(), "");
        writeOwnFile("tree/sub/a.t", "");
        return ownFile("tree");
    }();
    return root;
}

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool isEqual(char left, char right, bool caseSensitive) {
    return left == right || (!caseSensitive && upper(left) == upper(right));
}

bool matchesPlainly(const std::string& pattern, const std::string& name, bool caseSensitive) {
    // matched[k]: the pattern so far matches the first k characters of the name.
    std::vector<bool> matched(name.size() + 1);
    matched[0] = true;
    for (const char p : pattern) {
        std::vector<bool> next(name.size() + 1);
        next[0] = p == '*' && matched[0];
        for (std::size_t k = 1; k <= name.size(); ++k) {
            next[k] = p == '*'
                          ? next[k - 1] || matched[k]
                          : matched[k - 1] && (p == '?' || isEqual(p, name[k - 1], caseSensitive));
        }
        matched = next;
    }
    return matched.back();
}

void checkWildcard(InputReader& input) {
    const std::string pattern = input.text();
    const std::string name = input.text();
    for (const bool caseSensitive : {true, false}) {
        const bool expected = matchesPlainly(pattern, name, caseSensitive);
        require(wildcard_match(pattern.c_str(), name.c_str(), caseSensitive) == (expected ? 1 : 0),
                "a wildcard matches as the rules say");
    }
}

std::vector<std::string> listed(const std::string& pattern) {
    struct Freer {
        void operator()(file_listing* listing) const { listing_free(listing); }
    };
    const std::unique_ptr<file_listing, Freer> listing(list_matching(pattern.c_str()));
    std::vector<std::string> entries;
    while (const char* entry = listing_next(listing.get()))
        entries.emplace_back(entry);
    require(listing_count(listing.get()) == static_cast<int>(entries.size()),
            "entries are counted");
    return entries;
}

void checkListing(InputReader& input) {
    constexpr std::size_t maxPatternLength = 511;
    const std::string name = input.text();
    const std::string pattern = tree() + "\\" + name;
    const std::vector<std::string> entries = listed(pattern);
    require(std::is_sorted(entries.begin(), entries.end()), "a listing is in order");
    require(fileExists(pattern.c_str()) == 1 || entries.empty() ||
                name.find_first_of("*?") == std::string::npos,
            "a pattern with a match exists");
    if (name.find_first_of("/\\") != std::string::npos) return;

    std::vector<std::string> expected;
    for (const char* file : treeFiles) {
        if (matchesPlainly(name, file, false)) expected.push_back(tree() + "\\" + file);
    }
    if (matchesPlainly(name, "sub", false)) expected.push_back(tree() + "\\sub");
    std::sort(expected.begin(), expected.end());
    if (pattern.size() > maxPatternLength) expected.clear();
    require(entries == expected, "a listing contains exactly the names that match");
}

void requireSearchStatus(int code, const std::string& found) {
    constexpr int statuses[] = {EXP_OK, EXP_NOT_FOUND,     EXP_SYNTAX_ERROR, EXP_BUFFER_TOO_SMALL,
                                -41,    EXP_NAME_TOO_LONG, EXP_UNDEFINED,    EXP_INVALID_ARGUMENT};
    require(std::find(std::begin(statuses), std::end(statuses), code) != std::end(statuses),
            "the status is one of the table");
    require(code != EXP_OK || fileExists(found.c_str()) == 1, "a file that is found exists");
}

std::string textOf(const std::string& field) {
    return std::string(trim_trailing(field));
}

void checkSearch(InputReader& input) {
    constexpr int maxSize = 700;
    const int size = input.number(maxSize);
    const std::string text = input.text();
    ConfiguredVariables variables;
    variables.path(("TREE = " + tree() + ";" + tree() + "/sub").c_str());
    variables.path(("L = " + input.text()).c_str());
    variables.variable(("V = " + input.text()).c_str());

    std::string buffer(std::max(text.size() + 1, static_cast<std::size_t>(size)), '!');
    std::memcpy(buffer.data(), text.c_str(), text.size() + 1);
    const int code = resolve_path(buffer.data(), size);
    requireSearchStatus(code, buffer.c_str());

    std::string field(static_cast<std::size_t>(size), '!');
    std::int32_t fieldCode = 1;
    resolve_path_fixed(text.data(), static_cast<std::int32_t>(text.size()), field.data(), size,
                       &fieldCode);
    requireSearchStatus(fieldCode, textOf(field));

    std::string name(static_cast<std::size_t>(size), ' ');
    text.copy(name.data(), name.size());
    constexpr char list[] = "?L;?TREE";
    search_list(list, name.data(), &fieldCode, sizeof list - 1, size);
    requireSearchStatus(fieldCode, textOf(name));

    expand_existing(text.data(), static_cast<std::int32_t>(text.size()), &fieldCode);
    requireSearchStatus(fieldCode, ".");

    std::string found;
    const int searched = expand_and_search(text, &found);
    requireSearchStatus(searched, found);
    const char* directory = first_existing_directory(text.c_str());
    require(directory == nullptr || std::filesystem::exists(native_path(directory)),
            "the first existing directory exists");
}

}  // namespace

void checkPathSearchWildcard(std::string_view input) {
    const HostChannels channels;
    const StorageBalance balance;
    InputReader reader(input);
    const int choice = reader.number(3);
    if (choice == 0) {
        checkWildcard(reader);
    } else if (choice == 1) {
        checkListing(reader);
    } else {
        checkSearch(reader);
    }
}

}  // namespace trv::fuzz
