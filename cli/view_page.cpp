#include <cli/element_text.h>
#include <cli/output_buffer.h>
#include <cli/scene_components.h>
#include <cli/scene_difference.h>
#include <cli/view_page.h>
#include <trvfiles/version.h>

#include <QCryptographicHash>

#include <deque>
#include <string>

namespace trv::cli {
namespace {

constexpr std::string_view pageBeginning =
    "<!DOCTYPE html>\n"
    "<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
    "<meta name=\"generator\" content=\"trvfiles view ";

// A source of a policy: " 'sha256-...'".
std::string hashSource(std::string_view text) {
    const QByteArray hash = QCryptographicHash::hash(
        QByteArray::fromRawData(text.data(), static_cast<int>(text.size())),
        QCryptographicHash::Sha256);
    return " 'sha256-" + hash.toBase64().toStdString() + '\'';
}

std::string hashSources(const std::vector<std::string_view>& texts) {
    std::string sources;
    for (const std::string_view text : texts)
        sources += hashSource(text);
    return sources;
}

// The directives for the base address and for forms have no default.
std::string policyOf(const PageParts& parts) {
    return "default-src 'none'; script-src" + hashSources(parts.scripts) + "; style-src" +
           hashSources(parts.styles) + "; img-src data: blob:; base-uri 'none'; form-action 'none'";
}

void writeHead(const Scene& scene, const PageParts& parts, std::ostream& out) {
    out << pageBeginning << version_text() << "\">\n"
        << R"(<meta http-equiv="Content-Security-Policy" content=")" << policyOf(parts) << "\">\n"
        << "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        << "<title>" << qUtf8Printable(shownUnquoted(scene.title).toHtmlEscaped()) << "</title>\n";
    for (const std::string_view style : parts.styles)
        out << "<style>" << style << "</style>\n";
    out << "</head><body>\n" << parts.body;
}

// A "<" in the notice is only before an address.
void writeScripts(const PageParts& parts, std::ostream& out) {
    out << "<script type=\"text/plain\" id=\"three-license\">\n" << parts.license << "</script>\n";
    for (const std::string_view script : parts.scripts)
        out << "<script>" << script << "</script>\n";
}

}  // namespace

bool isPage(std::string_view beginning) {
    return beginning.substr(0, pageBeginning.size()) == pageBeginning;
}

void writeSceneData(const Scene& scene, SceneFiles& files, std::ostream& out) {
    // The files are in front of the assemblies, so these are walked first.
    std::deque<SceneComponents> assemblies;
    for (const SceneAssembly& assembly : scene.assemblies)
        assemblies.emplace_back(assembly.name, assembly.data, files);
    JsonWriter json(out);
    json.add("title", scene.title);
    json.addText("version", version_text());
    files.write(json);
    json.beginArray("assemblies");
    for (const SceneComponents& assembly : assemblies) {
        json.beginObject();
        assembly.write(json);
        json.endObject();
    }
    json.endArray();
    writeFrames(scene.frames, json);
    if (assemblies.size() == 2) {
        writeSceneDifference({scene.assemblies[0].data, assemblies[0]},
                             {scene.assemblies[1].data, assemblies[1]}, json);
    } else {
        json.addNull("diff");
    }
    json.end();
}

void writePage(const Scene& scene, const PageParts& parts, SceneFiles& files, std::ostream& out) {
    writeHead(scene, parts, out);
    out << "<script type=\"application/json\" id=\"scene-data\">\n";
    ElementText element(out);
    std::ostream data(&element);
    writeSceneData(scene, files, data);
    out << "</script>\n";
    OutputBuffer buffer(out);
    files.writeContents(buffer);
    buffer.flush();
    writeScripts(parts, out);
    out << "</body></html>\n";
}

}  // namespace trv::cli
