#include <cli/env_message_file.h>
#include <cli/input_files.h>
#include <trvfiles/environment/message_store_data.h>
#include <trvfiles/text/text_conversion.h>

#include <QFileInfo>

#include <new>
#include <system_error>

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

}  // namespace

MessageFile loadMessageFile(const QString& name) {
    // Checked before anything is opened: opening a pipe waits for its other end.
    const QFileInfo info(nativePath(name));
    if (info.exists() && !info.isFile()) {
        return {load_result::missing, notRegularText(), {}};
    }
    const store_owner store(create_store());
    if (store == nullptr) throw std::bad_alloc();
    MessageFile file;
    file.result = load_file(store.get(), toNarrow(name).c_str(), plain_sink);
    if (file.result == load_result::missing) {
        file.whyMissing = QString::fromStdString(
            std::make_error_code(std::errc::no_such_file_or_directory).message());
    }
    // Copies: the store ends here. After a fault they are what came before it.
    for (const store_section& section : store->sections)
        file.sections.push_back(sectionOf(*store, section));
    return file;
}

}  // namespace trv::cli
