#include <cli/check_files.h>
#include <cli/command.h>
#include <cli/input_files.h>
#include <cli/ordered_work.h>
#include <cli/progress_line.h>
#include <cli/project_files.h>
#include <cli/text_output.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <thread>
#include <vector>

namespace trv::cli {
namespace {

constexpr unsigned maxJobs = 256;

struct Totals {
    std::size_t ok = 0;
    std::size_t withWarnings = 0;
    std::size_t withErrors = 0;

    void add(const FileReport& report) {
        if (report.hasError()) {
            ++withErrors;
        } else if (report.diagnostics.empty()) {
            ++ok;
        } else {
            ++withWarnings;
        }
    }

    ExitStatus status(bool isStrict) const {
        return withErrors > 0 || (isStrict && withWarnings > 0) ? negative : done;
    }

    // "3 files: 1 ok, 1 with warnings, 1 with errors"
    QString text() const {
        const auto files = [](std::size_t count) {
            return counted(count, QStringLiteral("file"), QStringLiteral("files"));
        };
        QString text = files(ok + withWarnings + withErrors) + QStringLiteral(": ") +
                       QString::number(ok) + QStringLiteral(" ok");
        if (withWarnings > 0) text += QStringLiteral(", %1 with warnings").arg(withWarnings);
        if (withErrors > 0) text += QStringLiteral(", %1 with errors").arg(withErrors);
        return text;
    }
};

// Prints the reports, each when its turn comes.
class Printer {
public:
    virtual ~Printer() = default;
    virtual void print(const FileReport& report) = 0;
    virtual void finish(const Totals& totals) = 0;
};

class TextPrinter final : public Printer {
public:
    TextPrinter(const Console& console, int columns, std::size_t maxWarnings, bool isQuiet,
                bool hasTotals)
        : console_(console),
          columns_(columns),
          maxWarnings_(maxWarnings),
          isQuiet_(isQuiet),
          hasTotals_(hasTotals) {}

    // The streams may be one terminal, so what is printed first has to leave its buffer first.
    void print(const FileReport& report) override {
        if (!report.diagnostics.empty()) console_.out.flush();
        printDiagnostics(report);
        if (isQuiet_ && report.diagnostics.empty()) return;
        console_.out << qUtf8Printable(verdictText(report)) << '\n';
    }

    void finish(const Totals& totals) override {
        if (hasTotals_ && !isQuiet_) console_.out << qUtf8Printable(totals.text()) << '\n';
    }

private:
    // The error is printed, however many warnings are before it.
    void printDiagnostics(const FileReport& report) {
        const QString name = displayName(report.name);
        std::size_t warnings = 0;
        for (const Diagnostic& diagnostic : report.diagnostics) {
            const bool isWarning = diagnostic.severity == Diagnostic::Severity::warning;
            if (isWarning && ++warnings > maxWarnings_) continue;
            printDiagnostic(name, diagnostic, columns_, console_.err);
        }
        if (warnings <= maxWarnings_) return;
        const QString more = counted(warnings - maxWarnings_, QStringLiteral("more warning"),
                                     QStringLiteral("more warnings"));
        console_.err << qUtf8Printable(
            QStringLiteral("%1: %2; --all prints them\n").arg(shown(name), more));
    }

    const Console& console_;
    const int columns_;
    const std::size_t maxWarnings_;
    const bool isQuiet_;
    const bool hasTotals_;
};

class JsonPrinter final : public Printer {
public:
    JsonPrinter(std::ostream& out, bool isQuiet) : writer_(out), isQuiet_(isQuiet) {
        writer_.beginArray("files");
    }

    void print(const FileReport& report) override {
        if (isQuiet_ && report.diagnostics.empty()) return;
        writer_.addElement(reportJson(report));
    }

    void finish(const Totals&) override {
        writer_.endArray();
        writer_.end();
    }

private:
    JsonWriter writer_;
    const bool isQuiet_;
};

FileReport reportOn(const FoundFile& file, const CheckOptions& options) {
    if (file.listingError.isEmpty()) return checkFile(file.name, options);
    return unlistedDirectory(file.name, file.listingError);
}

Totals checkAll(const std::vector<FoundFile>& files, const CheckOptions& options, unsigned jobs,
                ProgressLine& progress, Printer& printer) {
    Totals totals;
    std::vector<std::optional<FileReport>> reports(files.size());
    OrderedWork work;
    work.count = files.size();
    work.work = [&](std::size_t i) { reports[i] = reportOn(files[i], options); };
    work.wait = [&](std::size_t finished) { progress.show(finished, files.size()); };
    work.take = [&](std::size_t i) {
        const FileReport report = std::move(*reports[i]);
        reports[i].reset();
        if (files[i].isFromDirectory && isNoProjectFile(report)) return;
        if (!report.diagnostics.empty()) progress.clear();
        totals.add(report);
        printer.print(report);
    };
    runInOrder(work, jobs);
    return totals;
}

// @return 0 if the value of the option is not a number of threads
unsigned jobsOf(const QCommandLineParser& call) {
    if (!call.isSet(QStringLiteral("jobs"))) {
        return std::clamp(std::thread::hardware_concurrency(), 1U, maxJobs);
    }
    bool isNumber = false;
    const unsigned jobs = call.value(QStringLiteral("jobs")).toUInt(&isNumber);
    return isNumber && jobs <= maxJobs ? jobs : 0;
}

ExitStatus check(const QCommandLineParser& call, const Console& console) {
    const unsigned jobs = jobsOf(call);
    if (jobs == 0) {
        return refuseCall(console, QStringLiteral("check"),
                          QStringLiteral("'%1' is not a number of threads from 1 to %2")
                              .arg(call.value(QStringLiteral("jobs")), QString::number(maxJobs)));
    }
    const bool isQuiet = call.isSet(QStringLiteral("quiet"));
    const bool asJson = call.isSet(QStringLiteral("json"));
    const int columns = console.errColumns;
    const QStringList arguments = call.positionalArguments();
    const std::vector<FoundFile> files =
        findFiles(arguments, call.isSet(QStringLiteral("recursive")));
    const bool hasTotals =
        arguments.size() > 1 || std::any_of(arguments.begin(), arguments.end(), isDirectory);

    CheckOptions options;
    options.checksReferences = call.isSet(QStringLiteral("references"));
    options.showsSource = columns > 0 && !asJson;
    // Lines on the terminal show by themselves how far the command is.
    const bool hasLines = console.outColumns > 0 && (asJson || !isQuiet);
    ProgressLine progress(console.err, hasLines ? 0 : columns);
    Totals totals;
    const auto checkWith = [&](Printer&& printer) {
        totals = checkAll(files, options, jobs, progress, printer);
        progress.clear();
        printer.finish(totals);
    };
    if (asJson) {
        checkWith(JsonPrinter(console.out, isQuiet));
    } else {
        constexpr std::size_t maxWarnings = 100;
        const bool printsAll = call.isSet(QStringLiteral("all"));
        checkWith(
            TextPrinter(console, columns, printsAll ? SIZE_MAX : maxWarnings, isQuiet, hasTotals));
    }
    return totals.status(call.isSet(QStringLiteral("strict")));
}

QCommandLineOption flag(const char* name, const char* description) {
    return QCommandLineOption(QString::fromLatin1(name), QString::fromLatin1(description));
}

}  // namespace

CommandGroup checkCommand() {
    Command command;
    command.name = QStringLiteral("check");
    command.arguments = QStringLiteral("[OPTION...] FILE|DIR...");
    command.summary = QStringLiteral("Report what is wrong with files");
    command.details = QStringLiteral(
        "Prints a line for each file, and on standard error what is wrong with it:\n"
        "FILE:LINE:COLUMN: error: a program cannot read the file; warning: the program\n"
        "gets something else than the file says. For a directory, the project files\n"
        "in it are checked.\n"
        "Exit status: 0 no errors, 1 errors, or warnings with --strict, 2 not done.\n");
    command.options = {
        flag("strict", "Warnings give exit status 1, too"),
        flag("references", "Warn of files that are named but do not exist"),
        flag("recursive", "Check the directories below, too"),
        flag("all", "Print all warnings, not only the first 100 of a file"),
        flag("quiet", "Print only files with problems"),
        QCommandLineOption(QStringLiteral("jobs"), QStringLiteral("Read N files at once"),
                           QStringLiteral("N")),
        jsonOption(),
    };
    command.operand = QStringLiteral("file name");
    command.examples += QStringLiteral("trvfiles check --recursive --strict .");
    command.examples += QStringLiteral("trvfiles check --references bracket.xml");
    command.maxFiles = Command::anyNumber;
    command.run = check;
    return {command};
}

}  // namespace trv::cli
