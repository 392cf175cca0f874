#include <trvfiles/catalogue/context_search.h>
#include <trvfiles/support/platform_directories.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace trv {
namespace {

using Places = std::vector<int>;

std::size_t at(int place) {
    return static_cast<std::size_t>(place);
}

bool isDirectory(const QString& path) {
    return platform::kind_of(systemPath(path)) == platform::file_kind::directory;
}

// For each directory those with an entry that leads there.
std::vector<Places> parentsOf(const std::vector<ContextDirectory>& directories) {
    std::vector<Places> parents(directories.size());
    for (std::size_t from = 0; from < directories.size(); ++from) {
        for (const ContextEntry& entry : directories[from].entries) {
            if (entry.target != ContextEntry::context)
                parents[at(entry.target)].push_back(static_cast<int>(from));
        }
    }
    return parents;
}

// The directories in the order in which a depth-first search leaves them.
Places leavingOrder(const std::vector<ContextDirectory>& directories) {
    struct Step {
        int directory;
        std::size_t next;
    };
    Places order;
    std::vector<bool> isSeen(directories.size());
    std::vector<Step> chain = {{0, 0}};
    isSeen[0] = true;
    while (!chain.empty()) {
        Step& step = chain.back();
        const std::vector<ContextEntry>& entries = directories[at(step.directory)].entries;
        if (step.next == entries.size()) {
            order.push_back(step.directory);
            chain.pop_back();
            continue;
        }
        const int target = entries[step.next++].target;
        if (target == ContextEntry::context || isSeen[at(target)]) continue;
        isSeen[at(target)] = true;
        chain.push_back({target, 0});
    }
    return order;
}

// Spreads a mark from the directories in `open` to those that lead there, as far as `admits` lets
// it, which is asked for each of them and marks what it admits.
template <class Admits>
void spread(Places open, const std::vector<Places>& parents, Admits admits) {
    while (!open.empty()) {
        const int directory = open.back();
        open.pop_back();
        for (const int parent : parents[at(directory)]) {
            if (admits(parent)) open.push_back(parent);
        }
    }
}

// The strongly connected components of a graph: directories that lead to each other. Only within
// one of them can the chain of entered directories be in the way: what is entered leads to all that
// follows, so whatever leads back to it is in its component.
class Components {
public:
    // Kosaraju's algorithm: in the reverse of the leaving order, whatever leads to a directory and
    // is in no component yet belongs to its component.
    Components(const std::vector<ContextDirectory>& directories, const std::vector<Places>& parents)
        : component_(directories.size(), none) {
        Places order = leavingOrder(directories);
        std::reverse(order.begin(), order.end());
        for (const int directory : order) {
            if (component_[at(directory)] != none) continue;
            const int component = static_cast<int>(members_.size());
            members_.emplace_back();
            const auto add = [&](int member) {
                if (component_[at(member)] != none) return false;
                component_[at(member)] = component;
                members_.back().push_back(member);
                return true;
            };
            add(directory);
            spread({directory}, parents, add);
        }
    }

    int of(int directory) const { return component_[at(directory)]; }
    const Places& membersWith(int directory) const { return members_[at(of(directory))]; }

private:
    static constexpr int none = -1;

    std::vector<int> component_;
    std::vector<Places> members_;
};

class Search {
public:
    explicit Search(const std::vector<ContextDirectory>& directories)
        : directories_(directories),
          parents_(parentsOf(directories)),
          components_(directories, parents_),
          leadsOn_(directories.size()),
          leadsOut_(directories.size()),
          isEntered_(directories.size()),
          leadsOnNow_(directories.size()) {
        findWhatLeadsOn();
    }

    std::vector<QString> run() {
        enter(0, directories_[0].path);
        while (!chain_.empty()) {
            Step& step = chain_.back();
            if (step.next == step.entries.size()) {
                isEntered_[at(step.directory)] = false;
                chain_.pop_back();
            } else {
                follow(*step.entries[step.next++], step.directory, step.path);
            }
        }
        return std::move(found_);
    }

private:
    // A directory that has been entered, with those of its entries that lead to a context.
    struct Step {
        int directory;
        QString path;
        std::vector<const ContextEntry*> entries;
        std::size_t next;
    };

    void findWhatLeadsOn() {
        Places open;
        for (std::size_t i = 0; i < directories_.size(); ++i) {
            for (const ContextEntry& entry : directories_[i].entries)
                if (entry.target == ContextEntry::context) leadsOn_[i] = true;
            if (leadsOn_[i]) open.push_back(static_cast<int>(i));
        }
        spread(std::move(open), parents_, [this](int directory) {
            return !leadsOn_[at(directory)] && (leadsOn_[at(directory)] = true);
        });
        for (std::size_t i = 0; i < directories_.size(); ++i) {
            for (const ContextEntry& entry : directories_[i].entries)
                if (leavesComponent(entry, static_cast<int>(i))) leadsOut_[i] = true;
        }
    }

    // Whether an entry leads to a context, the first step of the way leaving the component. Then
    // nothing that has been entered can be in the way.
    bool leavesComponent(const ContextEntry& entry, int directory) const {
        if (entry.target == ContextEntry::context) return true;
        return leadsOn_[at(entry.target)] &&
               components_.of(entry.target) != components_.of(directory);
    }

    void enter(int directory, const QString& path) {
        isEntered_[at(directory)] = true;
        const Places& members = components_.membersWith(directory);
        if (members.size() > 1) findWhatLeadsOnNow(members);
        Step step = {directory, path, {}, 0};
        // What leadsOnNow_ says of another component may be old, but what it is true of leads on,
        // so leavesComponent() is true of it as well.
        for (const ContextEntry& entry : directories_[at(directory)].entries) {
            if (leavesComponent(entry, directory) || leadsOnNow_[at(entry.target)])
                step.entries.push_back(&entry);
        }
        chain_.push_back(std::move(step));
    }

    // Which members of a component lead to a context without what has been entered.
    void findWhatLeadsOnNow(const Places& members) {
        Places open;
        for (const int member : members) {
            const bool leadsOut = leadsOut_[at(member)] && !isEntered_[at(member)];
            leadsOnNow_[at(member)] = leadsOut;
            if (leadsOut) open.push_back(member);
        }
        const int component = components_.of(members.front());
        spread(std::move(open), parents_, [&](int directory) {
            const bool isNew = components_.of(directory) == component &&
                               !isEntered_[at(directory)] && !leadsOnNow_[at(directory)];
            if (isNew) leadsOnNow_[at(directory)] = true;
            return isNew;
        });
    }

    // What was listed by the very path that is followed here needs no second look.
    void follow(const ContextEntry& entry, int directory, const QString& directoryPath) {
        const QString path = entryPath(directoryPath, entry.name);
        if (entry.target == ContextEntry::context) {
            const QString context = contextPath(path, entry.name);
            const bool isKnown = directoryPath == directories_[at(directory)].path;
            if (isKnown || isContext(context)) found_.push_back(context);
            return;
        }
        if (path == directories_[at(entry.target)].path || isDirectory(path))
            enter(entry.target, path);
    }

    const std::vector<ContextDirectory>& directories_;
    std::vector<Places> parents_;
    Components components_;
    // By directory: whether it leads to a context, nothing having been entered; whether it does so
    // with a first step out of its component; whether it has been entered; whether it leads to a
    // context without what has been entered, known in the component that was entered last.
    std::vector<bool> leadsOn_;
    std::vector<bool> leadsOut_;
    std::vector<bool> isEntered_;
    std::vector<bool> leadsOnNow_;
    std::vector<Step> chain_;
    std::vector<QString> found_;
};

}  // namespace

std::vector<QString> findContexts(const std::vector<ContextDirectory>& directories) {
    return Search(directories).run();
}

}  // namespace trv
