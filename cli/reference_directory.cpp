#include <cli/input_files.h>
#include <cli/reference_directory.h>
#include <trvfiles/support/platform_directories.h>
#include <trvfiles/text/path_resolution.h>

#include <QFileInfo>

namespace trv::cli {

ReferenceDirectory::ReferenceDirectory(const QString& file)
    : path_({QFileInfo(resolved(file)).path(), true}) {}

QString ReferenceDirectory::pathOf(const HostPath& name) const {
    const QString path = resolvedPath(path_, name);
    return isOpenable(path) ? path : QString();
}

bool ReferenceDirectory::hasFile(const HostPath& name) const {
    const QString path = pathOf(name);
    return !path.isEmpty() && platform::kind_of(systemPath(path)) == platform::file_kind::other;
}

}  // namespace trv::cli
