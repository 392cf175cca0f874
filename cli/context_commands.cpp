#include <cli/context_commands.h>
#include <trvfiles/text/text_conversion.h>

#include <QDir>

namespace trv::cli {

CommandGroup contextCommands() {
    return {contextListCommand(), contextDefaultCommand(), contextCreateCommand(),
            contextGetCommand(), contextSetCommand()};
}

Problem readAsContext(const QString& name, ContextFile& context) {
    FileKind kind = FileKind::unknown;
    if (Problem problem = findKind(name, kind)) return problem;
    if (kind != FileKind::machineContext) return {eFileIOContentError, otherKindText(kind)};
    return readContext(name, context);
}

QString pathIn(const QString& directory, const QString& file) {
    return QDir(nativePath(directory)).filePath(file);
}

}  // namespace trv::cli
