#include <trvfiles/environment/definitions.h>
#include <trvfiles/environment/entry_text.h>
#include <trvfiles/environment/message_store_data.h>

#include <cstddef>
#include <string>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// The offset of the text that counts, or `none`.
std::int32_t newest_text(const message_store* store, int section, const char* name, bool exact) {
    if (section < 0 || section >= section_count(store)) return text_pool::none;
    const store_section& found = store->sections[static_cast<std::size_t>(section)];
    const int number = found.find_live_entry(store->texts, name == nullptr ? "" : name, exact);
    return number < 0 ? text_pool::none : found.text(number);
}

}  // namespace

int for_each_definition(const message_store* store, int section, const char* name, bool exact,
                        int (*callback)(const definition& definition, void* context),
                        void* context) {
    std::int32_t text = newest_text(store, section, name, exact);
    if (callback == nullptr || text == text_pool::none) return -1;
    while (text != text_pool::none) {
        // Copies: the callback may add to the store, which moves its texts and records.
        const text_record record = store->texts.record(text);
        const std::string entry = without_references(store->texts.at(text));
        const bool is_from_file = record.file != text_pool::none;
        const std::string file = is_from_file ? store->texts.at(record.file) : "";
        const int result =
            callback({entry.c_str(), is_from_file ? file.c_str() : nullptr, record.line}, context);
        if (result != 0) return result;
        text = record.previous;
    }
    return 0;
}

}  // namespace trv
