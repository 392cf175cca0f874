#include <cli/context_commands.h>
#include <cli/context_search.h>
#include <trvfiles/catalogue/context_graph.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/support/platform_directories.h>
#include <trvfiles/text/text_conversion.h>

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <filesystem>
#include <string>
#include <unordered_set>

namespace trv::cli {
namespace {

// The names of the files that a path can express. Qt replaces what is not UTF-8, and then finds no
// file of that name.
QStringList contextNamesIn(const QString& directory) {
    QStringList names;
    for (const QString& name : QDir(directory).entryList({QStringLiteral("*.mctx")},
                                                         QDir::Files | QDir::Hidden, QDir::Name)) {
        const bool isOpened =
            nativePath(name) == name && QFileInfo::exists(pathIn(directory, name));
        if (isOpened) names += name;
    }
    return names;
}

QStringList subdirectoriesOf(const QString& directory) {
    QStringList names;
    for (const platform::subdirectory& entry : platform::subdirectories(systemPath(directory))) {
        const HostPath name = pathFromSystem(entry.name);
        if (name.isExact) names += name.text;
    }
    names.sort(Qt::CaseInsensitive);
    return names;
}

}  // namespace

QStringList contextsIn(const QString& directory) {
    QStringList paths;
    for (const QString& name : contextNamesIn(nativePath(directory)))
        paths += QDir::toNativeSeparators(pathIn(directory, name));
    return paths;
}

QStringList contextsBelow(const QString& directory) {
    QStringList paths;
    std::unordered_set<std::filesystem::path::string_type> searched;
    // The next directory is the last one.
    QStringList pending = {nativePath(directory)};
    while (!pending.isEmpty()) {
        const QString next = pending.takeLast();
        if (!searched.insert(platform::canonical_path(systemPath(next)).native()).second) continue;
        for (const QString& name : contextNamesIn(next))
            paths += QDir::toNativeSeparators(entryPath(next, name));
        QStringList below = subdirectoriesOf(next);
        std::reverse(below.begin(), below.end());
        for (const QString& name : below)
            pending += entryPath(next, name);
    }
    return paths;
}

}  // namespace trv::cli
