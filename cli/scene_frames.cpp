#include <cli/reference_directory.h>
#include <cli/scene_frames.h>
#include <trvfiles/text/text_conversion.h>

#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace trv::cli {
namespace {

// The problem of a file that another one names.
Problem namedIn(const QString& what, const QString& name, Problem problem) {
    problem.reason = QStringLiteral("%1 \"%2\": %3").arg(what, name, problem.reason);
    return problem;
}

Problem readPosition(const QString& name, AxisFile& axis) {
    ContextFile context;
    if (Problem problem = readContext(name, context)) return problem;
    const HostPath position = pathFromWide(context.data.getMachinePositionW());
    if (position.text.isEmpty()) {
        return {eFileIOContentError, QStringLiteral("the machine context has no position")};
    }
    const QString path = ReferenceDirectory(name).pathOf(position);
    Problem problem = readAxis(path, axis);
    return problem ? namedIn(QStringLiteral("position file"), position.text, problem) : Problem();
}

bool isFinite(const AxisMatrix& matrix) {
    return std::all_of(matrix.begin(), matrix.end(),
                       [](double number) { return std::isfinite(number); });
}

}  // namespace

Problem readFrame(const QString& name, FileKind kind, SceneFrame& frame) {
    AxisFile axis;
    const bool isAxis = kind == FileKind::axis;
    if (Problem problem = isAxis ? readAxis(name, axis) : readPosition(name, axis)) return problem;
    if (!isFinite(axis.matrix)) {
        return {eFileIOContentError, QStringLiteral("a number of the frame is not finite")};
    }
    const QString shownName = displayName(name);
    frame = {QFileInfo(nativePath(shownName)).completeBaseName(), shownName,
             isAxis ? "axis" : "context", axis.matrix};
    return {};
}

void writeFrames(const std::vector<SceneFrame>& frames, JsonWriter& json) {
    json.beginArray("frames");
    for (const SceneFrame& frame : frames) {
        const AxisMatrix& m = frame.matrix;
        const double placement[] = {m[0], m[1], m[2],  m[4],  m[5],  m[6],
                                    m[8], m[9], m[10], m[12], m[13], m[14]};
        json.beginObject();
        json.add("label", frame.label);
        json.add("path", frame.path);
        json.addText("kind", frame.kind);
        json.addNumbers("matrix", placement, 12);
        json.endObject();
    }
    json.endArray();
}

}  // namespace trv::cli
