#include <cli/assembly_edits.h>
#include <cli/assembly_identity.h>
#include <cli/text_output.h>
#include <cli/vector_argument.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace trv::cli {
namespace {

using Key = FieldEdit::Key;

constexpr std::pair<const char*, Key> keys[] = {{"name", Key::name},
                                                {"comment", Key::comment},
                                                {"translation", Key::translation},
                                                {"enabled", Key::enabled}};

QString nameOf(Key key) {
    const auto* const found =
        std::find_if(std::begin(keys), std::end(keys),
                     [key](const auto& candidate) { return candidate.second == key; });
    return QString::fromLatin1(found->first);
}

// Whether XML allows a character, or half of a surrogate pair.
bool isAllowed(QChar unit) {
    constexpr ushort firstNoncharacter = 0xFFFE;
    const ushort code = unit.unicode();
    return (code >= 0x20 || code == '\t' || code == '\n' || code == '\r') &&
           code < firstNoncharacter;
}

// Why a file does not give a text back as it is, as a human-readable clause; empty if it does.
QString whyTextIsLost(const QString& text) {
    if (!std::all_of(text.begin(), text.end(), isAllowed)) {
        return QStringLiteral("XML does not allow one of its characters");
    }
    if (fromNarrow(toNarrow(text)) != text) {
        return QStringLiteral("the local code page lacks one of its characters");
    }
    if (text.contains(QChar::ReplacementCharacter)) {
        return QStringLiteral("it holds bytes that are not text");
    }
    return {};
}

QString readText(const QString& option, const QString& text, std::string& narrow) {
    const QString reason = whyTextIsLost(text);
    if (!reason.isEmpty()) {
        return QStringLiteral("--%1: a file cannot hold '%2': %3").arg(option, text, reason);
    }
    narrow = toNarrow(text);
    return {};
}

QString readRenaming(const QString& text, AssemblyEdits& edits) {
    const QString option = QStringLiteral("rename-file");
    const int sign = text.indexOf(QLatin1Char('='));
    if (sign <= 0 || sign + 1 == text.size()) {
        return QStringLiteral("--rename-file takes OLD=NEW, not '%1'").arg(text);
    }
    std::string from;
    std::string to;
    QString mistake = readText(option, text.left(sign), from);
    if (mistake.isEmpty()) mistake = readText(option, text.mid(sign + 1), to);
    if (!mistake.isEmpty()) return mistake;
    if (edits.fileNames.emplace(from, to).second) return {};
    return QStringLiteral("--rename-file has two new names for '%1'").arg(text.left(sign));
}

QString readValue(const QString& value, FieldEdit& edit) {
    switch (edit.key) {
        case Key::name:
        case Key::comment:
            return readText(QStringLiteral("set"), value, edit.text);
        case Key::translation:
            if (readVector(value, edit.translation.data())) return {};
            return QStringLiteral("a translation is three numbers, such as 10,0,-2.5, not '%1'")
                .arg(value);
        case Key::enabled:
            edit.enabled = value == QLatin1String("1");
            if (edit.enabled || value == QLatin1String("0")) return {};
            return QStringLiteral("enabled is 0 or 1, not '%1'").arg(value);
    }
    return {};
}

// Parses "PATH.key=value". A path may contain "=" and ".", so the first "=" after a "." and a key
// ends it.
QString readAssignment(const QString& text, AssemblyEdits& edits) {
    int sign = text.indexOf(QLatin1Char('='));
    for (; sign >= 0; sign = text.indexOf(QLatin1Char('='), sign + 1)) {
        for (const auto& [name, key] : keys) {
            const QString end = QLatin1Char('.') + QString::fromLatin1(name);
            if (!text.leftRef(sign).endsWith(end)) continue;
            FieldEdit edit;
            edit.path = text.left(sign - end.size());
            edit.key = key;
            QString mistake = readValue(text.mid(sign + 1), edit);
            if (mistake.isEmpty()) edits.fields.push_back(edit);
            return mistake;
        }
    }
    return QStringLiteral(
               "--set takes PATH.key=value with the key name, comment, translation or enabled, "
               "not '%1'")
        .arg(text);
}

void readFlags(const QStringList& paths, bool enabled, AssemblyEdits& edits) {
    for (const QString& path : paths) {
        FieldEdit edit;
        edit.path = path;
        edit.key = Key::enabled;
        edit.enabled = enabled;
        edits.fields.push_back(edit);
    }
}

bool isChange(const FieldEdit& edit, const ComponentFields& fields) {
    switch (edit.key) {
        case Key::name:
            return fields.name != edit.text;
        case Key::comment:
            return fields.comment != edit.text;
        case Key::translation:
            return !areIdentical(fields.translation, edit.translation.data());
        case Key::enabled:
            return fields.enabled != edit.enabled;
    }
    return false;
}

void apply(const FieldEdit& edit, ComponentFields& fields) {
    switch (edit.key) {
        case Key::name:
            fields.name = edit.text;
            break;
        case Key::comment:
            fields.comment = edit.text;
            break;
        case Key::translation:
            std::copy(edit.translation.begin(), edit.translation.end(), fields.translation);
            break;
        case Key::enabled:
            fields.enabled = edit.enabled;
            break;
    }
}

// Calls `visit(component)` for a component and each one below it, until it returns true. Iterative:
// the tree may be deeper than the stack.
template <class Body, class Visit>
bool anyComponent(Body& root, Visit visit) {
    std::vector<Body*> pending{&root};
    while (!pending.empty()) {
        Body* const component = pending.back();
        pending.pop_back();
        if (visit(*component)) return true;
        for (Body& child : component->components)
            pending.push_back(&child);
    }
    return false;
}

}  // namespace

QList<QCommandLineOption> editOptions() {
    const auto option = [](const char* name, const char* description, const char* value) {
        return QCommandLineOption(QString::fromLatin1(name), QString::fromLatin1(description),
                                  QString::fromLatin1(value));
    };
    return {option("rename-file", "Give a geometry file another name", "OLD=NEW"),
            option("set", "Set a field of a component", "PATH.key=value"),
            option("enable", "Enable a component", "PATH"),
            option("disable", "Disable a component", "PATH")};
}

QString readEdits(const QCommandLineParser& call, AssemblyEdits& edits) {
    for (const QString& text : call.values(QStringLiteral("rename-file"))) {
        QString mistake = readRenaming(text, edits);
        if (!mistake.isEmpty()) return mistake;
    }
    for (const QString& text : call.values(QStringLiteral("set"))) {
        QString mistake = readAssignment(text, edits);
        if (!mistake.isEmpty()) return mistake;
    }
    readFlags(call.values(QStringLiteral("enable")), true, edits);
    readFlags(call.values(QStringLiteral("disable")), false, edits);
    if (!edits.isEmpty()) return {};
    return QStringLiteral("an edit is missing: --rename-file, --set, --enable or --disable");
}

QString findPlaces(const AssemblyEdits& edits, const ComponentBody& root,
                   std::vector<ComponentPlace>& places) {
    std::map<std::pair<ComponentPlace, Key>, const FieldEdit*> earlier;
    for (const FieldEdit& edit : edits.fields) {
        ComponentSearch found = findComponent(root, edit.path);
        if (!found.mistake.isEmpty()) return found.mistake;
        if (!earlier.emplace(std::pair(found.place, edit.key), &edit).second) {
            return QStringLiteral("%1 of '%2' is set twice")
                .arg(nameOf(edit.key), QString::fromStdString(pathOf(root, found.place)));
        }
        places.push_back(std::move(found.place));
    }
    return {};
}

bool wouldChange(const AssemblyEdits& edits, const std::vector<ComponentPlace>& places,
                 const ComponentBody& root) {
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (isChange(edits.fields[i], componentAt(root, places[i]))) return true;
    }
    return anyComponent(root, [&](const ComponentBody& component) {
        const auto found = edits.fileNames.find(component.geometryFileName);
        return found != edits.fileNames.end() && found->second != found->first;
    });
}

void applyEdits(const AssemblyEdits& edits, const std::vector<ComponentPlace>& places,
                ComponentBody& root) {
    for (std::size_t i = 0; i < places.size(); ++i)
        apply(edits.fields[i], componentAt(root, places[i]));
    anyComponent(root, [&](ComponentBody& component) {
        const auto found = edits.fileNames.find(component.geometryFileName);
        if (found != edits.fileNames.end()) component.geometryFileName = found->second;
        return false;
    });
}

}  // namespace trv::cli
