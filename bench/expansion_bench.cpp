#include <bench/bench_files.h>
#include <bench/comparison.h>
#include <bench/plain_settings.h>
#include <trvfiles/environment/variable_expansion.h>

#include <wordexp.h>

#include <KConfig>
#include <KConfigGroup>
#include <cstdlib>

namespace trv::bench {
namespace {

constexpr char value[] = "fixtures";

std::string expandWithShellRules(const char* text) {
    wordexp_t words;
    require(::wordexp(text, &words, WRDE_NOCMD) == 0 && words.we_wordc == 1, "wordexp");
    std::string result = words.we_wordv[0];
    ::wordfree(&words);
    return result;
}

}  // namespace

// The library finds X in its store. Peers without a store find Y in the environment.
Comparisons expansionComparisons() {
    constexpr char text[] = "$HOME/a/${X}/b";
    constexpr char textForPeers[] = "$HOME/a/${Y}/b";
    std::filesystem::create_directories(workDirectory() / "config");
    writeText(workFile("config/environ.cfg"), std::string("[var]\nX = ") + value + "\n");
    const std::string expandedEntry = workFile("expansion.ini");
    writeText(expandedEntry, std::string("[g]\nkey[$e]=") + textForPeers + "\n");
    ::setenv("TRVHOME", workDirectory().c_str(), 1);
    ::setenv("HOME", "/home/operator", 1);
    ::setenv("Y", value, 1);
    const std::string expected = std::string("/home/operator/a/") + value + "/b";

    const auto ours = [=] {
        std::string result;
        require(expand_variables(text, &result) == EXP_OK && result == expected, "an expansion");
    };
    const auto withWordexp = [=] {
        require(expandWithShellRules(textForPeers) == expected, "an expansion by wordexp");
    };
    const auto file =
        std::make_shared<KConfig>(QString::fromStdString(expandedEntry), KConfig::SimpleConfig);
    const auto withKConfig = [=] {
        const QString result = file->group("g").readEntry("key", QString());
        require(result.toStdString() == expected, "an expansion by KConfig");
    };
    const PlainSettings settings = {{"X", value}};
    const auto byHand = [=] {
        require(expandByHand(text, settings) == expected, "an expansion by hand");
    };
    // The loop, which is the shortest code, alone takes 0.4 to 0.5 of the time of wordexp.
    constexpr double boundOfWordexp = 0.75;
    return {{"expand $HOME/a/${X}/b",
             ours,
             {{"wordexp", withWordexp, boundOfWordexp},
              {"KConfig", withKConfig, 0.5},
              // Three searches of the environment stand against two.
              {"a loop, getenv, unordered_map", byHand, 1.85}}}};
}

}  // namespace trv::bench
