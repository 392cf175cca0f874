#pragma once

/// @file
/// The runtime as a command uses it: the installation that it asks, and what becomes of the
/// runtime's reports, of which a fatal one would end the process.

#include <cli/command.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace trv::cli {

/// Takes the messages of the runtime while it lives, in place of the default handlers. With
/// TRV_TRVFILES_VERBOSE the trace goes to standard error. Otherwise, and outside of trace(), the
/// runtime makes none: the trace of a long history takes time for the square of its length. One at
/// a time.
class RuntimeMessages {
public:
    struct Report {
        bool fatal;
        /// Without the newlines at its end.
        std::string text;
    };

    explicit RuntimeMessages(std::ostream& err);
    ~RuntimeMessages();
    RuntimeMessages(const RuntimeMessages&) = delete;
    RuntimeMessages& operator=(const RuntimeMessages&) = delete;

    /// The reports since the last call, each text once.
    std::vector<Report> takeReports();

    /// Whether one of the reports since the last takeReports() is fatal.
    bool hasFatalReport() const;

    /// Takes a line of the trace, which is valid during the call.
    using TraceReader = std::function<void(std::string_view line)>;

    /// Calls the runtime and hands over each trace line of the call. All of them together may be
    /// far longer than what they tell.
    void trace(const std::function<void()>& call, const TraceReader& reader);
};

/// "--root", as every command that has it means it.
QCommandLineOption rootOption();

/// Prints reports: fatal ones as they are, the others as warnings.
///
/// @return whether one of them is fatal
bool printReports(const std::vector<RuntimeMessages::Report>& reports, const Console& console);

/// What a command does with the runtime. It may print results before the runtime reports something
/// fatal; they are not shown then.
using RuntimeWork = std::function<ExitStatus(RuntimeMessages& messages, const Console& console)>;

/// Loads the configuration of the installation that the call or the process names, and does the
/// work.
///
/// @return that of the work; `failed`, with the reason on standard error, where there is no
///         installation or the runtime reports something fatal
ExitStatus askInstallation(const QCommandLineParser& call, const Console& console,
                           const RuntimeWork& work);

/// The same, but does the work also where neither the call nor the process names an installation.
ExitStatus askInstallationIfAny(const QCommandLineParser& call, const Console& console,
                                const RuntimeWork& work);

}  // namespace trv::cli
