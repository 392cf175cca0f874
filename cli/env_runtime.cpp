#include <cli/env_origin.h>
#include <cli/env_runtime.h>
#include <cli/input_files.h>
#include <cli/text_output.h>
#include <trvfiles/environment/environment_start.h>
#include <trvfiles/environment/path_text.h>
#include <trvfiles/support/diagnostics.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/text/text_conversion.h>

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <sstream>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace trv::cli {
namespace {

// The state of the one RuntimeMessages. It is global because handlers are plain functions.
struct Inbox {
    std::vector<RuntimeMessages::Report> reports;
    // The texts in `reports`: the runtime repeats some reports up to 1000 times.
    std::unordered_set<std::string> known;
    // The fault that is being reported.
    const fault_event* fault = nullptr;
    std::ostream* err = nullptr;
};
Inbox inbox;

std::string_view withoutNewlines(std::string_view text) {
    while (!text.empty() && text.back() == '\n')
        text.remove_suffix(1);
    return text;
}

constexpr const char* homeFile = "config\\environ.cfg";
constexpr const char* rootIsMissing =
    "there is no installation: TRVHOME is not set; set it or give --root DIR";

// The runtime has two texts for this, and names no way out.
bool isAboutMissingRoot(std::string_view report) {
    return report == "The environment variable 'TRVHOME' is not defined" ||
           report == "TRVHOME is not defined";
}

const char* wordOf(fault_kind kind) {
    switch (kind) {
        case fault_kind::not_opened:
            return "file-not-opened";
        case fault_kind::not_loaded:
            return "file-not-loaded";
        case fault_kind::unclosed_condition:
            return "if-without-endif";
        case fault_kind::too_many_conditions:
            return "conditions-too-deep";
        case fault_kind::invalid_condition:
            return "condition-invalid";
        case fault_kind::else_without_if:
            return "else-without-if";
        case fault_kind::endif_without_if:
            return "endif-without-if";
        case fault_kind::unknown_keyword:
            return "keyword-unknown";
        case fault_kind::line_too_long:
            return "line-too-long";
        case fault_kind::unknown_variable:
            return "variable-unknown";
        case fault_kind::missing_equals:
            return "equals-missing";
    }
    return "";
}

const char* codeOfReport(std::string_view report) {
    if (inbox.fault != nullptr) return wordOf(inbox.fault->kind);
    return isAboutMissingRoot(report) ? "installation-missing" : "runtime-message";
}

void take(bool fatal, const char* message) {
    const std::string_view report = withoutNewlines(message);
    std::string text(isAboutMissingRoot(report) ? rootIsMissing : report);
    if (!inbox.known.insert(text).second) return;
    inbox.reports.push_back(
        {fatal, std::move(text), QString::fromLatin1(codeOfReport(report)), std::nullopt});
    if (const fault_event* fault = inbox.fault) {
        inbox.reports.back().fault = {std::string(fault->file), fault->line,
                                      std::string(fault->text), std::string(fault->subject)};
    }
}

void takeError(const char* message) {
    take(false, message);
}

void takeFatal(const char* message) {
    take(true, message);
}

// On standard error, escaped like everything that a command prints: results stay free of trace
// lines.
void takeTrace(const char* message) {
    if (is_verbose() == 0) return;
    const std::string line(withoutNewlines(message));
    *inbox.err << qUtf8Printable(shown(line)) << '\n';
}

void printError(const QString& text, const Console& console) {
    console.err << qUtf8Printable(QStringLiteral("trvfiles: %1\n").arg(text));
}

// A fault in a configuration file begins with its place, any other report is the runtime's text.
QString textOf(const RuntimeMessages::Report& report) {
    if (!report.fault) return shown(report.text);
    const RuntimeMessages::Fault& fault = *report.fault;
    const QString file = shown(nativeSpelling(fault.file));
    if (fault.line < 1) return QStringLiteral("%1: %2").arg(file, shown(fault.text));
    return QStringLiteral("%1:%2: %3").arg(file, QString::number(fault.line), shown(fault.text));
}

// Sets the root of the process to that of the call, if the call has one.
//
// @return false if it is not a directory or cannot be set
bool takeRoot(const QCommandLineParser& call, const Console& console) {
    const QString option = QStringLiteral("root");
    if (!call.isSet(option)) return true;
    const QString name = call.value(option);
    const QString root = QDir::cleanPath(resolved(name));
    if (name.isEmpty() || !QFileInfo(root).isDir()) {
        printError(QStringLiteral("--root '%1' is not a directory").arg(shown(name)), console);
        return false;
    }
    return platform::set_environment("TRVHOME", toNarrow(root).c_str());
}

// The option or the variable that names the root, in the order in which install_root() asks them.
QString rootSource(const QCommandLineParser& call) {
    if (call.isSet(QStringLiteral("root"))) return QStringLiteral("--root");
    const char* home = platform::get_environment("TRVHOME");
    const bool isSet = home != nullptr && *home != '\0';
    return isSet ? QStringLiteral("TRVHOME") : QStringLiteral("TRVHOME_LS");
}

// @param root  as install_root() found it, or nullptr
// @return why it is not an installation, and what to do; empty if it may be one
QString whyNoInstallation(const char* root, const QString& source) {
    if (root == nullptr) return QString::fromLatin1(rootIsMissing);
    QString fault;
    if (!is_directory(root)) {
        fault = QStringLiteral("is not a directory");
    } else if (fileExists(path_in(root, homeFile).c_str()) == 0) {
        fault = QStringLiteral("has no %1").arg(shown(nativeSpelling(homeFile)));
    } else {
        return {};
    }
    const QString advice = source.startsWith(QLatin1Char('-'))
                               ? QString()
                               : QStringLiteral("; set TRVHOME to another one or give --root DIR");
    return QStringLiteral("there is no installation: %1 is '%2', which %3%4")
        .arg(source, shown(nativeSpelling(root)), fault, advice);
}

// Results are buffered until the work is done: after a fatal report they may be wrong, and are not
// shown.
ExitStatus doWork(RuntimeMessages& messages, const Console& console, const RuntimeWork& work) {
    std::stringstream results;
    const ExitStatus status = work(messages, {results, console.err});
    if (printReports(messages.takeReports(), console)) return failed;
    // Passes the buffer itself, because the results may be large. Inserting an empty buffer would
    // set failbit.
    if (results.tellp() > 0) console.out << results.rdbuf();
    return status;
}

ExitStatus ask(const QCommandLineParser& call, const Console& console, const RuntimeWork& work,
               bool needsInstallation) {
    if (!takeRoot(call, console)) return failed;
    RuntimeMessages messages(console.err);
    const QString source = rootSource(call);
    const char* root = install_root(true);
    const QString reason = whyNoInstallation(root, source);
    if (!reason.isEmpty() && (root != nullptr || needsInstallation)) {
        printError(reason, console);
        return failed;
    }
    if (root != nullptr) load_environment();
    if (printReports(messages.takeReports(), console)) return failed;
    return doWork(messages, console, work);
}

}  // namespace

RuntimeMessages::RuntimeMessages(std::ostream& err) {
    inbox = {};
    inbox.err = &err;
    set_error_handler(takeError);
    set_fatal_handler(takeFatal);
    // Without verbose mode the default handler stays: it drops the trace, so no line is made.
    if (is_verbose() != 0) set_trace_handler(takeTrace);
}

RuntimeMessages::~RuntimeMessages() {
    set_error_handler(nullptr);
    set_fatal_handler(nullptr);
    set_trace_handler(nullptr);
}

std::vector<RuntimeMessages::Report> RuntimeMessages::takeReports() {
    inbox.known.clear();
    return std::exchange(inbox.reports, {});
}

bool RuntimeMessages::hasFatalReport() const {
    return std::any_of(inbox.reports.begin(), inbox.reports.end(),
                       [](const Report& report) { return report.fatal; });
}

void RuntimeMessages::fault_found(const fault_event& event) {
    // The default observer reports the fault through a handler of this source, which attaches it.
    struct Guard {
        explicit Guard(const fault_event& fault) { inbox.fault = &fault; }
        ~Guard() { inbox.fault = nullptr; }
    };
    const Guard guard(event);
    ChainedObserver::fault_found(event);
}

QCommandLineOption rootOption() {
    return QCommandLineOption(QStringLiteral("root"),
                              QStringLiteral("The installation, instead of that of TRVHOME"),
                              QStringLiteral("DIR"));
}

bool printReports(const std::vector<RuntimeMessages::Report>& reports, const Console& console) {
    bool fatal = false;
    for (const RuntimeMessages::Report& report : reports) {
        fatal = fatal || report.fatal;
        const QString text = textOf(report);
        printError(report.fatal ? text : QStringLiteral("warning: %1").arg(text), console);
    }
    return fatal;
}

ExitStatus askInstallation(const QCommandLineParser& call, const Console& console,
                           const RuntimeWork& work) {
    return ask(call, console, work, true);
}

ExitStatus askInstallationIfAny(const QCommandLineParser& call, const Console& console,
                                const RuntimeWork& work) {
    return ask(call, console, work, false);
}

}  // namespace trv::cli
