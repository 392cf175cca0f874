#include <trvfiles/catalogue/context_graph.h>
#include <trvfiles/support/platform_directories.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <cstddef>
#include <deque>
#include <filesystem>
#include <string>
#include <unordered_map>
#include <utility>

namespace trv {
namespace {

struct Subdirectory {
    QString name;
    // The order is that of these texts.
    QString lowerCase;
    bool isLink;
};

// Those that a path can hold, by name, ignoring case, as QDir sorts them. What differs in case only
// comes by name.
std::vector<Subdirectory> subdirectoriesOf(const QString& path) {
    std::vector<Subdirectory> found;
    for (const platform::subdirectory& entry : platform::subdirectories(systemPath(path))) {
        HostPath name = pathFromSystem(entry.name);
        // QDir::cd() enters no ":x", which it takes for a resource.
        if (!name.isExact || name.text.startsWith(QLatin1Char(':'))) continue;
        QString lowerCase = name.text.toLower();
        found.push_back({std::move(name.text), std::move(lowerCase), entry.is_link});
    }
    std::sort(found.begin(), found.end(), [](const Subdirectory& a, const Subdirectory& b) {
        const int order = a.lowerCase.compare(b.lowerCase);
        return order != 0 ? order < 0 : a.name < b.name;
    });
    return found;
}

// Lists directories, each by its canonical path once. Directories that a link leads to come last,
// so each one is listed by a path with as few links as possible: the system follows only so many
// links within one path.
class Explorer {
public:
    std::vector<ContextDirectory> explore(const QString& start) {
        waiting_.push_back({indexOf(platform::canonical_path(systemPath(start))), start});
        while (!waiting_.empty()) {
            const Waiting next = std::move(waiting_.front());
            waiting_.pop_front();
            list(next);
        }
        return std::move(directories_);
    }

private:
    struct Waiting {
        int directory;
        QString path;
    };

    ContextDirectory& at(int directory) {
        return directories_[static_cast<std::size_t>(directory)];
    }

    // The place of a directory in the graph, which takes a new one.
    int indexOf(const std::filesystem::path& canonical) {
        const int next = static_cast<int>(directories_.size());
        const auto [place, isNew] = places_.emplace(canonical.native(), next);
        if (isNew) {
            directories_.emplace_back();
            canonicalPaths_.push_back(canonical);
        }
        return place->second;
    }

    void list(const Waiting& waiting) {
        if (!at(waiting.directory).path.isEmpty()) return;
        at(waiting.directory).path = waiting.path;
        for (const Subdirectory& entry : subdirectoriesOf(waiting.path)) {
            const int target =
                targetOf(entry, entryPath(waiting.path, entry.name), waiting.directory);
            at(waiting.directory).entries.push_back({entry.name, target});
        }
    }

    int targetOf(const Subdirectory& entry, const QString& path, int parent) {
        if (isContext(contextPath(path, entry.name))) return ContextEntry::context;
        // Resolving a whole path takes a call for each of its parts, so only links are resolved.
        const int target =
            indexOf(entry.isLink ? platform::canonical_path(systemPath(path))
                                 : canonicalPaths_[static_cast<std::size_t>(parent)] /
                                       systemPath(entry.name));
        if (entry.isLink) {
            waiting_.push_back({target, path});
        } else {
            waiting_.push_front({target, path});
        }
        return target;
    }

    std::vector<ContextDirectory> directories_;
    // As the system has them: a text may not tell them apart.
    std::vector<std::filesystem::path> canonicalPaths_;
    std::unordered_map<std::filesystem::path::string_type, int> places_;
    std::deque<Waiting> waiting_;
};

}  // namespace

std::vector<ContextDirectory> listContextDirectories(const QDir& start) {
    return Explorer().explore(start.path());
}

QString entryPath(const QString& directory, const QString& name) {
    if (directory == QLatin1String(".")) return name;
    return directory.endsWith(QLatin1Char('/')) ? directory + name
                                                : directory + QLatin1Char('/') + name;
}

QString contextPath(const QString& directory, const QString& name) {
    return entryPath(directory, name + QStringLiteral(".mctx"));
}

bool isContext(const QString& path) {
    return platform::kind_of(systemPath(path)) == platform::file_kind::other;
}

}  // namespace trv
