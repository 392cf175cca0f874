#include <trvfiles/environment/entry_text.h>
#include <trvfiles/environment/message_store_data.h>
#include <trvfiles/environment/store_writer.h>
#include <trvfiles/environment/store_writer_internal.h>
#include <trvfiles/support/diagnostics.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// "/" and "\\" are alike in the name of a target on every system: a program may load a file by the
// one and save it by the other. Case is never ignored, not even on Windows.
char separator_as_slash(char c) {
    return c == '\\' ? '/' : c;
}

bool is_same_file(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](char a, char b) {
        return separator_as_slash(a) == separator_as_slash(b);
    });
}

// The text of a file that is being built, and the line of each text of the store in it. The lines
// go to the records only after the file is in place.
class file_content {
public:
    struct entry {
        std::int32_t text;
        int line;
    };

    void add_header(const store_section& section) {
        add_line("[" + std::string(section.name()) + "]");
    }

    void add_entry(const text_pool& texts, std::int32_t text) {
        entries_.push_back({text, line_});
        add_line(without_references(texts.at(text)));
    }

    const std::string& text() const { return text_; }
    const std::vector<entry>& entries() const { return entries_; }

private:
    void add_line(const std::string& line) {
        text_ += line;
        text_ += '\n';
        ++line_;
    }

    std::string text_;
    int line_ = 1;
    std::vector<entry> entries_;
};

// The version of a message that belongs to a file, or `none`. A text that is set by program and
// persistent belongs to every file. Otherwise the versions are searched from the newest to the
// oldest: a message that another file has replaced keeps the version of this file.
std::int32_t version_for(const text_pool& texts, std::int32_t text, std::string_view file_name) {
    const text_record& current = texts.record(text);
    const int saved = current.flags & (persistent_text | deleted_text);
    if (current.file == text_pool::none && saved == persistent_text) return text;
    for (; text != text_pool::none; text = texts.record(text).previous) {
        const text_record& version = texts.record(text);
        if ((version.flags & deleted_text) != 0 || version.file == text_pool::none) continue;
        if (is_same_file(texts.at(version.file), file_name)) return text;
    }
    return text_pool::none;
}

file_content parameters_of(const message_store& store, std::string_view file_name) {
    file_content content;
    for (const store_section& section : store.sections) {
        // A section without an entry of this file gets no header.
        bool has_header = false;
        for (int number = 0; number < section.message_count(); ++number) {
            const std::int32_t text = version_for(store.texts, section.text(number), file_name);
            if (text == text_pool::none) continue;
            if (!has_header) content.add_header(section);
            has_header = true;
            content.add_entry(store.texts, text);
        }
    }
    return content;
}

file_content messages_of(const message_store& store) {
    file_content content;
    for (const store_section& section : store.sections) {
        content.add_header(section);
        for (int number = 0; number < section.message_count(); ++number)
            content.add_entry(store.texts, section.text(number));
    }
    return content;
}

// Saves the content that `content_of(store)` makes of the store. The name of the target is
// registered before anything is written, because that can fail. Changing the records cannot.
//
// @param new_file  whether the texts that are written belong to the target from then on
template <class Content>
int save(message_store& store, const std::string& target, file_replacement& held, bool new_file,
         Content content_of) {
    if (!held.is_open()) {
        report_not_opened(held.temporary_path());
        return -1;
    }
    const std::int32_t file = register_file_name(&store, target.c_str());
    if (file < 0) {
        report_error(("Store messages : error saving file name '" + target + "'").c_str());
        return -1;
    }
    const file_content content = content_of(store);
    const int failure = held.write_and_replace(content.text());
    if (failure != 0) return -failure;
    for (const file_content::entry& written : content.entries()) {
        text_record& record = store.texts.record(written.text);
        if (new_file) record.file = file;
        record.line = static_cast<std::uint16_t>(written.line);
    }
    return 0;
}

}  // namespace

std::string parameters_text(const message_store& store, std::string_view file_name) {
    return parameters_of(store, file_name).text();
}

void report_not_opened(const std::string& temporary_path) {
    report_fatal(("Store messages : error opening file '" + temporary_path + "'").c_str());
}

int store_parameters(message_store* store, const char* file_name) {
    if (store == nullptr || file_name == nullptr) return -1;
    file_replacement held(file_name);
    return store_parameters(store, file_name, held);
}

int store_parameters(message_store* store, const char* file_name, file_replacement& held) {
    if (store == nullptr || file_name == nullptr) return -1;
    // A copy: the name may be a text of the store, which moves when the name is registered.
    const std::string target(file_name);
    return save(*store, target, held, true,
                [&](const message_store& saved) { return parameters_of(saved, target); });
}

int store_messages(message_store* store, const char* file_name) {
    if (store == nullptr || file_name == nullptr) return -1;
    const std::string target(file_name);
    file_replacement held(target, shared_temporary_name);
    return save(*store, target, held, false, messages_of);
}

}  // namespace trv
