#include <cli/env_directories.h>
#include <cli/env_expansion.h>
#include <cli/env_running_value.h>
#include <trvfiles/environment/entry_text.h>
#include <trvfiles/environment/message_store_data.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/support/blanks.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/support/list_elements.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace trv::cli {
namespace {

// The longest list that a search accepts.
constexpr std::size_t maxListLength = 8192;
// Lists that refer to each other many times, such as "A = ?B;?B", are divided up to this number of
// elements, references counted.
constexpr std::size_t maxElements = 10000;

// The value of a definition, and which part of it each earlier definition gives.
class Composition {
public:
    const std::string& text() const { return text_; }

    void append(std::string_view literal, std::int32_t definition) {
        if (literal.empty()) return;
        starts_.push_back({text_.size(), definition});
        text_ += literal;
    }

    void append(const Composition& other) {
        const std::size_t shift = text_.size();
        for (const Start& start : other.starts_)
            starts_.push_back({start.place + shift, start.definition});
        text_ += other.text_;
    }

    /// REQUIRES: a place within the text.
    std::int32_t definitionAt(std::size_t place) const {
        const auto after = std::upper_bound(
            starts_.begin(), starts_.end(), place,
            [](std::size_t sought, const Start& start) { return sought < start.place; });
        return std::prev(after)->definition;
    }

private:
    struct Start {
        std::size_t place;
        std::int32_t definition;
    };

    std::string text_;
    std::vector<Start> starts_;
};

// A definition and those that it extends, the oldest first.
std::vector<std::int32_t> chainOf(const message_store& store, std::int32_t text) {
    std::vector<std::int32_t> chain;
    while (true) {
        chain.push_back(text);
        const std::int32_t replaced = store.texts.record(text).previous;
        if (!RunningValue::extends(entry_value(store.texts.at(text)), replaced)) break;
        text = replaced;
    }
    std::reverse(chain.begin(), chain.end());
    return chain;
}

// Takes time for the maximum length of a list at each definition: a composition only grows.
std::optional<Composition> compositionOf(const message_store& store, std::int32_t text) {
    Composition earlier;
    for (const std::int32_t definition : chainOf(store, text)) {
        const std::string_view value = entry_value(store.texts.at(definition));
        const std::int32_t replaced = store.texts.record(definition).previous;
        Composition next;
        bool isFirst = true;
        for (const std::string_view literal : RunningValue::literals(value, replaced)) {
            if (!isFirst) next.append(earlier);
            isFirst = false;
            next.append(literal, definition);
            if (next.text().size() > maxListLength) return std::nullopt;
        }
        earlier = std::move(next);
    }
    return earlier;
}

struct Element {
    std::string text;
    Origin origin;
};

std::vector<std::string> elementsIn(std::string_view list) {
    std::vector<std::string> elements;
    for (std::string_view element; consume_list_element(list, element);) {
        if (!trim(element).empty()) elements.emplace_back(trim(element));
    }
    return elements;
}

std::vector<Element> elementsOf(const Value& value) {
    std::vector<Element> elements;
    for (std::string& element : elementsIn(value.text))
        elements.push_back({std::move(element), value.origin});
    return elements;
}

std::vector<Element> elementsOf(const Subject& list, const Value& value) {
    const std::int32_t definition = definitionThatCounts(list);
    if (value.origin.kind == Origin::Kind::environment || definition == text_pool::none) {
        return elementsOf(value);
    }
    const message_store& store = *environment_store();
    const std::optional<Composition> composition = compositionOf(store, definition);
    // They differ if the value has references in the form in which the store writes its own.
    if (!composition || trim_trailing(composition->text()) != value.text) return elementsOf(value);
    std::vector<Element> elements;
    std::string_view rest(composition->text());
    for (std::string_view element; consume_list_element(rest, element);) {
        const std::string_view text = trim(element);
        if (text.empty()) continue;
        const auto place = static_cast<std::size_t>(text.data() - composition->text().data());
        elements.push_back(
            {std::string(text), cli::originOf(store, composition->definitionAt(place))});
    }
    return elements;
}

// The path list that an element consists of, without anything before or after the reference.
std::optional<Subject> listIn(const std::string& element) {
    constexpr std::string_view nameCharacters =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";
    if (element.size() < 2 || element.front() != '?') return std::nullopt;
    if (element.find_first_not_of(nameCharacters, 1) != std::string::npos) return std::nullopt;
    return subjectOf(element);
}

Expansion expandedPath(const std::string& text) {
    return expand(text, true, [](const lookup_event&) {});
}

// The elements of a list, in whose place those of the lists are that it refers to.
class Flattening {
public:
    /// @return empty if there are too many
    std::vector<Element> run(const Subject& list) {
        std::vector<Element> found;
        // The next element is the last one.
        std::vector<Element> pending = reversed(elements(list));
        for (std::size_t i = 0; !pending.empty(); ++i) {
            if (i == maxElements || pending.size() > maxElements) return {};
            const Element element = std::move(pending.back());
            pending.pop_back();
            const std::optional<Subject> inner = listIn(element.text);
            if (inner && lookUp(*inner).isDefined) {
                const std::vector<Element> more = reversed(elements(*inner));
                pending.insert(pending.end(), more.begin(), more.end());
                continue;
            }
            for (std::string& path : elementsIn(expandedPath(element.text).text))
                found.push_back({std::move(path), element.origin});
        }
        return found;
    }

private:
    // A list to which many others refer is divided once.
    const std::vector<Element>& elements(const Subject& list) {
        const auto [place, isNew] = known_.try_emplace(list.name);
        if (isNew) place->second = elementsOf(list, lookUp(list));
        return place->second;
    }

    static std::vector<Element> reversed(const std::vector<Element>& elements) {
        return {elements.rbegin(), elements.rend()};
    }

    std::unordered_map<std::string, std::vector<Element>> known_;
};

}  // namespace

std::vector<ListedDirectory> directoriesOf(const Subject& list, const Value& value) {
    const Expansion whole = expandedPath(value.text);
    if (is_expand_error(whole.code)) return {};
    // The paths are those of the whole text. The elements one by one have the same paths unless a
    // reference reaches from one into the next.
    const std::vector<Element> elements = Flattening().run(list);
    std::vector<std::string> paths = elementsIn(whole.text);
    const bool isSame = std::equal(
        elements.begin(), elements.end(), paths.begin(), paths.end(),
        [](const Element& element, const std::string& path) { return element.text == path; });
    std::vector<ListedDirectory> directories;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        const bool exists = is_directory(paths[i].c_str());
        directories.push_back(
            {std::move(paths[i]), isSame ? elements[i].origin : value.origin, exists});
    }
    return directories;
}

}  // namespace trv::cli
