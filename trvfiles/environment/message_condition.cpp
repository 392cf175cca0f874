#include <trvfiles/environment/message_condition.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/support/blanks.h>

#include <string>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

bool closes_or_blank(char character) {
    return character == ')' || character == '}' || is_blank(character);
}

// "(NAME)", "{NAME}" and "NAME" ask the same. Brackets are not matched: any run of closing ones is
// cut, and one opening one.
std::string_view without_brackets(std::string_view text) {
    while (!text.empty() && closes_or_blank(text.back()))
        text.remove_suffix(1);
    text = trim_leading(text);
    if (!text.empty() && (text.front() == '(' || text.front() == '{')) text.remove_prefix(1);
    return trim_leading(text);
}

// Consumes a word and the blanks after it.
std::string_view consume_word(std::string_view& text) {
    std::size_t length = 0;
    while (length < text.size() && !is_blank(text[length]))
        ++length;
    const std::string_view word = text.substr(0, length);
    text = trim_leading(text.substr(length));
    return word;
}

}  // namespace

condition_result evaluate_condition(std::string_view text) {
    text = without_brackets(text);
    // A copy, because get_variable() needs a terminator.
    const std::string name(consume_word(text));
    const char* value = get_variable(name.c_str());
    if (value == nullptr) return text.empty() ? condition_result::no : condition_result::undefined;
    if (text.empty()) return condition_result::yes;

    const std::string_view operation = consume_word(text);
    const bool equal = trim_trailing(value) == text;
    if (operation == "==") return equal ? condition_result::yes : condition_result::no;
    if (operation == "!=") return equal ? condition_result::no : condition_result::yes;
    return condition_result::invalid;
}

}  // namespace trv
