#include <trvfiles/support/platform.h>
#include <trvfiles/text/path_resolution.h>

#include <QDir>
#include <QFileInfo>
#include <QLatin1Char>
#include <QLatin1String>

#include <string>

namespace trv {
namespace {

constexpr QLatin1Char slash('/');

// Only Windows has drives, and only there "\\" separates the parts of a path.
bool hasDrives() {
    return platform::backslash_separates();
}

QString join(const QString& directory, const QString& name) {
    if (directory.isEmpty() || name.isEmpty()) return directory + name;
    return directory.endsWith(slash) ? directory + name : directory + slash + name;
}

// For POSIX. QDir::isAbsolutePath() also accepts "prefix:name", a name on a search path of the
// host, and each ":name" as a resource.
bool isAbsolute(const QString& path) {
    return path.startsWith(slash) || isResource(path);
}

// For POSIX. If the current directory has been removed, it has no path. Then the result is
// relative, and the system finds nothing under it.
HostPath absoluteDirectory(const HostPath& directory) {
    HostPath path{nativePath(directory.text), directory.isExact};
    if (!isAbsolute(path.text)) {
        const HostPath current = pathFromNarrow(platform::current_directory());
        path.text = join(nativePath(current.text), path.text);
        path.isExact = path.isExact && current.isExact;
    }
    // Cleaning "a/b\0/.." would remove the zero, and a file may have the rest as its path.
    if (isOpenable(path.text)) path.text = QDir::cleanPath(path.text);
    return path;
}

// For POSIX. cleanPath() removes a "/" at the end. With it the system opens a directory only, so
// "f/" must not become the file "f".
QString cleaned(const QString& path) {
    const QString clean = QDir::cleanPath(path);
    return path.endsWith(slash) && !clean.endsWith(slash) ? clean + slash : clean;
}

// For Windows: "/x" and "\x" are on the drive or the share of the directory.
bool lacksDrive(const QString& path) {
    const QString generic = QDir::fromNativeSeparators(path);
    return generic.startsWith(slash) && !generic.startsWith(QLatin1String("//"));
}

// For Windows. QDir prints a warning if a path has neither.
QString driveOrShare(const QString& absolute) {
    if (absolute.size() > 1 && absolute.at(0).isLetter() && absolute.at(1) == QLatin1Char(':')) {
        return absolute.left(2);
    }
    if (!absolute.startsWith(QLatin1String("//"))) return {};
    const int share = absolute.indexOf(slash, 2) + 1;
    if (share == 0 || share == absolute.size()) return {};
    return absolute.left(absolute.indexOf(slash, share));
}

// For Windows. A path that cannot be opened is joined as text, because QDir prints a warning.
QString pathOnDrive(const QDir& directory, const QString& name) {
    if (!isOpenable(directory.path())) return directory.filePath(name);
    if (!lacksDrive(name)) return directory.absoluteFilePath(name);
    const QString drive = driveOrShare(directory.absolutePath());
    return drive.isEmpty() ? drive : drive + name;
}

bool namesTheDirectoryItself(const QString& name) {
    return name.isEmpty() || QDir::cleanPath(name) == QLatin1String(".");
}

}  // namespace

bool isResource(const QString& path) {
    return path.startsWith(QLatin1String(":/"));
}

HostPath absolutePath(const HostPath& directory, const HostPath& name) {
    const QString native = nativePath(name.text);
    if (hasDrives()) {
        return {pathOnDrive(QDir(directory.text), native), directory.isExact && name.isExact};
    }
    if (isAbsolute(native)) return {native, name.isExact};
    const HostPath base = absoluteDirectory(directory);
    return {join(base.text, native), base.isExact && name.isExact};
}

QString resolvedPath(const HostPath& directory, const HostPath& name) {
    if (namesTheDirectoryItself(nativePath(name.text))) return {};
    QString path = absolutePath(directory, name).openable();
    if (!isOpenable(path) || isResource(path)) return path;
    return hasDrives() ? QFileInfo(path).absoluteFilePath() : cleaned(path);
}

}  // namespace trv
