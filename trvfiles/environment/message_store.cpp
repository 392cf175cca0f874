#include <trvfiles/environment/entry_text.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/environment/message_store_data.h>
#include <trvfiles/environment/name_hash.h>
#include <trvfiles/environment/reference_resolver.h>
#include <trvfiles/environment/runtime_observer.h>
#include <trvfiles/support/blanks.h>
#include <trvfiles/support/diagnostics.h>
#include <trvfiles/support/permanent_block.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// Indexes are 16 bits in the interface, and callers keep them in signed ones.
constexpr std::size_t max_sections = 32767;
constexpr const char* placeholder = "undefined message";

// Whether new texts are persistent. One flag for all stores, as set_record_flag() promises.
bool record_flag = true;

// The value that find_parameter() resolved last. Never destroyed: static objects of a host may
// still look up during exit.
std::string& resolved_value() {
    static std::string& value = *new std::string;
    return value;
}

std::string_view text_of(const char* text) {
    return text == nullptr ? "" : text;
}

// A template so that a constant store gives a constant section.
template <class Store>
auto section_at(Store* store, int section) -> decltype(store->sections.data()) {
    if (store == nullptr || section < 0) return nullptr;
    const auto index = static_cast<std::size_t>(section);
    return index < store->sections.size() ? &store->sections[index] : nullptr;
}

struct text_origin {
    std::int32_t file;
    int line;
};
constexpr text_origin by_program = {text_pool::none, 0};

// A text that is set by program has line 0, whatever the caller passes.
text_origin origin_of(std::int32_t file, int line) {
    return file == text_pool::none ? by_program : text_origin{file, line};
}

bool is_origin(const message_store& store, const text_origin& origin) {
    return origin.file == text_pool::none || store.texts.is_file_name(origin.file);
}

// Stores a text at the number of a message or at the next one. REQUIRES: space for it is reserved
// in the section and in the pool.
//
// All operations first reserve and then change: what can fail comes before the first change, so a
// store without memory is as it was.
void put_text(message_store& store, store_section& section, int number, std::string_view text,
              const text_origin& origin) noexcept {
    const std::int32_t previous =
        section.has_message(number) ? section.text(number) : text_pool::none;
    const text_record record = {origin.file, previous, static_cast<std::uint16_t>(origin.line),
                                record_flag ? persistent_text : std::uint8_t{0}, 0};
    section.set(store.texts, number, store.texts.add_text(record, text));
}

// A text that a caller passes. A text in the pool is copied, because the pool moves when it grows;
// any other one is not.
class kept_text {
public:
    kept_text(const message_store& store, std::string_view text) : text_(text) {
        if (store.texts.holds(text.data())) {
            copy_ = text;
            text_ = copy_;
        }
    }
    kept_text(const kept_text&) = delete;
    kept_text& operator=(const kept_text&) = delete;

    std::string_view view() const { return text_; }

private:
    std::string_view text_;
    std::string copy_;
};

int append_text(message_store& store, store_section& section, std::string_view text,
                const text_origin& origin) {
    const int number = section.message_count();
    if (number == store_section::max_messages) return -1;
    section.reserve(number, text);
    store.texts.reserve_texts(1, text.size());
    put_text(store, section, number, text, origin);
    return 0;
}

int replace_text(message_store& store, store_section& section, int number, std::string_view text,
                 const text_origin& origin) {
    std::string referring;
    if (text.find('+') != std::string_view::npos) {
        referring = with_references(text, section.text(number));
        text = referring;
    }
    section.reserve(number, text);
    store.texts.reserve_texts(1, text.size());
    put_text(store, section, number, text, origin);
    return 0;
}

// Appends as many placeholders as the number needs, and then the text. Space for all of them is
// reserved first: if there is none for the text, no placeholder is added either.
int append_text_at(message_store& store, store_section& section, int number,
                   std::string_view text) {
    const auto missing = static_cast<std::size_t>(number - section.message_count());
    section.reserve(number, text);
    store.texts.reserve_texts(missing + 1, missing * std::strlen(placeholder) + text.size());
    while (section.message_count() < number)
        put_text(store, section, section.message_count(), placeholder, by_program);
    put_text(store, section, number, text, by_program);
    return 0;
}

// A line of a file without "=" is skipped with a warning, since one bad line must not make the rest
// of a configuration unusable. A program that sets such a text has a defect, and gets -1.
int refuse_parameter(const message_store& store, const store_section& section,
                     std::string_view text, const text_origin& origin) {
    const std::string place = "[" + std::string(section.name()) + "] " + std::string(text);
    if (origin.file == text_pool::none) {
        report_error(("set_parameter : The program is trying to modify a non-parameter message: " +
                      place + '\n')
                         .c_str());
        return -1;
    }
    // The observer may add to the store, which moves the name.
    const std::string file = store.texts.at(origin.file);
    current_observer().fault_found({fault_kind::missing_equals, file, origin.line,
                                    "incorrect format (missing '='): " + place, text});
    return 0;
}

// The result of the operation, or -1 if the checked heap refuses memory. The functions of a store
// report exhausted memory as a status, never by an exception.
template <class Operation>
int unless_exhausted(Operation operation) {
    try {
        return operation();
    } catch (const std::bad_alloc&) {
        return -1;
    }
}

// In place: the text gets shorter, and its offset stays.
//
// @return whether there was a "\\n" to convert
bool write_newlines(char* text) {
    char* end = text;
    for (const char* next = text; *next != '\0'; ++next, ++end) {
        const bool newline = next[0] == '\\' && next[1] == 'n';
        *end = newline ? '\n' : *next;
        if (newline) ++next;
    }
    const bool changed = *end != '\0';
    *end = '\0';
    return changed;
}

}  // namespace

message_store* create_store() {
    // The store is itself a block of the checked heap, which counts and caps all of a store.
    permanent_block block(allocate_permanent(sizeof(message_store)));
    if (block == nullptr) return nullptr;
    try {
        auto* const store = new (block.get()) message_store();
        static_cast<void>(block.release());
        return store;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void destroy_store(message_store* store) {
    if (store == nullptr) return;
    store->~message_store();
    _Wfree(store);
}

int search_section(const message_store& store, std::string_view name) {
    const std::uint32_t found = store.section_names.first(
        hash_name(name), [&](std::uint32_t place) { return store.sections[place].has_name(name); });
    if (found == name_index::none) return -1;
    store.last_found = found;
    return static_cast<int>(found);
}

int find_section(const message_store* store, const char* name) {
    return store == nullptr || name == nullptr ? -1 : find_section(*store, name);
}

std::uint16_t add_section(message_store* store, const char* name) {
    if (store == nullptr || name == nullptr) return no_section;
    const std::size_t length = std::strlen(name);
    const std::size_t index = store->sections.size();
    if (length > store_section::max_name_length || index == max_sections) return no_section;
    const int added = unless_exhausted([&] {
        store_section section({name, length});
        const auto place = static_cast<std::uint32_t>(index);
        reserve_more(store->sections);
        store->section_names.reserve(place);
        store->sections.push_back(std::move(section));
        store->section_names.put(place, hash_name(store->sections.back().name()));
        return static_cast<int>(index);
    });
    return static_cast<std::uint16_t>(added);
}

int find_or_add_section(message_store* store, const char* name) {
    const int found = find_section(store, name);
    if (found >= 0) return found;
    const std::uint16_t added = add_section(store, name);
    return added == no_section ? -1 : added;
}

const char* section_name(const message_store* store, int section) {
    const store_section* found = section_at(store, section);
    return found == nullptr ? "" : found->name();
}

int message_count(const message_store* store, int section) {
    if (store == nullptr) return -1;
    const store_section* found = section_at(store, section);
    return found == nullptr ? -2 : found->message_count();
}

int section_count(const message_store* store) {
    return store == nullptr ? -1 : static_cast<int>(store->sections.size());
}

const char* get_message(const message_store* store, int section, int number) {
    const store_section* found = section_at(store, section);
    if (found == nullptr || !found->has_message(number)) return nullptr;
    const std::int32_t text = found->text(number);
    return (store->texts.record(text).flags & deleted_text) != 0 ? "" : store->texts.at(text);
}

std::int32_t register_file_name(message_store* store, const char* file_name) {
    if (store == nullptr || file_name == nullptr) return -1;
    return unless_exhausted([&] { return store->texts.add_file_name(std::string(file_name)); });
}

int append_message(message_store* store, int section, const char* text, std::int32_t file,
                   int line) {
    store_section* target = section_at(store, section);
    const text_origin origin = origin_of(file, line);
    if (target == nullptr || !is_origin(*store, origin)) return -1;
    return unless_exhausted([&] {
        return append_text(*store, *target, kept_text(*store, text_of(text)).view(), origin);
    });
}

int replace_message(message_store* store, int section, int number, const char* text,
                    std::int32_t file, int line) {
    store_section* target = section_at(store, section);
    if (target == nullptr || !target->has_message(number)) return -1;
    const text_origin origin = origin_of(file, line);
    if (!is_origin(*store, origin)) return -1;
    return unless_exhausted([&] {
        return replace_text(*store, *target, number, kept_text(*store, text_of(text)).view(),
                            origin);
    });
}

int set_message(message_store* store, int section, int number, const char* text) {
    store_section* target = section_at(store, section);
    if (target == nullptr || number < 0 || number >= store_section::max_messages) return -1;
    return unless_exhausted([&] {
        const kept_text kept(*store, text_of(text));
        if (target->has_message(number)) {
            return replace_text(*store, *target, number, kept.view(), by_program);
        }
        return append_text_at(*store, *target, number, kept.view());
    });
}

int set_parameter(message_store* store, int section, const char* text, std::int32_t file,
                  int line) {
    store_section* target = section_at(store, section);
    const text_origin origin = origin_of(file, line);
    if (target == nullptr || !is_origin(*store, origin)) return -1;
    return unless_exhausted([&] {
        const kept_text kept(*store, trim_leading(text_of(text)));
        const std::string_view entry = kept.view();
        if (!is_entry(entry)) return refuse_parameter(*store, *target, entry, origin);
        const int number = target->find_entry(store->texts, entry_name(entry));
        if (number >= 0) return replace_text(*store, *target, number, entry, origin);
        return append_text(*store, *target, entry, origin);
    });
}

int set_variable(message_store* store, int section, const char* text) {
    return set_parameter(store, section, text, by_program.file, by_program.line);
}

int remove_parameter(message_store* store, int section, const char* name) {
    store_section* target = section_at(store, section);
    if (target == nullptr) return -1;
    const int number = target->find_entry(store->texts, text_of(name));
    if (number < 0) return -2;
    // The walk ends at the first deleted text: the texts that it replaced were deleted with it. So
    // removing and setting an entry again and again takes linear time.
    for (std::int32_t text = target->text(number); text != text_pool::none;) {
        text_record& version = store->texts.record(text);
        if ((version.flags & deleted_text) != 0) break;
        version.flags |= deleted_text;
        text = version.previous;
    }
    target->update_indexes(store->texts, number);
    return 0;
}

std::string_view find_value(const message_store& store, int section, std::string_view name,
                            bool exact, const text_record** record) {
    const store_section* target = section_at(&store, section);
    if (target == nullptr) return {};
    const int number = target->find_live_entry(store.texts, name, exact);
    if (number < 0) return {};
    const std::int32_t text = target->text(number);
    std::string_view value = entry_value(store.texts.at(text));
    if (value.find('+') != std::string_view::npos) {
        // The observer may look up or add to the store meanwhile: the buffer is assigned after it,
        // and the record is read from the store afterwards.
        resolved_value() = resolve_references(store, text);
        value = resolved_value();
    }
    if (record != nullptr) *record = &store.texts.record(text);
    return value;
}

const char* find_parameter(const message_store* store, int section, const char* name, bool exact,
                           const text_record** record) {
    if (record != nullptr) *record = nullptr;
    if (store == nullptr) return nullptr;
    return find_value(*store, section, text_of(name), exact, record).data();
}

int describe_origin(char* buffer, std::size_t size, const message_store* store, const char* text) {
    const std::int32_t found = store == nullptr ? text_pool::none : store->texts.text_around(text);
    if (buffer != nullptr && size > 0) {
        const std::string origin =
            found == text_pool::none ? std::string() : store->texts.origin(found);
        buffer[origin.copy(buffer, size - 1)] = '\0';
    }
    return found == text_pool::none ? -1 : 0;
}

void convert_newlines(message_store* store) {
    if (store == nullptr) return;
    for (store_section& section : store->sections) {
        for (int number = 0; number < section.message_count(); ++number) {
            if (write_newlines(store->texts.at(section.text(number)))) {
                section.update_indexes(store->texts, number);
            }
        }
    }
}

bool set_record_flag(bool record) {
    const bool before = record_flag;
    record_flag = record;
    return before;
}

}  // namespace trv
