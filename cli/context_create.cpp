#include <cli/context_commands.h>
#include <cli/context_plan.h>
#include <cli/env_runtime.h>
#include <cli/input_files.h>
#include <cli/text_output.h>
#include <trvfiles/catalogue/CMachineContextUtils.h>
#include <trvfiles/text/open_file.h>
#include <trvfiles/text/text_conversion.h>

#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <system_error>

namespace trv::cli {
namespace {

// Makes a directory the current one while it lives.
class CurrentDirectory {
public:
    explicit CurrentDirectory(const QString& directory) {
        std::error_code ignored;
        earlier_ = std::filesystem::current_path(ignored);
        std::filesystem::current_path(systemPath(directory), error_);
    }
    ~CurrentDirectory() {
        std::error_code ignored;
        std::filesystem::current_path(earlier_, ignored);
    }
    CurrentDirectory(const CurrentDirectory&) = delete;
    CurrentDirectory& operator=(const CurrentDirectory&) = delete;

    bool isSet() const { return !error_; }

private:
    std::filesystem::path earlier_;
    std::error_code error_;
};

// The path of a file as the system spells it.
QString nativePathIn(const QString& directory, const QString& file) {
    return QDir::toNativeSeparators(pathIn(directory, file));
}

bool exists(const QString& path) {
    const QFileInfo info(resolved(path));
    return info.exists() || info.isSymLink();
}

QString lastReason() {
    return QString::fromStdString(std::generic_category().message(errno));
}

// Why a file cannot be created or, if it exists, read; empty if it can. Removes what it creates.
QString whyNotCreated(const QString& path) {
    errno = 0;
    if (exists(path)) {
        if (!QFileInfo::exists(resolved(path)))
            return QStringLiteral("is a link whose target does not exist");
        const bool isReadable = openForRead(resolved(path), platform::file_mode::binary) != nullptr;
        return isReadable ? QString() : lastReason();
    }
    if (openForWrite(resolved(path), platform::file_mode::binary) == nullptr) return lastReason();
    platform::remove_file(systemPath(resolved(path)));
    return {};
}

// Reports the first file that cannot be created, after the catalogue has failed.
ExitStatus explainFailure(const QString& directory, const ContextPlan& plan,
                          const Console& console) {
    const QString context = nativePathIn(directory, plan.context);
    // A failure leaves at most one of the two: another process has created both in the meantime.
    if (exists(context) && exists(nativePathIn(directory, plan.reference))) {
        return fail(context, QStringLiteral("exists already"), console);
    }
    for (const QString& file : {plan.axisFile, plan.reference, plan.context}) {
        const QString path = nativePathIn(directory, file);
        const QString reason = whyNotCreated(path);
        if (!reason.isEmpty()) return fail(path, reason, console);
    }
    // The axis file is the first one that is written, and it stays.
    const QString axis = nativePathIn(directory, plan.axisFile);
    return fail(exists(axis) ? context : axis, QStringLiteral("cannot be written"), console);
}

// The files that are created, and how that is printed.
struct Task {
    QString directory;
    ContextPlan plan;
    /// Files that exist without their other file.
    QStringList replaced;
    bool asJson = false;
};

void printCreated(const QString& context, const QString& reference, const Task& task,
                  const Console& console) {
    if (task.asJson) {
        printJson({{QStringLiteral("context"), context},
                   {QStringLiteral("reference"), reference},
                   {QStringLiteral("replaced"), QJsonArray::fromStringList(task.replaced)}},
                  console.out);
        return;
    }
    for (const QString& file : {context, reference})
        console.out << qUtf8Printable(shown(file)) << '\n';
    for (const QString& file : task.replaced) {
        console.err << qUtf8Printable(
            QStringLiteral("trvfiles: note: %1 existed without its other file and was replaced\n")
                .arg(shown(file)));
    }
}

using Creation = std::function<bool(std::wstring& context, std::wstring& reference)>;

ExitStatus create(const Task& task, const Console& console, const Creation& creation) {
    std::wstring context;
    std::wstring reference;
    RuntimeMessages messages(console.err);
    const bool isCreated = creation(context, reference);
    if (printReports(messages.takeReports(), console)) return failed;
    if (!isCreated) return explainFailure(task.directory, task.plan, console);
    printCreated(nativePathIn(task.directory, fromWide(context)),
                 nativePathIn(task.directory, fromWide(reference)), task, console);
    return done;
}

ExitStatus createForPosition(int position, Task task, const Console& console) {
    task.plan = contextPlan(position);
    const QString& directory = task.directory;
    const QStringList files = {nativePathIn(directory, task.plan.context),
                               nativePathIn(directory, task.plan.reference)};
    for (const QString& file : files) {
        if (exists(file)) task.replaced += file;
    }
    if (task.replaced.size() == files.size()) {
        return fail(files.first(), QStringLiteral("exists already"), console);
    }
    for (const QString& file : files) {
        if (QFileInfo(resolved(file)).isDir()) {
            return fail(file, QStringLiteral("is a directory"), console);
        }
    }
    const QString axisFile = nativePathIn(directory, task.plan.axisFile);
    AxisFile axis;
    if (exists(axisFile)) {
        if (const Problem problem = readAxis(axisFile, axis))
            return report(axisFile, problem, console);
    }
    return create(task, console, [&](std::wstring& first, std::wstring& second) {
        return CMachineContextUtils::sCreateDefaultMachineContext(toWide(directory), position,
                                                                  &first, &second);
    });
}

ExitStatus createForMachine(const Task& task, const Console& console) {
    const QString& directory = task.directory;
    const ContextPlan& plan = task.plan;
    const QString axisFile = nativePathIn(directory, plan.axisFile);
    AxisFile axis;
    if (const Problem problem = readAxis(axisFile, axis)) return report(axisFile, problem, console);
    for (const QString& file : {plan.context, plan.reference}) {
        const QString path = nativePathIn(directory, file);
        if (exists(path)) return fail(path, QStringLiteral("exists already"), console);
    }
    return create(task, console, [&](std::wstring& first, std::wstring& second) {
        // The catalogue copies in the current directory.
        const CurrentDirectory there(directory);
        return there.isSet() && CMachineContextUtils::sCreateMachineContext(
                                    {}, toWide(plan.machine), toWide(plan.givenAxis),
                                    toWide(plan.context), &first, &second);
    });
}

bool isBareName(const QString& text) {
    return !text.isEmpty() && !text.contains(QLatin1Char('/')) && !text.contains(QLatin1Char('\\'));
}

// What is wrong with the options; empty if nothing is.
//
// @param position  written if there is one
QString mistakeIn(const QCommandLineParser& call, int& position) {
    const QString text = call.value(QStringLiteral("position"));
    const bool hasPosition = call.isSet(QStringLiteral("position"));
    if (hasPosition == call.isSet(QStringLiteral("machine"))) {
        return QStringLiteral("give either --position or --machine");
    }
    for (const QString& option :
         {QStringLiteral("machine"), QStringLiteral("axis"), QStringLiteral("name")}) {
        if (!call.isSet(option)) continue;
        if (hasPosition) return QStringLiteral("--%1 is only valid with --machine").arg(option);
        if (isBareName(call.value(option))) continue;
        return QStringLiteral("--%1 takes a name without a directory, not '%2'")
            .arg(option, call.value(option));
    }
    bool isNumber = false;
    position = text.toInt(&isNumber);
    if (hasPosition && (!isNumber || position < 1)) {
        return QStringLiteral("--position takes a whole number from 1 on, not '%1'").arg(text);
    }
    return {};
}

ExitStatus createContext(const QCommandLineParser& call, const Console& console) {
    int position = 0;
    QString mistake = mistakeIn(call, position);
    const ContextPlan plan =
        contextPlan(call.value(QStringLiteral("machine")), call.value(QStringLiteral("axis")),
                    call.value(QStringLiteral("name")));
    if (mistake.isEmpty()) mistake = whyPlanFails(plan);
    if (!mistake.isEmpty()) return refuseCall(console, QStringLiteral("context create"), mistake);

    const QString directory = call.positionalArguments().at(0);
    const QString reason = whyNotListed(directory);
    if (!reason.isEmpty()) return fail(directory, reason, console);
    const Task task = {directory, plan, {}, call.isSet(QStringLiteral("json"))};
    return position > 0 ? createForPosition(position, task, console)
                        : createForMachine(task, console);
}

}  // namespace

Command contextCreateCommand() {
    Command command;
    command.name = QStringLiteral("context create");
    command.arguments = QStringLiteral(
        "[--json] --position N DIR\n"
        "       trvfiles context create [--json] --machine M [--axis F] [--name K] DIR");
    command.summary = QStringLiteral("Create a machine context and its reference axis file");
    command.details = QStringLiteral(
        "With --position it creates the default context of a machine position, and DIR\n"
        "gets a transfo.dat if it has none. With --machine it creates a context for a\n"
        "machine and overwrites nothing. Prints the paths of the two files.\n");
    command.examples += QStringLiteral("trvfiles context create --position 2 .");
    command.examples +=
        QStringLiteral("trvfiles context create --machine pallet-mill.mac --axis right-vise.ref .");
    command.options = {
        QCommandLineOption(QStringLiteral("position"),
                           QStringLiteral("The machine position, at least 1"), QStringLiteral("N")),
        QCommandLineOption(QStringLiteral("machine"), QStringLiteral("The machine"),
                           QStringLiteral("M")),
        QCommandLineOption(QStringLiteral("axis"),
                           QStringLiteral("The axis file in DIR to copy instead of transfo.dat"),
                           QStringLiteral("F")),
        QCommandLineOption(QStringLiteral("name"),
                           QStringLiteral("The context's name instead of M[AXIS]"),
                           QStringLiteral("K")),
        jsonOption()};
    command.operand = QStringLiteral("directory");
    command.run = createContext;
    return command;
}

}  // namespace trv::cli
