#include <cli/assembly_report.h>
#include <cli/axis_report.h>
#include <cli/check_files.h>
#include <cli/check_references.h>
#include <cli/context_report.h>
#include <cli/diagnostic_codes.h>
#include <cli/diagnostic_places.h>
#include <cli/input_files.h>
#include <cli/text_output.h>

#include <QJsonArray>

#include <algorithm>
#include <tuple>
#include <utility>

namespace trv::cli {
namespace {

// What reading a file has given, before its places are known.
struct Content {
    Problem problem;
    Notes notes;
    References references;
};

Content readContent(const LoadedFile& file, FileReport& report, const CheckOptions& options) {
    Content content;
    switch (report.kind) {
        case FileKind::assembly: {
            CTrvAssemblyData assembly;
            content.problem = readAssembly(file, assembly, &content.notes);
            if (content.problem) break;
            report.summary = assemblySummary(assembly);
            if (options.checksReferences)
                content.references = missingReferences(report.name, assembly);
            break;
        }
        case FileKind::axis: {
            AxisFile axis;
            content.problem = readAxis(file, axis, &content.notes);
            if (!content.problem) report.summary = axisSummary(axis);
            break;
        }
        case FileKind::machineContext: {
            ContextFile context;
            content.problem = readContext(file, context, &content.notes);
            if (content.problem) break;
            report.summary = contextSummary(context);
            if (options.checksReferences)
                content.references = missingReferences(report.name, context.data);
            break;
        }
        case FileKind::unknown:
            content.problem = whyKindIsUnknown(file);
            break;
    }
    return content;
}

Diagnostic errorOf(const Problem& problem, Place place) {
    return {Diagnostic::Severity::error,
            place,
            problem.code,
            statusName(problem.status) + QStringLiteral(": ") + problem.reason,
            {},
            problem.fields};
}

Diagnostic warningOf(const CFileFault::Note& note, Place place) {
    return {Diagnostic::Severity::warning,     place, codeOf(note.kind),
            QString::fromStdString(note.text), {},    fieldsOf(note)};
}

Diagnostic warningOf(const Reference& reference, Place place) {
    return {Diagnostic::Severity::warning,
            place,
            QStringLiteral("reference-missing"),
            textOf(reference),
            {},
            fieldsOf(reference)};
}

FileReport unreadable(const QString& name, const Problem& problem) {
    FileReport report;
    report.name = name;
    report.status = problem.status;
    report.diagnostics.push_back(errorOf(problem, {}));
    return report;
}

void addDiagnostics(FileReport& report, const Content& content, const CheckOptions& options) {
    SourceText source;
    const bool needsSource =
        !content.notes.empty() || !content.references.empty() || content.problem.line > 0;
    if (needsSource) source = sourceOf(report.name, report.kind);
    for (const CFileFault::Note& note : content.notes) {
        report.diagnostics.push_back(warningOf(note, placeOfNote(source, report.kind, note)));
    }
    const std::vector<Place> places = placesOf(source, content.references);
    for (std::size_t i = 0; i < places.size(); ++i)
        report.diagnostics.push_back(warningOf(content.references[i], places[i]));
    if (content.problem) {
        const Place place = {content.problem.line, content.problem.column};
        report.diagnostics.push_back(
            errorOf(content.problem, placeOfFailure(source, report.kind, place)));
    }
    if (!options.showsSource) return;
    for (Diagnostic& diagnostic : report.diagnostics)
        diagnostic.sourceLine = source.line(diagnostic.place.line);
}

// By line and column. Those about the whole file follow, and the reader's order decides last.
void sortByPlace(std::vector<Diagnostic>& diagnostics) {
    const auto key = [](const Diagnostic& diagnostic) {
        const Place place = diagnostic.place;
        return std::make_tuple(place.line == 0, place.line, place.column);
    };
    std::stable_sort(
        diagnostics.begin(), diagnostics.end(),
        [&](const Diagnostic& left, const Diagnostic& right) { return key(left) < key(right); });
}

QJsonValue kindJson(FileKind kind) {
    switch (kind) {
        case FileKind::assembly:
            return QStringLiteral("assembly");
        case FileKind::axis:
            return QStringLiteral("axis");
        case FileKind::machineContext:
            return QStringLiteral("machineContext");
        case FileKind::unknown:
            break;
    }
    return {};
}

}  // namespace

FileReport checkFile(const QString& name, const CheckOptions& options) {
    FileReport report;
    report.name = name;
    LoadedFile file;
    if (const Problem problem = load(name, file)) return unreadable(name, problem);
    report.kind = file.kind();
    const Content content = readContent(file, report, options);
    report.status = content.problem.status;
    addDiagnostics(report, content, options);
    sortByPlace(report.diagnostics);
    return report;
}

FileReport unlistedDirectory(const QString& name, const QString& reason) {
    return unreadable(name,
                      {eFileIOOpenError, reason, 0, 0, QStringLiteral("directory-not-listed")});
}

bool isNoProjectFile(const FileReport& report) {
    return report.kind == FileKind::unknown && report.status == eFileIOContentError;
}

QString verdictText(const FileReport& report) {
    const QString name = shown(displayName(report.name));
    if (report.hasError()) return QStringLiteral("%1: error").arg(name);
    const std::size_t warnings = report.warningCount();
    const QString verdict =
        warnings == 0 ? QStringLiteral("ok")
                      : counted(warnings, QStringLiteral("warning"), QStringLiteral("warnings"));
    return QStringLiteral("%1: %2 (%3)").arg(name, verdict, report.summary);
}

QJsonObject reportJson(const FileReport& report) {
    QJsonArray diagnostics;
    for (const Diagnostic& diagnostic : report.diagnostics)
        diagnostics.append(diagnosticJson(diagnostic));
    return {
        {QStringLiteral("file"), report.name},
        {QStringLiteral("kind"), kindJson(report.kind)},
        {QStringLiteral("status"), statusName(report.status)},
        {QStringLiteral("diagnostics"), diagnostics},
    };
}

}  // namespace trv::cli
