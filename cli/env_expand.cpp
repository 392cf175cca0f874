#include <cli/env_commands.h>
#include <cli/env_expansion.h>
#include <cli/env_runtime.h>
#include <cli/text_output.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <string>
#include <vector>

namespace trv::cli {
namespace {

void printError(const QString& subject, const QString& text, const Console& console) {
    console.err << qUtf8Printable(
        QStringLiteral("trvfiles: %1: %2\n").arg(shown(subject), shown(text)));
}

void printUndefined(const QString& subject, const UndefinedReferences& references,
                    const Console& console) {
    // Every line repeats the subject, so a long one is cut.
    constexpr int maxLength = 200;
    const QString beginning = beginningOf(subject, maxLength);
    for (const std::string& reference : references.inOrder()) {
        printError(beginning, QStringLiteral("%1 is not defined").arg(fromNarrow(reference)),
                   console);
    }
}

// An undefined reference still gives a text, with the null text in its place: it is printed, and
// the exit status says that something is missing.
ExitStatus expandText(const QString& text, bool asPath, const Console& console) {
    UndefinedReferences undefined;
    const Expansion expansion =
        expand(toNarrow(text), asPath, [&](const lookup_event& lookup) { undefined.add(lookup); });
    if (is_expand_error(expansion.code)) {
        printError(text, codeText(expansion.code), console);
        return failed;
    }
    console.out << qUtf8Printable(shown(expansion.text)) << '\n';
    if (expansion.code != EXP_UNDEFINED) return done;
    printUndefined(text, undefined, console);
    return negative;
}

ExitStatus expandAll(const QCommandLineParser& call, const Console& console) {
    const bool asPath = call.isSet(QStringLiteral("path"));
    return askInstallation(call, console, [&](RuntimeMessages&, const Console& results) {
        ExitStatus status = done;
        for (const QString& text : call.positionalArguments())
            status = std::max(status, expandText(text, asPath, results));
        return status;
    });
}

// Collects what is shown of a search, whose result says only whether the file was found.
class SearchObserver final : private ChainedObserver {
public:
    const UndefinedReferences& undefined() const { return undefined_; }

    /// A line for each path that was tried.
    void printTries(std::ostream& out) const {
        for (const std::string& line : tries_)
            out << qUtf8Printable(shown(line)) << '\n';
    }

private:
    void looked_up(const lookup_event& event) override {
        undefined_.add(event);
        ChainedObserver::looked_up(event);
    }

    // The runtime may repeat a search with a larger buffer. The last search makes all tries again.
    void search_began(const search_event& event) override {
        tries_.clear();
        ChainedObserver::search_began(event);
    }

    void candidate_tried(const candidate_event& event) override {
        tries_.push_back(event_text(event));
        ChainedObserver::candidate_tried(event);
    }

    UndefinedReferences undefined_;
    std::vector<std::string> tries_;
};

ExitStatus findFile(const QString& text, const Console& console) {
    std::string path;
    SearchObserver search;
    const int code = expand_and_search(toNarrow(text), &path);
    // Tries are printed only if the search came to an end: after an error they would look complete.
    switch (code) {
        case EXP_OK:
            search.printTries(console.out);
            console.out << qUtf8Printable(shown(native_path(path.c_str()))) << '\n';
            return done;
        case EXP_NOT_FOUND:
            search.printTries(console.out);
            console.out << qUtf8Printable(shown(text)) << " is not found\n";
            return negative;
        case EXP_UNDEFINED:
            printUndefined(text, search.undefined(), console);
            return negative;
        default:
            printError(text, codeText(code), console);
            return failed;
    }
}

ExitStatus find(const QCommandLineParser& call, const Console& console) {
    const QString text = call.positionalArguments().at(0);
    return askInstallation(call, console, [&](RuntimeMessages&, const Console& results) {
        return findFile(text, results);
    });
}

}  // namespace

Command envExpandCommand() {
    Command command;
    command.name = QStringLiteral("env expand");
    command.arguments = QStringLiteral("[--root DIR] [--path] TEXT...");
    command.summary = QStringLiteral("Replace the references in texts");
    command.details = QStringLiteral(
        "Prints a line for each text. In a shell, write a text with \"$\" or \"?\" in single\n"
        "quotes. Without --path separators do not change. Exit status: 0 done, 1 a\n"
        "reference is not defined, 2 an error.\n");
    command.examples += QStringLiteral("trvfiles env expand '$TRVHOME/site'");
    command.options = {
        rootOption(), QCommandLineOption(QStringLiteral("path"),
                                         QStringLiteral("Make each run of separators one \"\\\""))};
    command.operand = QStringLiteral("text");
    command.maxFiles = Command::anyNumber;
    command.run = expandAll;
    return command;
}

Command envFindCommand() {
    Command command;
    command.name = QStringLiteral("env find");
    command.arguments = QStringLiteral("[--root DIR] '?LIST\\FILE'");
    command.summary = QStringLiteral("Search for a file in the directories of a path list");
    command.details = QStringLiteral(
        "Prints a line for each directory that is tried, and then the path that is found,\n"
        "with the separators of the system. Exit status: 0 found, 1 not found, 2 an\n"
        "error.\n");
    command.examples += QStringLiteral("trvfiles env find '?CFG\\shop.cfg'");
    command.options = {rootOption()};
    command.operand = QStringLiteral("name");
    command.run = find;
    return command;
}

}  // namespace trv::cli
