#include <cli/context_commands.h>
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

}  // namespace trv::cli
