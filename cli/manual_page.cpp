#include <cli/manual_page.h>
#include <cli/roff_page.h>
#include <trvfiles/version.h>

#include <QRegularExpression>
#include <QStringBuilder>

namespace trv::cli {
namespace {

// Arguments as in the help: options and literal words in bold, placeholders in italics.
QString styledArguments(const QString& arguments) {
    static const QRegularExpression word(QStringLiteral("--?[a-z]+|[A-Z]+|[a-z]+([.=][a-z]+)*"));
    static const QRegularExpression placeholder(QStringLiteral("^[A-Z]|[.]"));
    QString roff;
    int end = 0;
    for (auto words = word.globalMatch(arguments); words.hasNext();) {
        const QRegularExpressionMatch match = words.next();
        const QString found = match.captured();
        roff += roffText(arguments.mid(end, match.capturedStart() - end));
        roff += placeholder.match(found).hasMatch() ? roffItalic(found) : roffBold(found);
        end = match.capturedEnd();
    }
    return roff % roffText(arguments.mid(end));
}

// The first call of the help is without the command, the others are with it.
QList<RoffPage::Call> callsOf(const Command& command) {
    const QString name = QLatin1String("trvfiles ") % command.name;
    QList<RoffPage::Call> calls;
    for (const QString& line : command.arguments.split(QLatin1Char('\n'))) {
        QString arguments = line.trimmed();
        if (arguments.startsWith(name)) arguments.remove(0, name.size());
        calls.append({name, styledArguments(arguments.trimmed())});
    }
    return calls;
}

void addOption(const QCommandLineOption& option, RoffPage& page) {
    QStringList names;
    for (const QString& name : typedNames(option))
        names += roffBold(name);
    QString term = names.join(QLatin1String(", "));
    if (!option.valueName().isEmpty()) term += QLatin1Char(' ') % roffItalic(option.valueName());
    page.item(term, option.description() % QLatin1Char('.'));
}

void addCommand(const Command& command, RoffPage& page) {
    page.subsection(command.name);
    page.synopsis(callsOf(command));
    page.paragraph(command.summary % QLatin1String(".\n") % command.details);
    for (const QCommandLineOption& option : command.options)
        addOption(option, page);
    page.paragraph(command.examples.size() == 1 ? QStringLiteral("Example:")
                                                : QStringLiteral("Examples:"));
    page.literal(command.examples);
}

void addIntroduction(RoffPage& page) {
    page.section(QStringLiteral("NAME"));
    page.paragraph(QStringLiteral(
        "trvfiles - show, check, compare and write project files of a machining workstation"));

    page.section(QStringLiteral("SYNOPSIS"));
    const QString program = QStringLiteral("trvfiles");
    page.synopsis({{program, styledArguments(QStringLiteral("COMMAND [ARGUMENT...]"))},
                   {program, styledArguments(QStringLiteral("--help | --version"))}});

    page.section(QStringLiteral("DESCRIPTION"));
    page.paragraph(QStringLiteral(
        "trvfiles reads and writes three kinds of project files, and explains the configuration of "
        "an installation. The content of a file decides its kind, not its name."));
    page.item(roffBold(QStringLiteral("assembly")),
              QStringLiteral("The tree of components of a set-up, with placements and geometry "
                             "files, as XML."));
    page.item(roffBold(QStringLiteral("axis file")),
              QStringLiteral("One placement, its inverse and up to three tags, as text."));
    page.item(roffBold(QStringLiteral("machine context")),
              QStringLiteral("How a part is set up on a machine, as text in sections."));
    page.paragraph(QStringLiteral(
        "The examples of this page work in the directory examples/sample-project/project of the "
        "sources."));
}

void addOptions(RoffPage& page) {
    page.section(QStringLiteral("OPTIONS"));
    page.item(
        roffBold(QStringLiteral("-h")) % QLatin1String(", ") % roffBold(QStringLiteral("--help")),
        QStringLiteral("List the commands. After the name of a command, explain that command. "
                       "Every command has this option."));
    page.item(roffBold(QStringLiteral("-v")) % QLatin1String(", ") %
                  roffBold(QStringLiteral("--version")),
              QStringLiteral("Print the version."));
    page.paragraph(QStringLiteral(
        "Options of a command may be before or after its file names. After '--' every argument is "
        "a file name, also if it begins with '-'."));
}

void addCommands(const CommandGroup& commands, RoffPage& page) {
    page.section(QStringLiteral("COMMANDS"));
    for (const Command& command : commands)
        addCommand(command, page);
}

void addInputAndOutput(RoffPage& page) {
    page.section(QStringLiteral("INPUT AND OUTPUT"));
    page.subsection(QStringLiteral("Standard input and pipes"));
    page.paragraph(QStringLiteral(
        "Every command that reads a file takes the name '-' for standard input, and reads pipes. "
        "Both are read to their end first, and kept in a temporary file of at most 4 GiB. A file "
        "of this name is './-'. Commands that write a file refuse '-' as its name, except for "
        "'view -o -', which prints the page."));
    page.subsection(QStringLiteral("Results and messages"));
    page.paragraph(QStringLiteral(
        "Results alone go to standard output. Errors and notes go to standard error. With --json "
        "the result is one line of JSON; for several files it is one object with the array "
        "'files'. Numbers have a '.' in every locale, and texts are UTF-8. Hidden characters in "
        "texts from files are printed as '\\x0a', '\\u202e' or '\\U000e0041', and a backslash as "
        "'\\\\'."));
    page.subsection(QStringLiteral("Terminals and colours"));
    page.paragraph(QStringLiteral(
        "On a terminal, 'show' and 'assembly tree' cut their lines at its width, print geometry "
        "files in colour, and print comments and disabled components faint. In a pipe or a file, "
        "lines are complete and have no colours, unless --color=always is given."));
}

void addExitStatus(RoffPage& page) {
    page.section(QStringLiteral("EXIT STATUS"));
    page.item(roffBold(QStringLiteral("0")),
              QStringLiteral("Done. The answer to a question is yes."));
    page.item(
        roffBold(QStringLiteral("1")),
        QStringLiteral("Done. The answer is no: a file has errors, assemblies differ, or what "
                       "was searched for is not found."));
    page.item(roffBold(QStringLiteral("2")),
              QStringLiteral("An error: wrong arguments, a file that cannot be read or written, or "
                             "output that cannot be written."));
}

void addEnvironment(RoffPage& page) {
    const auto variable = [&page](const char* names, const QString& text) {
        page.item(roffBold(QString::fromLatin1(names)), text);
    };
    page.section(QStringLiteral("ENVIRONMENT"));
    variable("NO_COLOR", QStringLiteral("If it is not empty, there are no colours without "
                                        "--color=always."));
    variable("TERM", QStringLiteral("The value 'dumb' has the same effect."));
    variable("TMPDIR",
             QStringLiteral("The directory for the copies of standard input and of pipes. "
                            "Without it, this is /tmp."));
    variable("TRVHOME", QStringLiteral("The root of the installation that 'env' and 'context list' "
                                       "use. The option --root has precedence."));
    variable("TRVHOME_LS", QStringLiteral("The root if TRVHOME is empty or not set."));
    variable("TRV_MCTX_DEF",
             QStringLiteral("The directory of the favourite machine contexts, which 'context list' "
                            "searches."));
    variable("TRVZONE",
             QStringLiteral("The work zone, which has the directory that the variable TMP "
                            "names."));
    variable("TRVTMPDIR", QStringLiteral("The value of the variable TMP."));
    variable("TRV_TRVFILES_VERBOSE",
             QStringLiteral("If it has any value but 'off', the commands that use an installation "
                            "print the trace lines of the runtime on standard error."));
    page.paragraph(QStringLiteral(
        "Every other variable has precedence over a variable of that name in the configuration "
        "files. A variable such as ENVPATH or CFGPATH has precedence over the path list ENV or "
        "CFG."));
}

void addFiles(RoffPage& page) {
    const auto file = [&page](const char* name, const QString& text) {
        page.item(roffItalic(QString::fromLatin1(name)), text);
    };
    page.section(QStringLiteral("FILES"));
    file("$TRVHOME/config/environ.cfg",
         QStringLiteral("The first configuration file of an installation. Those in the directories "
                        "of the path list ENV follow."));
    file("$TRVHOME/standard/machine_context",
         QStringLiteral("The favourite machine contexts, if TRV_MCTX_DEF is not set."));
    file("FILE.mctx.messages.tmp",
         QStringLiteral("The new text of a machine context while it is written. It then replaces "
                        "the old file."));
    file("PREFIX/share/trvfiles/schema/assembly.xsd",
         QStringLiteral("The XML schema of assembly files, for editors and validators."));
}

void addExamples(RoffPage& page) {
    page.section(QStringLiteral("EXAMPLES"));
    for (const ManualExample& example : manualExamples()) {
        page.paragraph(example.explanation % QLatin1Char(':'));
        page.literal({example.call});
    }
}

void addReferences(RoffPage& page) {
    page.section(QStringLiteral("SEE ALSO"));
    page.paragraph(QStringLiteral("git(1), xmllint(1)"));
    page.paragraph(QStringLiteral(
        "'trvfiles help COMMAND' prints the same about one command. The pages docs/command.md, "
        "docs/file-formats.md and docs/runtime.md of the sources describe the commands, the files "
        "and the configuration completely."));
}

}  // namespace

QList<ManualExample> manualExamples() {
    return {{QStringLiteral("trvfiles check --references --recursive --quiet ."),
             QStringLiteral("Find everything that is wrong with the project in this directory, "
                            "files that do not exist included")},
            {QStringLiteral("trvfiles assembly diff bracket.xml bracket-rev-b.xml"),
             QStringLiteral("Compare two revisions of an assembly")},
            {QStringLiteral("trvfiles assembly edit --dry-run --rename-file "
                            "geometry/vise-jaw.stl=jaw.stl *.xml"),
             QStringLiteral("Show what another name of a geometry file would change")},
            {QStringLiteral("trvfiles env explain SPINDLE_LIMIT"),
             QStringLiteral("Find out which file sets a variable")}};
}

QString manualPage(const CommandGroup& commands) {
    RoffPage page(QStringLiteral("TRVFILES"),
                  QLatin1String("trvfiles ") % QLatin1String(version_text()));
    addIntroduction(page);
    addOptions(page);
    addCommands(commands, page);
    addInputAndOutput(page);
    addExitStatus(page);
    addEnvironment(page);
    addFiles(page);
    addExamples(page);
    addReferences(page);
    return page.text();
}

}  // namespace trv::cli
