// The functions of trvfiles.h for message files.

#include <trvfiles/c/guarded_call.h>
#include <trvfiles/c/handle_objects.h>
#include <trvfiles/c/messages_object.h>
#include <trvfiles/c/text_arguments.h>
#include <trvfiles/c/trvfiles.h>
#include <trvfiles/environment/configuration_loader.h>
#include <trvfiles/environment/message_file.h>
#include <trvfiles/environment/message_store_data.h>
#include <trvfiles/environment/store_writer.h>
#include <trvfiles/support/file_fault.h>
#include <trvfiles/support/platform.h>

#include <algorithm>

namespace c = trv::c;

using c::MessagesObject;

namespace {

// A section of a store, or a Refusal.
const trv::store_section& sectionOf(const trv::message_store* store, const char* name) {
    const int index = trv::find_section(store, c::narrowArgument(name).c_str());
    if (index < 0) throw c::Refusal{TRVFILES_NOT_FOUND, "the section does not exist"};
    return store->sections[static_cast<std::size_t>(index)];
}

int addedSection(trv::message_store* store, const std::string& name) {
    const int index = trv::find_or_add_section(store, name.c_str());
    if (index < 0) throw c::Refusal{TRVFILES_FAILED, "the section cannot be added"};
    return index;
}

// A message as a C host sees it: text and origin.
void addPair(std::vector<std::string>& pairs, const trv::text_pool& texts, std::int32_t text) {
    const bool isDeleted = (texts.record(text).flags & trv::deleted_text) != 0;
    pairs.push_back(isDeleted ? std::string() : c::utf8FromNarrow(texts.at(text)));
    pairs.push_back(c::utf8FromNarrow(texts.origin(text)));
}

std::int32_t statusOf(bool succeeded) {
    return succeeded ? TRVFILES_SUCCESS : TRVFILES_FAILED;
}

// @param code  0, -1, or the negated number of the system's error
std::int32_t statusOfSave(int code, CFileFault* fault) {
    if (code < -1) trv::set_system_fault(fault, -code);
    return statusOf(code == 0);
}

void requireStore(std::int32_t store, std::int32_t first) {
    c::require(store >= first && store <= TRVFILES_STORE_CATALOGUE, "the store does not exist");
}

}  // namespace

int32_t trvfiles_messages_create(trvfiles_messages* created, trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        c::create<MessagesObject>(created);
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_messages_open(int32_t store, trvfiles_messages* created, trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        requireStore(store, TRVFILES_STORE_ENVIRONMENT);
        c::create<MessagesObject>(created, store);
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_messages_load(trvfiles_messages messages, const char* path, trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const auto object = c::objectOf<MessagesObject>(messages);
        const std::string file = c::narrowArgument(path);
        c::require(!object->isOfProcess(), "the store belongs to the process");
        if (!trv::platform::path_exists(file.c_str())) return TRVFILES_NOT_FOUND;
        return statusOf(trv::load_message_file(object->store(), file.c_str()) != nullptr);
    });
}

int32_t trvfiles_messages_load_into(int32_t store, const char* file_name, const char* directories,
                                    trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        requireStore(store, TRVFILES_STORE_APPLICATION);
        const std::string name = c::narrowArgument(file_name);
        if (store == TRVFILES_STORE_CATALOGUE) {
            c::require(directories == nullptr, "the catalogue has no list of directories");
            return statusOf(trv::load_catalogue_file(name.c_str()) == 0);
        }
        const std::string list = c::narrowArgument(directories);
        return statusOf(trv::load_application_files(name.c_str(), list.c_str()) == 0);
    });
}

int32_t trvfiles_messages_sections(trvfiles_messages messages, trvfiles_texts names,
                                   trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const auto object = c::objectOf<MessagesObject>(messages);
        const auto result = c::objectOf<c::TextsObject>(names);
        // Below 0 without a store.
        const int count = std::max(trv::section_count(object->store()), 0);
        std::vector<std::string> found;
        found.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i)
            found.push_back(c::utf8FromNarrow(trv::section_name(object->store(), i)));
        result->texts = std::move(found);
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_messages_list(trvfiles_messages messages, const char* section,
                               trvfiles_texts result, trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const auto object = c::objectOf<MessagesObject>(messages);
        const auto texts = c::objectOf<c::TextsObject>(result);
        const trv::store_section& found = sectionOf(object->store(), section);
        std::vector<std::string> pairs;
        for (int i = 0; i < found.message_count(); ++i)
            addPair(pairs, object->store()->texts, found.text(i));
        texts->texts = std::move(pairs);
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_messages_find(trvfiles_messages messages, const char* section, const char* name,
                               int32_t exact, trvfiles_texts result, trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const auto object = c::objectOf<MessagesObject>(messages);
        const auto texts = c::objectOf<c::TextsObject>(result);
        const trv::store_section& found = sectionOf(object->store(), section);
        const std::string entry = c::narrowArgument(name);
        const trv::message_store& store = *object->store();
        const int number = found.find_live_entry(store.texts, entry, exact != 0);
        if (number < 0) return TRVFILES_NOT_FOUND;
        const int index = trv::find_section(&store, found.name());
        const char* value = trv::find_parameter(&store, index, entry.c_str(), exact != 0);
        texts->texts = {c::utf8FromNarrow(value),
                        c::utf8FromNarrow(store.texts.origin(found.text(number)))};
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_messages_set(trvfiles_messages messages, const char* section, int32_t number,
                              const char* text, trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const auto object = c::objectOf<MessagesObject>(messages);
        const std::string name = c::narrowArgument(section);
        const std::string message = c::narrowArgument(text);
        c::require(number >= 0 && number < trv::store_section::max_messages,
                   "the number of the message is outside of its range");
        trv::message_store* store = object->existingStore();
        const int index = addedSection(store, name);
        return statusOf(trv::set_message(store, index, number, message.c_str()) == 0);
    });
}

int32_t trvfiles_messages_set_entry(trvfiles_messages messages, const char* section,
                                    const char* entry, trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const auto object = c::objectOf<MessagesObject>(messages);
        const std::string name = c::narrowArgument(section);
        const std::string text = c::narrowArgument(entry);
        trv::message_store* store = object->existingStore();
        const int index = addedSection(store, name);
        return statusOf(trv::set_variable(store, index, text.c_str()) == 0);
    });
}

int32_t trvfiles_messages_remove_entry(trvfiles_messages messages, const char* section,
                                       const char* name, trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const auto object = c::objectOf<MessagesObject>(messages);
        const std::string narrow = c::narrowArgument(section);
        const std::string entry = c::narrowArgument(name);
        trv::message_store* store = object->existingStore();
        const int index = trv::find_section(store, narrow.c_str());
        const bool isRemoved = trv::remove_parameter(store, index, entry.c_str()) == 0;
        return isRemoved ? TRVFILES_SUCCESS : TRVFILES_NOT_FOUND;
    });
}

int32_t trvfiles_messages_save(trvfiles_messages messages, const char* path, int32_t all,
                               trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault* values) {
        const auto object = c::objectOf<MessagesObject>(messages);
        const std::string file = c::narrowArgument(path);
        trv::message_store* store = object->existingStore();
        const auto save = all != 0 ? trv::store_messages : trv::store_parameters;
        return statusOfSave(save(store, file.c_str()), values);
    });
}
