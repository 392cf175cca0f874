#include <cli/env_message_file.h>
#include <cli/input_files.h>
#include <cli/stream_copy.h>
#include <trvfiles/environment/message_store_data.h>
#include <trvfiles/support/line_source.h>
#include <trvfiles/text/open_file.h>
#include <trvfiles/text/text_conversion.h>

#include <QFileInfo>

#include <cerrno>
#include <new>

namespace trv::cli {
namespace {

Section sectionOf(const message_store& store, const store_section& stored) {
    Section section;
    section.name = stored.name();
    for (int number = 0; number < stored.message_count(); ++number) {
        const std::int32_t text = stored.text(number);
        section.messages.push_back({number, store.texts.record(text).line, store.texts.at(text)});
    }
    return section;
}

// Loads the content of standard input or of a pipe.
//
// @param registeredName  the file of the entries and of the faults that are reported
// @return false if there is no content; `file` then has the reason
bool loadCopy(const QString& name, const std::string& registeredName, message_store& store,
              MessageFile& file) {
    QString path;
    file.whyMissing = readablePath(name, path);
    if (file.whyMissing) return false;
    CFileFault fault;
    const platform::file_handle handle = openForRead(path, platform::file_mode::text, &fault);
    if (handle == nullptr) {
        file.whyMissing = problemOf(eFileIOOpenError, fault);
        return false;
    }
    CL8BFile source(handle.get());
    // Otherwise a source without memory would look like an empty file.
    if (source.lineNumber() == 0) throw std::bad_alloc();
    const bool isComplete = parse_messages(&store, source, registeredName.c_str(), plain_sink) ==
                            parse_result::complete;
    file.result = isComplete ? load_result::loaded : load_result::failed;
    return true;
}

}  // namespace

MessageFile loadMessageFile(const QString& name) {
    // Checked before anything is opened: reading a device may never end.
    const QFileInfo info(nativePath(name));
    const bool isFromStream = isStandardInput(name) || isPipe(name);
    if (!isFromStream && info.exists() && !info.isFile()) {
        return {load_result::missing, notRegular(), {}};
    }
    const store_owner store(create_store());
    if (store == nullptr) throw std::bad_alloc();
    // Its text has to live as long as the store.
    const std::string registeredName = toNarrow(displayName(name));
    MessageFile file;
    if (isFromStream) {
        if (!loadCopy(name, registeredName, *store, file)) return file;
    } else {
        file.result = load_file(store.get(), registeredName.c_str(), plain_sink);
    }
    if (file.result == load_result::missing) {
        file.whyMissing = systemProblem(eFileIOOpenError, ENOENT);
    }
    // Copies, because the store is destroyed here. After a fault they contain the part before it.
    for (const store_section& section : store->sections)
        file.sections.push_back(sectionOf(*store, section));
    return file;
}

}  // namespace trv::cli
