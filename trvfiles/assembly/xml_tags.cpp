#include <trvfiles/assembly/plain_syntax.h>
#include <trvfiles/assembly/xml_tags.h>

#include <string>
#include <string_view>
#include <utility>

namespace trv {
namespace {

bool isWhite(QChar c) {
    return c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\n') ||
           c == QLatin1Char('\r');
}

bool endsName(QChar c) {
    return isWhite(c) || c == QLatin1Char('=') || c == QLatin1Char('/') || c == QLatin1Char('>') ||
           c == QLatin1Char('<');
}

int skipWhite(const QString& text, int from) {
    while (from < text.size() && isWhite(text.at(from)))
        ++from;
    return from;
}

int skipName(const QString& text, int from) {
    while (from < text.size() && !endsName(text.at(from)))
        ++from;
    return from;
}

bool isAt(const QString& text, int position, char c) {
    return position < text.size() && text.at(position) == QLatin1Char(c);
}

bool isAt(const QString& text, int position, QLatin1String part) {
    return text.midRef(position, part.size()) == part;
}

// @param at  where the name begins; after the value afterwards
// @return false if there is no attribute
bool parseAttribute(const QString& text, int& at, XmlAttribute& attribute) {
    const int nameEnd = skipName(text, at);
    const int equals = skipWhite(text, nameEnd);
    const int open = skipWhite(text, equals + 1);
    if (nameEnd == at || !isAt(text, equals, '=')) return false;
    if (!isAt(text, open, '"') && !isAt(text, open, '\'')) return false;
    const int close = text.indexOf(text.at(open), open + 1);
    if (close < 0) return false;
    attribute = {text.mid(at, nameEnd - at), at, open + 1, text.mid(open + 1, close - open - 1)};
    at = close + 1;
    return true;
}

// The end of a document type, whose declarations are in brackets.
int afterDocumentType(const QString& text, int from) {
    int depth = 0;
    for (int i = from; i < text.size(); ++i) {
        if (isAt(text, i, '"') || isAt(text, i, '\'')) {
            i = text.indexOf(text.at(i), i + 1);
            if (i < 0) return -1;
        }
        if (isAt(text, i, '[')) ++depth;
        if (isAt(text, i, ']')) --depth;
        if (isAt(text, i, '>') && depth <= 0) return i + 1;
    }
    return -1;
}

int after(const QString& text, const char* end, int from) {
    const QLatin1String part(end);
    const int found = text.indexOf(part, from);
    return found < 0 ? -1 : found + part.size();
}

}  // namespace

bool parseTag(const QString& text, int begin, XmlTag& tag) {
    tag = {};
    tag.begin = begin;
    int at = begin + 1;
    if (isAt(text, at, '/')) {
        tag.kind = XmlTag::Kind::end;
        ++at;
    }
    const int nameEnd = skipName(text, at);
    tag.name = text.mid(at, nameEnd - at);
    at = skipWhite(text, nameEnd);
    XmlAttribute attribute;
    while (parseAttribute(text, at, attribute)) {
        tag.attributes.push_back(std::move(attribute));
        at = skipWhite(text, at);
    }
    if (isAt(text, at, '/') && tag.kind == XmlTag::Kind::start) {
        tag.kind = XmlTag::Kind::empty;
        ++at;
    }
    tag.after = at + 1;
    return isAt(text, at, '>') && !tag.name.isEmpty();
}

// Skips what begins with "<!" or "<?" at the position.
//
// @return false if it has no end
bool XmlTags::skipDeclaration() {
    int end = -1;
    if (isAt(text_, position_, QLatin1String("<!--"))) {
        end = after(text_, "-->", position_ + 4);
    } else if (isAt(text_, position_, QLatin1String("<![CDATA["))) {
        end = after(text_, "]]>", position_);
    } else if (isAt(text_, position_, QLatin1String("<?"))) {
        end = after(text_, "?>", position_);
    } else {
        end = afterDocumentType(text_, position_);
    }
    if (end >= 0) position_ = end;
    return end >= 0;
}

bool XmlTags::next(XmlTag& tag) {
    for (;;) {
        position_ = text_.indexOf(QLatin1Char('<'), position_);
        if (position_ < 0) return false;
        if (!isAt(text_, position_ + 1, '!') && !isAt(text_, position_ + 1, '?')) break;
        if (!skipDeclaration()) return false;
    }
    if (!parseTag(text_, position_, tag)) return false;
    position_ = tag.after;
    return true;
}

// An attribute may contain ">", but no "<".
XmlTag tagEndingAt(const QString& text, int position) {
    XmlTag tag;
    const int begin = position < 0 ? -1 : text.lastIndexOf(QLatin1Char('<'), position);
    if (begin < 0 || !parseTag(text, begin, tag)) return {};
    const int length = tag.kind == XmlTag::Kind::empty ? 2 : 1;
    return tag.after - length == position ? tag : XmlTag();
}

XmlTag unclosedTag(const QString& text) {
    std::vector<XmlTag> open;
    XmlTag tag;
    for (XmlTags tags(text); tags.next(tag);) {
        if (tag.kind == XmlTag::Kind::start) {
            open.push_back(std::move(tag));
        } else if (tag.kind == XmlTag::Kind::end) {
            if (open.empty()) return {};
            if (open.back().name != tag.name) return open.back();
            open.pop_back();
        }
    }
    return open.empty() ? XmlTag() : open.back();
}

QString valueOf(const XmlAttribute& attribute) {
    // It is resolved in place.
    std::string text = attribute.value.toStdString();
    std::string_view value(text);
    if (!resolveReferences(value)) return attribute.value;
    return QString::fromUtf8(value.data(), static_cast<int>(value.size()));
}

}  // namespace trv
