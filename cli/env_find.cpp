#include <cli/env_commands.h>
#include <cli/env_expansion.h>
#include <cli/env_lookup.h>
#include <cli/env_runtime.h>
#include <cli/text_output.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/text/text_conversion.h>

#include <string>
#include <unordered_set>
#include <vector>

namespace trv::cli {
namespace {

struct Candidate {
    std::string path;
    bool isFound;
};

// Collects how a search went: its result says only whether the file was found.
class SearchObserver final : private ChainedObserver {
public:
    const UndefinedReferences& undefined() const { return undefined_; }
    /// Each reference once.
    const std::vector<Lookup>& lookups() const { return lookups_; }
    const std::vector<Candidate>& candidates() const { return candidates_; }

private:
    // The runtime expands a text several times: first to measure it.
    void looked_up(const lookup_event& event) override {
        undefined_.add(event);
        if (known_.insert(event.marker + event.name).second) lookups_.push_back(lookupOf(event));
        ChainedObserver::looked_up(event);
    }

    // The runtime may repeat a search with a larger buffer, and then tries all candidates again.
    void search_began(const search_event& event) override {
        candidates_.clear();
        ChainedObserver::search_began(event);
    }

    void candidate_tried(const candidate_event& event) override {
        candidates_.push_back({event.path, event.is_found});
        ChainedObserver::candidate_tried(event);
    }

    UndefinedReferences undefined_;
    std::vector<Lookup> lookups_;
    std::unordered_set<std::string> known_;
    std::vector<Candidate> candidates_;
};

// Candidates are shown only if the search came to an end: after an error they would look complete.
void printTrace(const SearchObserver& search, int code, const Console& console) {
    const auto print = [&](const QString& line) {
        console.err << qUtf8Printable(QStringLiteral("trvfiles: %1\n").arg(line));
    };
    for (const Lookup& lookup : search.lookups())
        print(lookupText(lookup));
    if (code != EXP_OK && code != EXP_NOT_FOUND) return;
    for (const Candidate& candidate : search.candidates()) {
        print(QStringLiteral("%1: %2").arg(
            shown(nativeSpelling(candidate.path)),
            candidate.isFound ? QStringLiteral("found") : QStringLiteral("not found")));
    }
}

QString notFoundText(const SearchObserver& search, bool hasTrace) {
    const std::size_t count = search.candidates().size();
    if (count == 0) return QStringLiteral("not found");
    return QStringLiteral("not found in %1%2")
        .arg(counted(count, QStringLiteral("directory"), QStringLiteral("directories")),
             hasTrace ? QString() : QStringLiteral("; --trace lists what was tried"));
}

// The document has the trace too: a script ignores the keys that it does not need.
QJsonObject json(const QString& text, const std::string& path, const SearchObserver& search,
                 bool isFound) {
    QJsonArray lookups;
    for (const Lookup& lookup : search.lookups())
        lookups.append(lookupJson(lookup));
    QJsonArray candidates;
    for (const Candidate& candidate : search.candidates()) {
        candidates.append(QJsonObject{{QStringLiteral("path"), nativeSpelling(candidate.path)},
                                      {QStringLiteral("found"), candidate.isFound}});
    }
    return {{QStringLiteral("text"), text},
            {QStringLiteral("found"), isFound},
            {QStringLiteral("path"), isFound ? QJsonValue(nativeSpelling(path)) : QJsonValue()},
            {QStringLiteral("undefined"), search.undefined().json()},
            {QStringLiteral("lookups"), lookups},
            {QStringLiteral("candidates"), candidates}};
}

struct Form {
    bool hasTrace;
    bool asJson;
};

ExitStatus findFile(const QString& text, Form form, const Console& console) {
    std::string path;
    SearchObserver search;
    const int code = expand_and_search(toNarrow(text), &path);
    if (form.hasTrace) printTrace(search, code, console);
    if (code != EXP_OK && code != EXP_NOT_FOUND && code != EXP_UNDEFINED) {
        printFailure(text, codeText(code), console);
        return failed;
    }
    if (form.asJson) {
        printJson(json(text, path, search, code == EXP_OK), console.out);
    } else if (code == EXP_OK) {
        console.out << qUtf8Printable(shown(nativeSpelling(path))) << '\n';
    } else if (code == EXP_UNDEFINED) {
        printUndefined(text, search.undefined(), console);
    } else {
        printFailure(text, notFoundText(search, form.hasTrace), console);
    }
    return code == EXP_OK ? done : negative;
}

ExitStatus find(const QCommandLineParser& call, const Console& console) {
    const QString text = call.positionalArguments().at(0);
    return askInstallation(call, console, [&](RuntimeMessages&, const Console& results) {
        return findFile(text,
                        {call.isSet(QStringLiteral("trace")), call.isSet(QStringLiteral("json"))},
                        results);
    });
}

}  // namespace

Command envFindCommand() {
    Command command;
    command.name = QStringLiteral("env find");
    command.arguments = QStringLiteral("[--root DIR] [--trace] [--json] '?LIST\\FILE'");
    command.summary = QStringLiteral("Search for a file in the directories of a path list");
    command.details = QStringLiteral(
        "Prints the path that is found. Exit status: 0 found, 1 not found, 2 an error.\n");
    command.examples += QStringLiteral("trvfiles env find '?CFG\\shop.cfg'");
    command.options = {
        rootOption(),
        QCommandLineOption(
            QStringLiteral("trace"),
            QStringLiteral("Print each lookup and each path that is tried, as notes")),
        jsonOption()};
    command.operand = QStringLiteral("name");
    command.run = find;
    return command;
}

}  // namespace trv::cli
