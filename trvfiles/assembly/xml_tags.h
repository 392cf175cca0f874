#pragma once

/// @file
/// The tags of an XML text, for messages about their places. The text may be malformed; a parser
/// has judged it.

#include <QString>

#include <vector>

namespace trv {

struct XmlAttribute {
    QString name;
    /// Where the name begins.
    int position;
    /// Where the value begins, after its quote.
    int valuePosition;
    /// As it is in the text, with its references.
    QString value;
};

struct XmlTag {
    enum class Kind { start, end, empty };

    Kind kind = Kind::start;
    QString name;
    /// Where "<" is, and where the text after ">" begins.
    int begin = 0;
    int after = 0;
    std::vector<XmlAttribute> attributes;
};

/// Reads the tag whose "<" is at `begin`.
///
/// @param tag  incomplete after a failure
/// @return false if the tag is not complete
bool parseTag(const QString& text, int begin, XmlTag& tag);

/// Walks from tag to tag. Comments, CDATA sections, instructions and a document type are skipped.
class XmlTags {
public:
    /// @param text  has to outlive the walk
    explicit XmlTags(const QString& text) : text_(text) {}

    /// @return false at the end of the text, or if there is no complete tag before it
    bool next(XmlTag& tag);

private:
    bool skipDeclaration();

    const QString& text_;
    int position_ = 0;
};

/// The tag whose ">" or "/>" is at a position. It has no name if there is none.
XmlTag tagEndingAt(const QString& text, int position);

/// The first element that is not closed: another end tag is in the place of its own, or the text
/// ends. It has no name if there is none.
XmlTag unclosedTag(const QString& text);

/// The value of an attribute with its references resolved; as it is if they are not those of every
/// document.
QString valueOf(const XmlAttribute& attribute);

}  // namespace trv
