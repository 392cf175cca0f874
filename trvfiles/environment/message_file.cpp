#include <trvfiles/environment/message_file.h>
#include <trvfiles/environment/message_loading.h>

#include <string>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

}  // namespace

int load_messages(message_store* store, VCL8BLineSource& source, const char* file_name,
                  section_callback section, entry_callback entry) {
    const parse_result result = parse_messages(store, source, file_name, {section, entry});
    return result == parse_result::not_registered ? -1 : 0;
}

message_store* load_message_file(message_store* store, const char* path) {
    // The path may lie in the store, whose texts move while the file is read.
    const std::string kept = path == nullptr ? "" : path;
    if (store != nullptr) {
        const load_result result = load_file(store, kept.c_str(), merging_sink);
        return result == load_result::failed ? nullptr : store;
    }
    store_owner made(create_store());
    if (made == nullptr) return nullptr;
    const load_result result = load_file(made.get(), kept.c_str(), plain_sink);
    return result == load_result::loaded ? made.release() : nullptr;
}

}  // namespace trv
