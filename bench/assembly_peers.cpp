#include <bench/assembly_peers.h>
#include <bench/comparison.h>

#include <expat.h>
#include <libxml/xmlreader.h>
#include <pugixml.hpp>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

namespace trv::bench {
namespace {

double fromChars(std::string_view text) {
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

double numberOf(const pugi::xml_attribute& attribute, Numbers numbers) {
    return numbers == Numbers::asDouble ? attribute.as_double() : fromChars(attribute.value());
}

PlainVector vectorOf(const pugi::xml_node& element, Numbers numbers) {
    return {numberOf(element.attribute("x"), numbers), numberOf(element.attribute("y"), numbers),
            numberOf(element.attribute("z"), numbers)};
}

PlainComponent componentOf(const pugi::xml_node& element, Numbers numbers) {
    PlainComponent component;
    component.name = element.attribute("name").value();
    component.comment = element.attribute("comment").value();
    component.enabled = std::strcmp(element.attribute("enabled").value(), "1") == 0;
    component.translation = vectorOf(element.child("Translation"), numbers);
    const pugi::xml_node orientation = element.child("Orientation");
    component.vec1 = vectorOf(orientation.child("vec1"), numbers);
    component.vec2 = vectorOf(orientation.child("vec2"), numbers);
    component.vec3 = vectorOf(orientation.child("vec3"), numbers);
    const pugi::xml_node data = element.child("Data");
    component.geometryFile = data.child("File").attribute("name").value();
    for (const pugi::xml_node& child : data.children("Component"))
        component.components.push_back(componentOf(child, numbers));
    return component;
}

void append(pugi::xml_node parent, const char* tag, const PlainVector& vector) {
    pugi::xml_node element = parent.append_child(tag);
    element.append_attribute("x") = vector[0];
    element.append_attribute("y") = vector[1];
    element.append_attribute("z") = vector[2];
}

void append(pugi::xml_node parent, const PlainComponent& component) {
    pugi::xml_node element = parent.append_child("Component");
    element.append_attribute("name") = component.name.c_str();
    element.append_attribute("comment") = component.comment.c_str();
    element.append_attribute("enabled") = component.enabled ? 1 : 0;
    append(element, "Translation", component.translation);
    pugi::xml_node orientation = element.append_child("Orientation");
    append(orientation, "vec1", component.vec1);
    append(orientation, "vec2", component.vec2);
    append(orientation, "vec3", component.vec3);
    pugi::xml_node data = element.append_child("Data");
    if (component.geometryFile.empty()) {
        data.append_attribute("number") = static_cast<unsigned>(component.components.size());
        for (const PlainComponent& child : component.components)
            append(data, child);
    } else {
        data.append_attribute("number") = 1;
        data.append_child("File").append_attribute("name") = component.geometryFile.c_str();
    }
}

// Builds the structs from the events of a parser. `Find` returns the value of an attribute of the
// element that starts.
class EventBuilder {
public:
    template <class Find>
    void start(std::string_view tag, Find find) {
        if (tag == "Component") {
            PlainComponent& component = open_.emplace_back();
            component.name = find("name");
            component.comment = find("comment");
            component.enabled = std::string_view(find("enabled")) == "1";
        } else if (tag == "File") {
            open_.back().geometryFile = find("name");
        } else if (PlainVector* vector = vectorNamed(tag)) {
            *vector = {fromChars(find("x")), fromChars(find("y")), fromChars(find("z"))};
        }
    }

    void end(std::string_view tag) {
        if (tag != "Component") return;
        PlainComponent complete = std::move(open_.back());
        open_.pop_back();
        if (open_.empty()) {
            assembly_.root = std::move(complete);
        } else {
            open_.back().components.push_back(std::move(complete));
        }
    }

    PlainAssembly take() { return std::move(assembly_); }

private:
    PlainVector* vectorNamed(std::string_view tag) {
        if (tag == "Dimension") return &assembly_.dimension;
        if (tag == "Translation") return &open_.back().translation;
        if (tag == "vec1") return &open_.back().vec1;
        if (tag == "vec2") return &open_.back().vec2;
        return tag == "vec3" ? &open_.back().vec3 : nullptr;
    }

    PlainAssembly assembly_;
    std::vector<PlainComponent> open_;
};

void startOfExpat(void* builder, const XML_Char* tag, const XML_Char** attributes) {
    static_cast<EventBuilder*>(builder)->start(tag, [attributes](const char* name) {
        for (const XML_Char** at = attributes; *at != nullptr; at += 2) {
            if (std::strcmp(*at, name) == 0) return at[1];
        }
        return "";
    });
}

void endOfExpat(void* builder, const XML_Char* tag) {
    static_cast<EventBuilder*>(builder)->end(tag);
}

const char* textOf(const xmlChar* text) {
    return reinterpret_cast<const char*>(text);
}

std::string attributeOf(xmlTextReaderPtr reader, const char* name) {
    xmlChar* const value =
        xmlTextReaderGetAttribute(reader, reinterpret_cast<const xmlChar*>(name));
    std::string text = value == nullptr ? "" : textOf(value);
    xmlFree(value);
    return text;
}

}  // namespace

PlainAssembly readByPugixml(const std::string& path, Numbers numbers) {
    pugi::xml_document document;
    require(document.load_file(path.c_str()), "reading with pugixml");
    const pugi::xml_node root = document.document_element();
    PlainAssembly assembly;
    assembly.dimension = vectorOf(root.child("Attributs").child("Dimension"), numbers);
    assembly.root = componentOf(root.child("Component"), numbers);
    return assembly;
}

void writeByPugixml(const std::string& path, const PlainAssembly& assembly) {
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("ComponentInfo");
    root.append_attribute("version") = 1;
    append(root.append_child("Attributs"), "Dimension", assembly.dimension);
    append(root, assembly.root);
    require(document.save_file(path.c_str(), "   "), "writing with pugixml");
}

PlainAssembly readByExpat(const std::string& path) {
    constexpr int blockSize = 65536;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                               std::fclose);
    const std::unique_ptr<std::remove_pointer_t<XML_Parser>, void (*)(XML_Parser)> parser(
        XML_ParserCreate(nullptr), XML_ParserFree);
    require(file != nullptr && parser != nullptr, "reading with expat");
    EventBuilder builder;
    XML_SetUserData(parser.get(), &builder);
    XML_SetElementHandler(parser.get(), startOfExpat, endOfExpat);
    std::size_t count = 0;
    do {
        void* const block = XML_GetBuffer(parser.get(), blockSize);
        require(block != nullptr, "reading with expat");
        count = std::fread(block, 1, blockSize, file.get());
        require(XML_ParseBuffer(parser.get(), static_cast<int>(count), count == 0) == XML_STATUS_OK,
                "reading with expat");
    } while (count != 0);
    return builder.take();
}

PlainAssembly readByLibxml2(const std::string& path) {
    const std::unique_ptr<xmlTextReader, void (*)(xmlTextReaderPtr)> reader(
        xmlReaderForFile(path.c_str(), nullptr, XML_PARSE_HUGE), xmlFreeTextReader);
    require(reader != nullptr, "reading with libxml2");
    EventBuilder builder;
    int status = xmlTextReaderRead(reader.get());
    for (; status == 1; status = xmlTextReaderRead(reader.get())) {
        const int type = xmlTextReaderNodeType(reader.get());
        const char* const tag = textOf(xmlTextReaderConstName(reader.get()));
        if (type == XML_READER_TYPE_ELEMENT) {
            builder.start(tag, [&](const char* name) { return attributeOf(reader.get(), name); });
            if (xmlTextReaderIsEmptyElement(reader.get()) == 1) builder.end(tag);
        } else if (type == XML_READER_TYPE_END_ELEMENT) {
            builder.end(tag);
        }
    }
    require(status == 0, "reading with libxml2");
    return builder.take();
}

}  // namespace trv::bench
