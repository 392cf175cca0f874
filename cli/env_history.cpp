#include <cli/env_history.h>
#include <cli/env_running_value.h>
#include <trvfiles/environment/entry_text.h>
#include <trvfiles/environment/message_store_data.h>
#include <trvfiles/environment/reference_resolver.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/support/blanks.h>

#include <algorithm>

namespace trv::cli {
namespace {

// @param soFar  the value before this definition. The runtime resolves it again only if a
//               definition as it was given contains references in the form in which the store
//               writes its own.
Definition definitionAt(const message_store& store, std::int32_t text, const RunningValue& soFar) {
    const std::int32_t replaced = store.texts.record(text).previous;
    Definition definition;
    definition.entry = trim(without_references(store.texts.at(text)));
    definition.origin = originOf(store, text);
    definition.extends = RunningValue::extends(entry_value(store.texts.at(text)), replaced);
    if (!definition.extends) return definition;
    definition.isBeyondLimits = soFar.state() == RunningValue::State::beyondLimits;
    definition.extended = soFar.state() == RunningValue::State::unknown
                              ? resolve_references(store, replaced)
                              : soFar.text();
    return definition;
}

}  // namespace

void History::add(std::int32_t text) {
    const text_pool& pool = environment_store()->texts;
    // The records lead from the newest text to the oldest.
    const auto first = static_cast<std::ptrdiff_t>(texts_.size());
    for (; text != text_pool::none; text = pool.record(text).previous)
        texts_.push_back(text);
    std::reverse(texts_.begin() + first, texts_.end());
}

std::size_t History::leftOut(bool all) const {
    // A single definition is never left out: the note about it would take its place.
    const bool isShort = texts_.size() <= 2 * shownAtEachEnd + 1;
    return all || isShort ? 0 : texts_.size() - 2 * shownAtEachEnd;
}

void History::forEach(bool all, const std::function<void(const Definition&)>& show,
                      const std::function<void()>& leaveOut) const {
    const message_store& store = *environment_store();
    const std::size_t count = leftOut(all);
    const std::size_t firstAfter = shownAtEachEnd + count;
    // The value passes every definition, also those that are left out.
    RunningValue soFar;
    for (std::size_t i = 0; i < texts_.size(); ++i) {
        if (count == 0 || i < shownAtEachEnd || i >= firstAfter) {
            show(definitionAt(store, texts_[i], soFar));
        } else if (i == shownAtEachEnd) {
            leaveOut();
        }
        soFar.take(entry_value(store.texts.at(texts_[i])), store.texts.record(texts_[i]).previous);
    }
}

}  // namespace trv::cli
