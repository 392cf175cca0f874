#include <cli/context_commands.h>
#include <cli/text_output.h>
#include <trvfiles/text/text_conversion.h>

#include <QDir>

namespace trv::cli {

CommandGroup contextCommands() {
    return {contextListCommand(), contextDefaultCommand(), contextCreateCommand(),
            contextSetCommand()};
}

QString pathIn(const QString& directory, const QString& file) {
    return QDir(nativePath(directory)).filePath(file);
}

ExitStatus fail(const QString& name, const QString& reason, const Console& console) {
    console.err << qUtf8Printable(QStringLiteral("trvfiles: %1: %2\n").arg(shown(name), reason));
    return failed;
}

}  // namespace trv::cli
