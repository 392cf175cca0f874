#pragma once

/// @file
/// A manual page in roff, with the man macros.
///
/// Threads: an object is used by one thread at a time, the functions by any.

#include <QList>
#include <QString>
#include <QStringList>

namespace trv::cli {

/// A text that roff prints as it is, unless a line of the page begins with its full stop. The
/// hyphens are those of options, so that a call can be copied from the page.
QString roffText(const QString& text);

/// The same in bold: what is typed literally.
QString roffBold(const QString& text);

/// The same in italics: what is replaced by a value.
QString roffItalic(const QString& text);

/// Appends one part of a page after the other. Arguments whose name begins with `roff` are roff
/// already, all others are escaped.
class RoffPage {
public:
    /// @param name     of the page, in section 1, in capitals
    /// @param source   the program with its version
    RoffPage(const QString& name, const QString& source);

    void section(const QString& title);
    void subsection(const QString& title);

    /// A call that the page explains.
    struct Call {
        QString command;
        QString roffArguments;
    };
    void synopsis(const QList<Call>& calls);

    /// A paragraph that is filled to the width of the page. Lines that begin with a blank are
    /// indented and not filled.
    void paragraph(const QString& text);

    /// A term with its explanation.
    void item(const QString& roffTerm, const QString& text);

    /// Indented lines that are not filled.
    void literal(const QStringList& lines);

    const QString& text() const { return text_; }

private:
    void line(const QString& roff);
    void textLines(const QString& roff);
    void heading(const QString& macro, const QString& title);
    void fill(const QString& text);

    QString text_;
    // A paragraph macro after a heading would be ignored.
    bool isAfterHeading_ = false;
};

}  // namespace trv::cli
