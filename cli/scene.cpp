#include <cli/input_files.h>
#include <cli/scene.h>

#include <utility>

namespace trv::cli {
namespace {

struct Files {
    QStringList assemblies;
    /// Axis files and machine contexts, with their kinds.
    std::vector<std::pair<QString, FileKind>> frames;
};

// Reports each file whose kind is not found.
ExitStatus sortFiles(const QStringList& names, const Console& console, Files& files) {
    ExitStatus status = done;
    for (const QString& name : names) {
        FileKind kind = FileKind::unknown;
        if (const Problem problem = findKind(name, kind)) {
            status = report(name, problem, console);
        } else if (kind == FileKind::assembly) {
            files.assemblies += name;
        } else {
            files.frames.emplace_back(name, kind);
        }
    }
    return status;
}

// What is wrong with the number of assemblies; empty if nothing is.
QString mistakeOf(const QStringList& assemblies, bool isComparison) {
    if (isComparison && assemblies.size() != 2) {
        return QStringLiteral("--diff takes two assemblies, not %1").arg(assemblies.size());
    }
    if (!isComparison && assemblies.size() > 1) {
        return QStringLiteral("'%1' is one assembly too many; --diff compares two")
            .arg(assemblies.at(1));
    }
    return {};
}

ExitStatus readFiles(const Files& files, const Console& console, Scene& scene) {
    ExitStatus status = done;
    for (const QString& name : files.assemblies) {
        scene.assemblies.push_back({name, {}});
        const Problem problem = readAssembly(name, scene.assemblies.back().data);
        if (problem) status = report(name, problem, console);
    }
    for (const auto& [name, kind] : files.frames) {
        SceneFrame frame;
        if (const Problem problem = readFrame(name, kind, frame)) {
            status = report(name, problem, console);
        } else {
            scene.frames.push_back(frame);
        }
    }
    return status;
}

}  // namespace

ExitStatus readScene(const QStringList& names, bool isComparison, const Console& console,
                     Scene& scene) {
    Files files;
    const ExitStatus status = sortFiles(names, console, files);
    if (status != done) return status;
    const QString mistake = mistakeOf(files.assemblies, isComparison);
    if (!mistake.isEmpty()) return refuseCall(console, QStringLiteral("view"), mistake);
    scene.title = displayName(names.constFirst());
    return readFiles(files, console, scene);
}

}  // namespace trv::cli
