#pragma once

/// @file
/// The text of a project file, for messages that quote it or name a column.

#include <QByteArray>
#include <QString>

#include <vector>

namespace trv::cli {

/// A place in a text: a line counted from 1, and a column counted from 1 in UTF-16 units. A part
/// that is not known is 0.
struct Place {
    int line = 0;
    int column = 0;
};

/// A text and its lines.
///
/// Threads: a plain value.
class SourceText {
public:
    enum class Lines {
        /// End with LF, CR or CR LF, as an XML parser counts them.
        ofXml,
        /// End with LF or CR LF.
        ofText,
    };

    SourceText() = default;
    SourceText(QString text, Lines lines);

    /// The whole text without the mark at its beginning; empty if the file cannot be read or has
    /// more than 64 MiB.
    ///
    /// @param name  resolved like all names; of a regular file
    static SourceText ofFile(const QString& name, Lines lines);

    const QString& text() const { return text_; }

    int lineCount() const { return static_cast<int>(starts_.size()); }

    /// A line without its end; empty if there is no such line.
    QString line(int number) const;

    /// The index of a place in the text; -1 if the text does not have it.
    int positionOf(Place place) const;

    Place placeOf(int position) const;

private:
    QString text_;
    // Where each line begins.
    std::vector<int> starts_;
};

}  // namespace trv::cli
