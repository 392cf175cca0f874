#include <trvfiles/catalogue/context_graph.h>

#include <QFileInfo>
#include <QHash>

#include <cstddef>
#include <deque>
#include <utility>

namespace trv {
namespace {

// Lists directories, each by its canonical path once. Directories that a link leads to come last,
// so each one is listed by a path with as few links as possible: the system follows only so many
// links within one path.
class Explorer {
public:
    std::vector<ContextDirectory> explore(const QDir& start) {
        waiting_.push_back({indexOf(start.canonicalPath()), start.path()});
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
    int indexOf(const QString& canonical) {
        const auto known = places_.constFind(canonical);
        if (known != places_.constEnd()) return known.value();
        const int place = static_cast<int>(directories_.size());
        places_.insert(canonical, place);
        directories_.emplace_back();
        canonicalPaths_.push_back(canonical);
        return place;
    }

    void list(const Waiting& waiting) {
        if (!at(waiting.directory).path.isEmpty()) return;
        at(waiting.directory).path = waiting.path;
        const QDir directory(waiting.path);
        // Without a sort order of its own the list comes by name, case ignored.
        const QFileInfoList entries =
            directory.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::NoSort);
        for (const QFileInfo& entry : entries) {
            const QString name = entry.fileName();
            // Qt takes such a name for the path of a resource, which QDir::cd() does not enter.
            if (name.startsWith(QLatin1Char(':'))) continue;
            const int target = targetOf(entry, entryPath(waiting.path, name), waiting.directory);
            at(waiting.directory).entries.push_back({name, target});
        }
    }

    int targetOf(const QFileInfo& entry, const QString& path, int parent) {
        const QString name = entry.fileName();
        if (isContext(contextPath(path, name))) return ContextEntry::context;
        // Resolving a whole path takes a call for each of its parts, so only links are resolved.
        const bool isLink = entry.isSymLink() || entry.isJunction();
        const int target =
            indexOf(isLink ? QDir(path).canonicalPath()
                           : entryPath(canonicalPaths_[static_cast<std::size_t>(parent)], name));
        if (!at(target).path.isEmpty()) return target;
        if (isLink) {
            waiting_.push_back({target, path});
        } else {
            waiting_.push_front({target, path});
        }
        return target;
    }

    std::vector<ContextDirectory> directories_;
    std::vector<QString> canonicalPaths_;
    QHash<QString, int> places_;
    std::deque<Waiting> waiting_;
};

}  // namespace

std::vector<ContextDirectory> listContextDirectories(const QDir& start) {
    return Explorer().explore(start);
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
    const QFileInfo context(path);
    return context.exists() && !context.isDir();
}

}  // namespace trv
