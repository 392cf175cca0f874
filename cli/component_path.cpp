#include <cli/component_path.h>
#include <cli/path_text.h>
#include <cli/suggestion.h>
#include <cli/text_output.h>
#include <trvfiles/text/text_conversion.h>

#include <QChar>
#include <QStringList>

#include <algorithm>
#include <cctype>

namespace trv::cli {
namespace {

// A path after its escapes are replaced.
class PathArgument {
public:
    // @return whether every "\" begins an escape
    bool read(const QString& path) {
        for (int at = 0; at < path.size(); ++at) {
            if (path.at(at) != QLatin1Char('\\')) {
                append(QString(path.at(at)), false);
            } else if (!readEscape(path, at)) {
                return false;
            }
        }
        return true;
    }

    int size() const { return text_.size(); }

    // Whether a character is there that is not escaped.
    bool has(int at, char separator) const {
        return at < size() && text_.at(at) == QLatin1Char(separator) &&
               !isEscaped_.at(static_cast<std::size_t>(at));
    }

    bool has(int at, const QString& name) const { return text_.midRef(at, name.size()) == name; }

    bool isEndOfPart(int at) const { return at == size() || has(at, '/'); }

    // What a path names up to the next separator.
    QString part(int from) const {
        int end = from;
        while (!isEndOfPart(end))
            ++end;
        return text_.mid(from, end - from);
    }

private:
    void append(const QString& text, bool isEscaped) {
        text_ += text;
        isEscaped_.insert(isEscaped_.end(), static_cast<std::size_t>(text.size()), isEscaped);
    }

    // @param at  the place of the "\"; becomes that of the escape's last character
    bool readEscape(const QString& path, int& at) {
        const QChar kind = at + 1 < path.size() ? path.at(at + 1) : QChar();
        if (kind == QLatin1Char('\\')) {
            ++at;
            append(QString(kind), true);
            return true;
        }
        constexpr uint lastCode = 0x10FFFF;
        const int digits = kind == QLatin1Char('x')   ? 2
                           : kind == QLatin1Char('u') ? 4
                           : kind == QLatin1Char('U') ? 8
                                                      : 0;
        const QString number = path.mid(at + 2, digits);
        const bool isHex = std::all_of(number.begin(), number.end(), [](QChar digit) {
            return digit.unicode() < 0x80 && std::isxdigit(digit.unicode()) != 0;
        });
        const uint code = number.toUInt(nullptr, 16);
        if (digits == 0 || number.size() != digits || !isHex || code > lastCode) return false;
        append(QChar::requiresSurrogates(code)
                   ? QString(QChar(QChar::highSurrogate(code))) + QChar(QChar::lowSurrogate(code))
                   : QString(QChar(static_cast<ushort>(code))),
               true);
        at += 1 + digits;
        return true;
    }

    QString text_;
    std::vector<bool> isEscaped_;
};

QString rootName(const ComponentBody& root) {
    return root.name.empty() ? QStringLiteral("(root)") : fromNarrow(root.name);
}

QString indexText(std::size_t index) {
    return QStringLiteral("[%1]").arg(static_cast<qulonglong>(index));
}

// Iterative: the tree may be deeper than the stack. The end of a component's part depends only on
// where the part begins, so each component is compared at most once.
class Search {
public:
    Search(const ComponentBody& root, const PathArgument& path) : root_(root), path_(path) {}

    ComponentSearch run() {
        const QString name = rootName(root_);
        if (!path_.has(0, name) || !path_.isEndOfPart(name.size())) {
            return {{},
                    QStringLiteral("there is no root '%1'; the root is '%2'")
                        .arg(shown(path_.part(0)), shown(name))};
        }
        enter(root_, name.size(), true);
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == level.component->components.size()) {
                leave();
                continue;
            }
            const std::size_t index = level.next++;
            tryChild(level, index);
        }
        return result();
    }

private:
    struct Level {
        const ComponentBody* component;
        // Of the path up to this component.
        int end;
        // Whether no index is left out up to here.
        bool isComplete;
        std::size_t next;
    };

    struct Matches {
        ComponentPlace first;
        std::size_t count = 0;
    };

    void enter(const ComponentBody& component, int end, bool isComplete) {
        if (end == path_.size()) {
            Matches& matches = isComplete ? complete_ : incomplete_;
            if (matches.count++ == 0) matches.first = place_;
        }
        levels_.push_back({&component, end, isComplete, 0});
    }

    // The place is copied here, and not in enter(), because of a long chain only the end counts.
    void leave() {
        if (levels_.back().end > farthest_) {
            farthest_ = levels_.back().end;
            farthestPlace_ = place_;
        }
        levels_.pop_back();
        if (!place_.empty()) place_.pop_back();
    }

    // Enters a child of the last level if the path continues with it. `level` is not valid
    // afterwards.
    void tryChild(const Level& level, std::size_t index) {
        const ComponentBody& child = level.component->components[index];
        if (!path_.has(level.end, '/')) return;
        const QString name = fromNarrow(child.name);
        int end = level.end + 1;
        if (!path_.has(end, name)) return;
        end += name.size();
        bool isComplete = level.isComplete;
        if (path_.isEndOfPart(end)) {
            if (name.isEmpty() || !isUnique(*level.component, index)) return;
            isComplete = false;
        } else {
            const QString text = indexText(index);
            if (!path_.has(end, '[') || !path_.has(end, text)) return;
            end += text.size();
            if (!path_.isEndOfPart(end)) return;
        }
        place_.push_back(index);
        enter(child, end, isComplete);
    }

    static bool isUnique(const ComponentBody& parent, std::size_t index) {
        const std::vector<ComponentBody>& siblings = parent.components;
        for (std::size_t other = 0; other < siblings.size(); ++other) {
            if (other != index && siblings[other].name == siblings[index].name) return false;
        }
        return true;
    }

    ComponentSearch result() const {
        const Matches& matches = complete_.count != 0 ? complete_ : incomplete_;
        if (matches.count == 1) return {matches.first, {}};
        if (matches.count == 0) return {{}, whyNotFound()};
        return {{},
                QStringLiteral("%1 components have this path; in a name, \\x2f is a / and \\x5b "
                               "is a [")
                    .arg(static_cast<qulonglong>(matches.count))};
    }

    QString whyNotFound() const {
        const ComponentBody& parent = componentAt(root_, farthestPlace_);
        const QString part = path_.part(farthest_ + 1);
        const QString where = QString::fromStdString(pathOf(root_, farthestPlace_));
        if (parent.components.empty()) {
            return QStringLiteral("there is no '%1' below '%2', which has no components")
                .arg(shown(part), where);
        }
        QStringList names;
        for (const ComponentBody& child : parent.components)
            names += fromNarrow(child.name);
        const int first = names.indexOf(part);
        if (first >= 0 && names.indexOf(part, first + 1) >= 0) {
            return QStringLiteral("several components below '%1' are named '%2'; the first is '%3'")
                .arg(where, shown(part), partOf(parent, first));
        }
        const QString similar = nearestName(withoutIndex(part), names);
        const int nearest = similar.isEmpty() ? -1 : names.indexOf(similar);
        return QStringLiteral("there is no '%1' below '%2'; ").arg(shown(part), where) +
               (nearest >= 0
                    ? QStringLiteral("the nearest is '%1'").arg(partOf(parent, nearest))
                    : QStringLiteral("the first of %1 is '%2'")
                          .arg(counted(parent.components.size(), QStringLiteral("component"),
                                       QStringLiteral("components")),
                               partOf(parent, 0)));
    }

    static QString partOf(const ComponentBody& parent, int index) {
        const auto place = static_cast<std::size_t>(index);
        return shown(parent.components[place].name) + indexText(place);
    }

    static QString withoutIndex(const QString& part) {
        const int bracket = part.lastIndexOf(QLatin1Char('['));
        return bracket >= 0 && part.endsWith(QLatin1Char(']')) ? part.left(bracket) : part;
    }

    const ComponentBody& root_;
    const PathArgument& path_;
    std::vector<Level> levels_;
    ComponentPlace place_;
    Matches complete_;
    Matches incomplete_;
    // How far the path names components, and the last of them.
    int farthest_ = 0;
    ComponentPlace farthestPlace_;
};

}  // namespace

std::string pathOf(const ComponentBody& root, const ComponentPlace& place) {
    PathText path(PathForm::visible);
    path.enter(root, 0);
    const ComponentBody* component = &root;
    for (const std::size_t index : place) {
        component = &component->components[index];
        path.enter(*component, index);
    }
    return path.text();
}

ComponentSearch findComponent(const ComponentBody& root, const QString& path) {
    PathArgument text;
    if (!text.read(path)) {
        return {{},
                QStringLiteral("a \\ has to begin one of the escapes \\\\, \\xHH, \\uHHHH and "
                               "\\UHHHHHHHH")};
    }
    return Search(root, text).run();
}

const ComponentBody& componentAt(const ComponentBody& root, const ComponentPlace& place) {
    const ComponentBody* component = &root;
    for (const std::size_t index : place)
        component = &component->components[index];
    return *component;
}

ComponentBody& componentAt(ComponentBody& root, const ComponentPlace& place) {
    ComponentBody* component = &root;
    for (const std::size_t index : place)
        component = &component->components[index];
    return *component;
}

}  // namespace trv::cli
