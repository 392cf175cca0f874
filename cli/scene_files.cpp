#include <cli/base64.h>
#include <cli/scene_files.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/text/open_file.h>

#include <cstdio>
#include <stdexcept>

namespace trv::cli {
namespace {

void writeBase64(std::FILE* file, OutputBuffer& out) {
    // Of whole groups of three bytes, so only the last block is padded.
    std::string block(std::size_t{48} << 10, '\0');
    while (const std::size_t length = std::fread(block.data(), 1, block.size(), file)) {
        appendBase64(out.text(), {block.data(), length});
        out.endPiece();
    }
}

}  // namespace

int SceneFiles::add(const ReferenceDirectory& directory, const std::string& name) {
    const HostPath path = pathFromNarrow(name);
    const QString absolute = directory.pathOf(path);
    const QString& key = absolute.isEmpty() ? path.text : absolute;
    const auto known = indices_.constFind(key);
    if (known != indices_.constEnd()) return *known;
    const int index = static_cast<int>(files_.size());
    indices_.insert(key, index);
    files_.push_back({path.text, absolute, examineGeometry(absolute)});
    return index;
}

void SceneFiles::reportHidden(std::ostream& err) const {
    for (const File& file : files_) {
        if (file.geometry.format != nullptr) continue;
        err << qUtf8Printable(QStringLiteral("trvfiles: %1: %2; shown as a box\n")
                                  .arg(shown(file.name), shown(file.geometry.reason)));
    }
}

void SceneFiles::write(JsonWriter& json) const {
    json.beginArray("files");
    for (const File& file : files_) {
        const GeometryFile& geometry = file.geometry;
        const bool isShown = geometry.format != nullptr;
        json.beginObject();
        json.add("path", file.name);
        json.add("format", isShown ? QJsonValue(QLatin1String(geometry.format)) : QJsonValue());
        json.add("reason", isShown ? QJsonValue() : QJsonValue(geometry.reason));
        json.addInteger("size", static_cast<long long>(geometry.size));
        json.endObject();
    }
    json.endArray();
}

void SceneFiles::writeContents(OutputBuffer& out) const {
    for (std::size_t i = 0; i < files_.size(); ++i) {
        if (files_[i].geometry.format == nullptr) continue;
        const platform::file_handle file = openForRead(files_[i].path, platform::file_mode::binary);
        if (file != nullptr) {
            out.text() += R"(<script type="text/plain" id="geometry-)";
            appendInteger(out.text(), static_cast<long long>(i));
            out.text() += "\">";
            writeBase64(file.get(), out);
            out.text() += "</script>\n";
        }
        if (file == nullptr || std::ferror(file.get()) != 0) {
            throw std::runtime_error(shown(files_[i].name).toStdString() +
                                     ": the file cannot be read any more");
        }
    }
}

}  // namespace trv::cli
