#include <trvfiles/environment/message_loading.h>
#include <trvfiles/support/diagnostics.h>
#include <trvfiles/support/line_source.h>
#include <trvfiles/support/platform.h>

#include <cerrno>
#include <cstdio>
#include <new>
#include <system_error>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

int add_new_section(message_store* store, const char* name) {
    constexpr std::uint16_t refused = 65535;
    const std::uint16_t section = add_section(store, name);
    return section == refused ? -1 : section;
}

}  // namespace

const message_sink plain_sink = {add_new_section, append_message};
const message_sink merging_sink = {find_or_add_section, set_parameter};

load_result load_file(message_store* store, const char* path, const message_sink& sink) {
    const platform::file_handle file = platform::open_for_read(path, platform::file_mode::text);
    if (file == nullptr) {
        const int reason = errno;
        if (!platform::path_exists(path)) return load_result::missing;
        const std::string text = "Error opening file - " + std::generic_category().message(reason);
        report_fatal(message_file_report(path, 0, text).c_str());
        return load_result::failed;
    }
    CL8BFile source(file.get());
    const bool has_source = source.lineNumber() != 0;
    if (!has_source) throw std::bad_alloc();
    if (parse_messages(store, source, path, sink) != parse_result::complete)
        return load_result::failed;
    // A line that cannot be read looks like the end of the file. What is loaded of it must not pass
    // for the whole: saving it would cut the file short.
    if (std::ferror(file.get()) == 0) return load_result::loaded;
    report_fatal(message_file_report(path, 0, "Error loading file.").c_str());
    return load_result::failed;
}

}  // namespace trv
