#include <cli/command_table.h>
#include <cli/manual_page.h>

namespace trv::cli {
namespace {

ExitStatus manual(const QCommandLineParser&, const Console& console) {
    console.out << qUtf8Printable(manualPage(allCommands()));
    return done;
}

}  // namespace

CommandGroup manualCommand() {
    Command command;
    command.name = QStringLiteral("manual");
    command.summary = QStringLiteral("Print the manual page of trvfiles");
    command.details = QStringLiteral(
        "The page is roff text with the man macros. If it is not installed,\n"
        "'trvfiles manual | man -l -' shows it.\n");
    command.examples += QStringLiteral("trvfiles manual");
    command.operand = QStringLiteral("argument");
    command.minFiles = 0;
    command.maxFiles = 0;
    command.run = manual;
    return {command};
}

}  // namespace trv::cli
