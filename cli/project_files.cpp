#include <cli/input_files.h>
#include <cli/project_files.h>
#include <trvfiles/support/platform_directories.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace trv::cli {
namespace {

QString joined(const QString& directory, const QString& name) {
    const bool hasSeparator =
        directory.endsWith(QLatin1Char('/')) || nativePath(directory).endsWith(QLatin1Char('/'));
    return hasSeparator ? directory + name : directory + QLatin1Char('/') + name;
}

// Such as ".git", on every system.
bool isHidden(const QString& name) {
    return name.startsWith(QLatin1Char('.'));
}

struct Listing {
    QStringList files;
    bool hasDirectories = false;
    /// Why the directory is not listed to its end; empty if it is.
    QString error;
};

Listing listingOf(const std::filesystem::path& directory) {
    Listing listing;
    std::error_code failure;
    const std::filesystem::directory_iterator end;
    for (std::filesystem::directory_iterator entry(directory, failure); !failure && entry != end;
         entry.increment(failure)) {
        std::error_code unknown;
        if (!entry->is_regular_file(unknown)) {
            listing.hasDirectories |= entry->is_directory(unknown);
            continue;
        }
        const QString name = pathFromSystem(entry->path().filename().native()).text;
        if (!isHidden(name)) listing.files += name;
    }
    if (failure)
        listing.error = QString::fromStdString(failure.default_error_condition().message());
    return listing;
}

QStringList directoriesIn(const std::filesystem::path& directory) {
    QStringList names;
    for (const platform::subdirectory& below : platform::subdirectories(directory)) {
        const QString name = pathFromSystem(below.name).text;
        if (!below.is_link && !isHidden(name)) names += name;
    }
    return names;
}

// A stack instead of a recursion: the system limits the length of a path, but a directory may be
// deeper than the stack of a thread.
void addFilesOf(const QString& argument, bool isRecursive, std::vector<FoundFile>& found) {
    QStringList pending = {argument};
    while (!pending.isEmpty()) {
        const QString name = pending.takeLast();
        const std::filesystem::path path = systemPath(resolved(name));
        const Listing listing = listingOf(path);
        if (!listing.error.isEmpty()) found.push_back({name, true, listing.error});
        for (const QString& file : listing.files)
            found.push_back({joined(name, file), true});
        if (!isRecursive || !listing.hasDirectories) continue;
        for (const QString& below : directoriesIn(path))
            pending += joined(name, below);
    }
}

}  // namespace

bool isDirectory(const QString& name) {
    const QString path = resolved(name);
    return !name.isEmpty() && isOpenable(path) &&
           platform::kind_of(systemPath(path)) == platform::file_kind::directory;
}

std::vector<FoundFile> findFiles(const QStringList& arguments, bool isRecursive) {
    std::vector<FoundFile> found;
    for (const QString& argument : arguments) {
        if (!isDirectory(argument)) {
            found.push_back({argument});
            continue;
        }
        const auto first = static_cast<std::ptrdiff_t>(found.size());
        addFilesOf(argument, isRecursive, found);
        std::sort(
            found.begin() + first, found.end(),
            [](const FoundFile& left, const FoundFile& right) { return left.name < right.name; });
    }
    return found;
}

}  // namespace trv::cli
