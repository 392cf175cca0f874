#include <cli/env_expansion.h>
#include <cli/text_output.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/text/text_conversion.h>

#include <utility>

namespace trv::cli {
namespace {

// Passes the lookups on as they happen: all of them together may be far longer than the result.
class LookupObserver final : private ChainedObserver {
public:
    explicit LookupObserver(const LookupTaker& take) : take_(take) {}

private:
    void looked_up(const lookup_event& event) override {
        take_(event);
        ChainedObserver::looked_up(event);
    }

    const LookupTaker& take_;
};

// The texts of a status. The name is what a programmer searches for, and the number is what the
// host logs.
struct Meaning {
    int code;
    const char* name;
    const char* text;
};

// The one status of a search that has no name in the runtime.
constexpr int outOfMemory = -41;

constexpr Meaning meanings[] = {
    {EXP_OK, "EXP_OK", "done"},
    {EXP_NOT_FOUND, "EXP_NOT_FOUND", "there is no such file"},
    {EXP_SYNTAX_ERROR, "EXP_SYNTAX_ERROR", "a bracket after a $ or ? is not closed"},
    {EXP_BUFFER_TOO_SMALL, "EXP_BUFFER_TOO_SMALL", "the list or the path found is too long"},
    {outOfMemory, "error", "memory ran out"},
    {EXP_NAME_TOO_LONG, "EXP_NAME_TOO_LONG",
     "a value refers to itself, or the text or its expansion is too long"},
    {EXP_UNDEFINED, "EXP_UNDEFINED", "something that it refers to is not defined"},
    {EXP_INVALID_ARGUMENT, "EXP_INVALID_ARGUMENT", "no file name follows the list of directories"},
};

// nullptr for an unknown status.
const Meaning* meaningOf(int code) {
    for (const Meaning& meaning : meanings) {
        if (meaning.code == code) return &meaning;
    }
    return nullptr;
}

}  // namespace

Expansion expand(const std::string& text, bool asPath, const LookupTaker& takeLookup) {
    const LookupObserver observer(takeLookup);
    Expansion expansion;
    expansion.code =
        asPath ? expand_path(text, &expansion.text) : expand_variables(text, &expansion.text);
    return expansion;
}

void UndefinedReferences::add(const lookup_event& lookup) {
    if (lookup.value != nullptr) return;
    std::string reference = lookup.marker + lookup.name;
    if (known_.insert(reference).second) inOrder_.push_back(std::move(reference));
}

QJsonArray UndefinedReferences::json() const {
    QJsonArray array;
    for (const std::string& reference : inOrder_)
        array.append(fromNarrow(reference));
    return array;
}

void printFailure(const QString& text, const QString& reason, const Console& console) {
    console.err << qUtf8Printable(
        QStringLiteral("trvfiles: %1: %2\n").arg(shown(text), shown(reason)));
}

void printUndefined(const QString& text, const UndefinedReferences& references,
                    const Console& console) {
    // Every line repeats the text, so a long one is cut.
    constexpr int maxLength = 200;
    const QString beginning = beginningOf(text, maxLength);
    for (const std::string& reference : references.inOrder()) {
        printFailure(beginning, QStringLiteral("%1 is not defined").arg(fromNarrow(reference)),
                     console);
    }
}

QString codeName(int code) {
    const Meaning* meaning = meaningOf(code);
    return QString::fromLatin1(meaning == nullptr ? "error" : meaning->name);
}

QString codeText(int code) {
    const Meaning* meaning = meaningOf(code);
    if (meaning == nullptr) return QStringLiteral("error %1").arg(code);
    return QStringLiteral("%1 (%2): %3")
        .arg(codeName(code), QString::number(code), QString::fromLatin1(meaning->text));
}

}  // namespace trv::cli
