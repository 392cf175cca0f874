#include <cli/axis_replacement.h>
#include <cli/axis_report.h>
#include <cli/command.h>
#include <cli/file_output.h>
#include <cli/input_files.h>
#include <cli/text_output.h>
#include <cli/vector_argument.h>

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <memory>

namespace trv::cli {
namespace {

ExitStatus show(const QCommandLineParser& call, const Console& console) {
    const QStringList names = call.positionalArguments();
    const bool asJson = call.isSet(QStringLiteral("json"));
    FileOutput output(names.size(), Heading::blankLine, console.out);
    const ExitStatus status = printEachFile(names, console, [&](const QString& name) -> Problem {
        AxisFile axis;
        if (Problem problem = readAxis(name, axis)) return problem;
        if (asJson) {
            output.writeJson([&](JsonWriter& json) { json.addAll(axisJson(name, axis)); });
        } else {
            output.beginText(name) << qUtf8Printable(axisText(name, axis));
        }
        return {};
    });
    if (asJson) output.endJson();
    return status;
}

// Why a placement cannot be inverted; empty if it can.
QString whyNotInvertible(const AxisMatrix& matrix, const AxisTraits& traits) {
    if (std::any_of(matrix.begin(), matrix.end(), [](double x) { return !std::isfinite(x); })) {
        return QStringLiteral("the matrix holds nan or inf and has no inverse");
    }
    if (traits.singular) return QStringLiteral("the matrix is singular and has no inverse");
    if (matrix[3] != 0 || matrix[7] != 0 || matrix[11] != 0) {
        return QStringLiteral("line 5 does not start with 0 0 0; the matrix is not a placement");
    }
    return {};
}

// The matrix to write so that reading gives the inverse of the given one. A file has the block of
// its matrix transposed, and a reader inverts the block of the file. So if the axes are not
// orthonormal, the transpose of the given block is read as its inverse.
AxisMatrix thatReadsBackAsInverse(const AxisMatrix& matrix, const AxisTraits& traits) {
    AxisMatrix written = traits.inverse;
    if (traits.orthonormal) return written;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column)
            written[4 * row + column] = matrix[4 * column + row];
    }
    return written;
}

// Writes the file, unless that would replace a file of another kind.
//
// @param held  what holdFile() has returned for the name
ExitStatus save(const QCommandLineParser& call, const QString& name, const AxisFile& axis,
                file_replacement* held, const Console& console) {
    if (const Problem problem = whyNotHeld(name, held)) return report(name, problem, console);
    if (!call.isSet(QStringLiteral("force"))) {
        const QString reason = whyNotAnAxisFile(name);
        if (!reason.isEmpty()) {
            return fail(name,
                        QStringLiteral("not replaced: %1; --force replaces it").arg(shown(reason)),
                        console);
        }
    }
    const Problem problem = writeAxis(name, axis, held);
    return problem ? report(name, problem, console) : done;
}

ExitStatus invert(const QCommandLineParser& call, const Console& console) {
    const QString from = call.positionalArguments().at(0);
    const QString to = call.positionalArguments().at(1);
    // Held before the file is read: otherwise two commands that invert a file in place at the same
    // time would invert it once.
    const std::unique_ptr<file_replacement> held = holdFile(to);
    AxisFile axis;
    if (const Problem problem = readAxis(from, axis)) return report(from, problem, console);

    const AxisTraits traits = traitsOf(axis.matrix);
    const QString reason = whyNotInvertible(axis.matrix, traits);
    if (!reason.isEmpty()) return fail(from, reason, console);
    axis.matrix = thatReadsBackAsInverse(axis.matrix, traits);
    return save(call, to, axis, held.get(), console);
}

bool readTags(const QString& text, std::array<int, 3>& tags) {
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 3) return false;
    for (int i = 0; i < 3; ++i) {
        bool isInteger = false;
        const int tag = parts.at(i).toInt(&isInteger);
        if (!isInteger || tag < 0) return false;
        tags[static_cast<std::size_t>(i)] = tag;
    }
    return true;
}

// Fills the file from the options.
//
// @return what is wrong with them; empty if nothing is
QString readOptions(const QCommandLineParser& call, AxisFile& axis) {
    struct Row {
        QString option;
        std::size_t first;
    };
    const Row rows[] = {{QStringLiteral("vec1"), 0},
                        {QStringLiteral("vec2"), 4},
                        {QStringLiteral("vec3"), 8},
                        {QStringLiteral("translate"), 12}};
    axis.matrix = identityAxis;
    int vectors = 0;
    for (const Row& row : rows) {
        if (!call.isSet(row.option)) continue;
        if (row.first < 12) ++vectors;
        if (!readVector(call.value(row.option), &axis.matrix[row.first])) {
            return QStringLiteral("--%1 takes three numbers, such as 10,0,-2.5, not '%2'")
                .arg(row.option, call.value(row.option));
        }
    }
    if (vectors != 0 && vectors != 3) {
        return QStringLiteral("--vec1, --vec2 and --vec3 belong together: give all or none");
    }
    if (call.isSet(QStringLiteral("tags")) &&
        !readTags(call.value(QStringLiteral("tags")), axis.tags)) {
        return QStringLiteral("--tags takes three whole numbers from 0 on, such as 3,0,7, not '%1'")
            .arg(call.value(QStringLiteral("tags")));
    }
    return {};
}

ExitStatus write(const QCommandLineParser& call, const Console& console) {
    AxisFile axis;
    const QString mistake = readOptions(call, axis);
    if (!mistake.isEmpty()) {
        return refuseCall(console, QStringLiteral("axis write"), mistake);
    }
    const AxisTraits traits = traitsOf(axis.matrix);
    if (traits.singular) {
        return refuseCall(console, QStringLiteral("axis write"),
                          QStringLiteral("--vec1, --vec2 and --vec3 must be linearly independent"));
    }
    const QString name = call.positionalArguments().at(0);
    const std::unique_ptr<file_replacement> held = holdFile(name);
    const ExitStatus status = save(call, name, axis, held.get(), console);
    if (status != done) return status;
    if (!traits.orthonormal) {
        console.err << "trvfiles: note: the vectors are not orthonormal; the file is read as the "
                       "inverse of their transpose\n";
    }
    return done;
}

QCommandLineOption numbersOption(const char* name, const char* description) {
    return QCommandLineOption(QString::fromLatin1(name), QString::fromLatin1(description),
                              QStringLiteral("X,Y,Z"));
}

}  // namespace

CommandGroup axisCommands() {
    Command showAxis;
    showAxis.name = QStringLiteral("axis show");
    showAxis.arguments = QStringLiteral("[--json] FILE...");
    showAxis.summary = QStringLiteral("Show an axis file");
    showAxis.details = QStringLiteral(
        "Prints the matrix that a program reads from the file, its inverse, and the kind\n"
        "of the placement. \"-\" is standard input. A file that cannot be read is\n"
        "reported, the others are shown; the exit status is then 2.\n");
    showAxis.examples += QStringLiteral("trvfiles axis show table-a30.dat");
    showAxis.options = {jsonOption()};
    showAxis.maxFiles = Command::anyNumber;
    showAxis.run = show;

    Command invertAxis;
    invertAxis.name = QStringLiteral("axis invert");
    invertAxis.arguments = QStringLiteral("[--force] IN OUT");
    invertAxis.summary = QStringLiteral("Write the inverse of an axis file to another one");
    invertAxis.details = QStringLiteral(
        "Reading OUT gives the inverse of what reading IN gives. The tags are kept. OUT\n"
        "may be IN. An existing OUT is replaced only if it is an axis file.\n");
    invertAxis.options = {forceOption()};
    invertAxis.examples += QStringLiteral("trvfiles axis invert table-a30.dat back-a30.dat");
    invertAxis.minFiles = 2;
    invertAxis.maxFiles = 2;
    invertAxis.run = invert;

    Command writeAxisFile;
    writeAxisFile.name = QStringLiteral("axis write");
    writeAxisFile.arguments = QStringLiteral("[OPTION...] FILE");
    writeAxisFile.summary = QStringLiteral("Write an axis file");
    writeAxisFile.details = QStringLiteral(
        "Without options the file contains the identity and no tags. Numbers have a \".\"\n"
        "and are rounded to six decimals. An existing FILE is replaced only if it is an\n"
        "axis file.\n");
    writeAxisFile.examples += QStringLiteral("trvfiles axis write --translate 100,0,30 right.dat");
    writeAxisFile.examples +=
        QStringLiteral("trvfiles axis write --vec1 0,1,0 --vec2=-1,0,0 --vec3 0,0,1 turned.dat");
    writeAxisFile.options = {numbersOption("translate", "The translation"),
                             numbersOption("vec1", "The image of the x axis"),
                             numbersOption("vec2", "The image of the y axis"),
                             numbersOption("vec3", "The image of the z axis"),
                             QCommandLineOption(QStringLiteral("tags"),
                                                QStringLiteral("Three whole numbers, at least 0"),
                                                QStringLiteral("A,B,C")),
                             forceOption()};
    writeAxisFile.run = write;
    return {showAxis, invertAxis, writeAxisFile};
}

}  // namespace trv::cli
