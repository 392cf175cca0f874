#include <trvfiles/environment/message_file.h>
#include <trvfiles/environment/message_file_internal.h>
#include <trvfiles/environment/runtime_observer.h>
#include <trvfiles/support/line_source.h>
#include <trvfiles/support/platform.h>

#include <cerrno>
#include <cstdio>
#include <new>
#include <string>
#include <system_error>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

int add_new_section(message_store* store, const char* name, void*) {
    const std::uint16_t section = add_section(store, name);
    return section == no_section ? -1 : section;
}

int add_new_message(message_store* store, int section, const char* line, std::int32_t file,
                    int line_number, void*) {
    return append_message(store, section, line, file, line_number);
}

int merge_section(message_store* store, const char* name, void*) {
    return find_or_add_section(store, name);
}

int merge_parameter(message_store* store, int section, const char* line, std::int32_t file,
                    int line_number, void*) {
    return set_parameter(store, section, line, file, line_number);
}

// The context of a host's callbacks that take none.
struct plain_callbacks {
    section_callback section;
    entry_callback entry;
};

int call_section(message_store* store, const char* name, void* context) {
    return static_cast<const plain_callbacks*>(context)->section(store, name);
}

int call_entry(message_store* store, int section, const char* line, std::int32_t file,
               int line_number, void* context) {
    return static_cast<const plain_callbacks*>(context)->entry(store, section, line, file,
                                                               line_number);
}

}  // namespace

const message_sink plain_sink = {add_new_section, add_new_message};
const message_sink merging_sink = {merge_section, merge_parameter};

load_result load_file(message_store* store, const char* path, const message_sink& sink) {
    const platform::file_handle file = platform::open_for_read(path, platform::file_mode::text);
    if (file == nullptr) {
        // Kept, because path_exists() changes errno. A file that exists and does not open is a
        // fault. A missing file is not: most directories of a list lack most files.
        const int reason = errno;
        if (!platform::path_exists(path)) return load_result::missing;
        const std::string text = "Error opening file - " + std::generic_category().message(reason);
        current_observer().fault_found({fault_kind::fatal, path, 0, text});
        return load_result::failed;
    }
    // Without this check a source that got no memory for its reader would look like an empty file.
    CL8BFile source(file.get());
    const bool has_source = source.lineNumber() != 0;
    if (!has_source) throw std::bad_alloc();
    if (parse_messages(store, source, path, sink) != parse_result::complete)
        return load_result::failed;
    // A line that cannot be read looks like the end of the file. The loaded part must not be taken
    // for the whole file: saving it would truncate the file.
    if (std::ferror(file.get()) == 0) return load_result::loaded;
    current_observer().fault_found({fault_kind::fatal, path, 0, "Error loading file."});
    return load_result::failed;
}

int load_messages(message_store* store, VCL8BLineSource& source, const char* file_name,
                  section_callback section, entry_callback entry) {
    if (section == nullptr || entry == nullptr) return -1;
    plain_callbacks callbacks = {section, entry};
    return load_messages(store, source, file_name, call_section, call_entry, &callbacks);
}

int load_messages(message_store* store, VCL8BLineSource& source, const char* file_name,
                  context_section_callback section, context_entry_callback entry, void* context) {
    const parse_result result = parse_messages(store, source, file_name, {section, entry, context});
    return result == parse_result::not_registered ? -1 : 0;
}

message_store* load_message_file(message_store* store, const char* path) {
    // A copy: the path may be a text of the store, which moves while the file is read.
    const std::string kept = path == nullptr ? "" : path;
    if (store != nullptr) {
        const load_result result = load_file(store, kept.c_str(), merging_sink);
        return result == load_result::failed ? nullptr : store;
    }
    // A file with a fault does not make a new store: a part of it must not be taken for the whole
    // file.
    store_owner made(create_store());
    if (made == nullptr) return nullptr;
    const load_result result = load_file(made.get(), kept.c_str(), plain_sink);
    return result == load_result::loaded ? made.release() : nullptr;
}

}  // namespace trv
