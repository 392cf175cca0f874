#include <cli/env_lookup.h>
#include <cli/text_output.h>
#include <trvfiles/environment/entry_text.h>
#include <trvfiles/environment/message_store_data.h>
#include <trvfiles/environment/path_text.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/support/ascii_case.h>
#include <trvfiles/text/text_conversion.h>

#include <string_view>
#include <unordered_set>

namespace trv::cli {
namespace {

constexpr const char* temporaryDirectory = "TMP";
constexpr std::string_view environmentOrigin = "from environment";
// Holds every origin: the name of a configuration file fits a path buffer.
constexpr std::size_t originSize = 2 * path_buffer_size;

// nullptr if the configuration does not have the section.
const store_section* sectionOf(const Subject& subject) {
    const message_store* store = environment_store();
    const int index = find_section(store, subject.isPath ? "path" : "var");
    return index < 0 ? nullptr : &store->sections[static_cast<std::size_t>(index)];
}

// The number of the entry that a lookup finds, or -1.
int numberOf(const store_section* section, const Subject& subject) {
    if (section == nullptr) return -1;
    return section->find_live_entry(environment_store()->texts, subject.name, false);
}

// The name of the variable of the process environment whose value a lookup returns.
std::string variableOf(const Subject& subject) {
    if (isTemporaryDirectory(subject)) return "TRVTMPDIR";
    return subject.isPath ? subject.name + "PATH" : subject.name;
}

// @param description  the runtime's description of the origin, which distinguishes values of the
//                     process environment. The store has the others: a value that extends another
//                     one is in no text of the store, but its entry is.
Origin originOf(const Subject& subject, std::string_view description) {
    Origin origin;
    if (description.substr(0, environmentOrigin.size()) == environmentOrigin) {
        origin.kind = Origin::Kind::environment;
        origin.variable = variableOf(subject);
        return origin;
    }
    if (isTemporaryDirectory(subject)) {
        origin.kind = Origin::Kind::workZone;
        return origin;
    }
    const std::int32_t text = definitionThatCounts(subject);
    return text == text_pool::none ? origin : cli::originOf(*environment_store(), text);
}

std::string descriptionOf(const Subject& subject, const char* value) {
    const auto describe = subject.isPath ? describe_path_origin : describe_variable_origin;
    char origin[originSize];
    describe(origin, sizeof origin, subject.name.c_str(), value);
    return origin;
}

}  // namespace

Subject subjectOf(const std::string& text) {
    const bool isPath = !text.empty() && text.front() == '?';
    return {isPath, text.substr(isPath ? 1 : 0)};
}

bool isTemporaryDirectory(const Subject& subject) {
    return !subject.isPath && subject.name == temporaryDirectory;
}

Value lookUp(const Subject& subject) {
    const auto find = subject.isPath ? get_path_variable : get_variable;
    const char* found = find(subject.name.c_str());
    if (found == nullptr) return {};
    Value value;
    value.isDefined = true;
    value.text = found;
    value.origin = originOf(subject, descriptionOf(subject, found));
    return value;
}

Lookup lookupOf(const lookup_event& event) {
    Lookup lookup = {{event.marker == '?', event.name}, {}};
    if (event.value == nullptr) return lookup;
    lookup.value.isDefined = true;
    lookup.value.text = *event.value;
    lookup.value.origin = originOf(lookup.subject, event.origin);
    return lookup;
}

QString lookupText(const Lookup& lookup) {
    const QString name = shown(lookup.subject.text());
    if (!lookup.value.isDefined) return QStringLiteral("%1 is not defined").arg(name);
    return QStringLiteral("%1 = %2  (%3)")
        .arg(name, shown(lookup.value.text), originText(lookup.value.origin));
}

QJsonObject lookupJson(const Lookup& lookup) {
    const Value& value = lookup.value;
    QJsonObject object = {
        {QStringLiteral("name"), fromNarrow(lookup.subject.text())},
        {QStringLiteral("value"),
         value.isDefined ? QJsonValue(fromNarrow(value.text)) : QJsonValue()},
    };
    if (value.isDefined) addOrigin(value.origin, object);
    return object;
}

Definitions definitionsOf(const Subject& subject) {
    const store_section* section = sectionOf(subject);
    const int counting = numberOf(section, subject);
    if (counting < 0) return {};
    Definitions definitions;
    // A lookup of "TMP" never uses its entry.
    const bool counts = !isTemporaryDirectory(subject);
    (counts ? definitions.inOrder : definitions.hidden).add(section->text(counting));
    const text_pool& texts = environment_store()->texts;
    for (int number = counting + 1; number < section->message_count(); ++number) {
        const std::string_view text = texts.at(section->text(number));
        if (is_entry(text) && equal_ignoring_case(entry_name(text), subject.name)) {
            definitions.hidden.add(section->text(number));
        }
    }
    return definitions;
}

std::int32_t definitionThatCounts(const Subject& subject) {
    const store_section* section = sectionOf(subject);
    const int number = numberOf(section, subject);
    return number < 0 ? text_pool::none : section->text(number);
}

VariableNames variableNames(bool ofPaths) {
    const store_section* section = sectionOf({ofPaths, {}});
    if (section == nullptr) return {};
    const text_pool& texts = environment_store()->texts;
    VariableNames found;
    std::unordered_set<std::string> known;
    for (int number = 0; number < section->message_count(); ++number) {
        const std::string_view text = texts.at(section->text(number));
        if (!is_entry(text)) {
            found.otherTexts.push_back(originOf(*environment_store(), section->text(number)));
        } else if (known.insert(fold_case(entry_name(text))).second) {
            found.names.emplace_back(entry_name(text));
        }
    }
    return found;
}

}  // namespace trv::cli
