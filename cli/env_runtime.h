#pragma once

/// @file
/// The runtime as a command uses it: the installation that it asks, and the reports of the runtime.
/// Without the handlers of this file a fatal report would end the process.

#include <cli/command.h>
#include <cli/env_observer.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace trv::cli {

/// Takes the reports of the runtime while it lives, in place of the default handlers. With
/// TRV_TRVFILES_VERBOSE the trace goes to standard error. There is one at a time.
class RuntimeMessages final : private ChainedObserver {
public:
    /// What is wrong with a message file.
    struct Fault {
        std::string file;
        /// Below 1 for a fault that belongs to no line.
        int line;
        std::string text;
        /// What the text quotes.
        std::string subject;
    };

    struct Report {
        bool fatal;
        /// Without the newlines at its end. If it says that TRVHOME is missing, the text with which
        /// every command says so.
        std::string text;
        /// For programs: "unknown-keyword".
        QString code;
        /// For the report of a fault in a message file.
        std::optional<Fault> fault;
    };

    explicit RuntimeMessages(std::ostream& err);
    ~RuntimeMessages() override;
    RuntimeMessages(const RuntimeMessages&) = delete;
    RuntimeMessages& operator=(const RuntimeMessages&) = delete;

    /// The reports since the last call, each text once.
    std::vector<Report> takeReports();

    /// Whether one of the reports since the last takeReports() is fatal.
    bool hasFatalReport() const;

private:
    void fault_found(const fault_event& event) override;
};

/// The option "--root", which means the same for every command that has it.
QCommandLineOption rootOption();

/// Prints reports: fatal ones as they are, the others as warnings.
///
/// @return whether one of them is fatal
bool printReports(const std::vector<RuntimeMessages::Report>& reports, const Console& console);

/// What a command does with the runtime. If the runtime reports something fatal, the results that
/// it has printed on its console are not shown.
using RuntimeWork = std::function<ExitStatus(RuntimeMessages& messages, const Console& console)>;

/// Loads the configuration of the installation that the call or the process names, and does the
/// work.
///
/// @return the status of the work; `failed`, with the reason on standard error, if there is no
///         installation or the runtime reports something fatal
ExitStatus askInstallation(const QCommandLineParser& call, const Console& console,
                           const RuntimeWork& work);

/// The same, but does the work also if neither the call nor the process names an installation.
ExitStatus askInstallationIfAny(const QCommandLineParser& call, const Console& console,
                                const RuntimeWork& work);

}  // namespace trv::cli
