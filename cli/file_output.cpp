#include <cli/file_output.h>

namespace trv::cli {

FileOutput::FileOutput(int fileCount, Heading heading, std::ostream& out)
    : out_(out), hasSeveral_(fileCount > 1), heading_(heading) {}

std::ostream& FileOutput::beginText(const QString& name) {
    if (!hasSeveral_) return out_;
    if (!isFirst_) out_ << '\n';
    isFirst_ = false;
    if (heading_ == Heading::name) {
        out_ << qUtf8Printable(QStringLiteral("==> %1 <==\n").arg(shown(displayName(name))));
    }
    return out_;
}

void FileOutput::writeJson(const std::function<void(JsonWriter&)>& writeMembers) {
    if (!hasSeveral_) {
        JsonWriter json(out_);
        writeMembers(json);
        json.end();
        return;
    }
    JsonWriter& json = severalFiles();
    json.beginObject();
    writeMembers(json);
    json.endObject();
}

void FileOutput::endJson() {
    if (!hasSeveral_) return;
    JsonWriter& json = severalFiles();
    json.endArray();
    json.end();
}

JsonWriter& FileOutput::severalFiles() {
    if (json_ == nullptr) {
        json_ = std::make_unique<JsonWriter>(out_);
        json_->beginArray("files");
    }
    return *json_;
}

ExitStatus printEachFile(const QStringList& names, const Console& console,
                         const std::function<Problem(const QString& name)>& print) {
    ExitStatus status = done;
    for (const QString& name : names) {
        const Problem problem = print(name);
        if (problem) status = report(name, problem, console);
    }
    return status;
}

}  // namespace trv::cli
