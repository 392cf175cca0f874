#include <cli/axis_replacement.h>
#include <cli/input_files.h>

#include <QFileInfo>

namespace trv::cli {

QString whyNotAnAxisFile(const QString& name) {
    // A link to no file counts as none: the file to which it leads is created.
    if (!QFileInfo::exists(resolved(name))) return {};
    FileKind kind = FileKind::unknown;
    const Problem problem = findKind(name, kind);
    switch (kind) {
        case FileKind::assembly:
            return QStringLiteral("it is an assembly");
        case FileKind::machineContext:
            return QStringLiteral("it is a machine context");
        case FileKind::unknown:
            return problem.reason;
        case FileKind::axis:
            break;
    }
    AxisFile ignored;
    const Problem fault = readAxis(name, ignored);
    return fault ? QStringLiteral("it is a faulty axis file: ") + problemText(fault) : QString();
}

QCommandLineOption forceOption() {
    return QCommandLineOption(QStringLiteral("force"),
                              QStringLiteral("Replace the file also if it is not an axis file"));
}

}  // namespace trv::cli
