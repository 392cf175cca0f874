#pragma once

/// @file
/// Numbers and texts as the commands print them.
///
/// Threads: any.

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <ostream>
#include <string>

namespace trv::cli {

/// The shortest text that reads back as the same number, with "." in every locale; "nan", "inf" or
/// "-inf".
QString numberText(double value);

/// A number for reading: rounded to six decimals, without those that are zeros.
QString roundedText(double value);

/// Three numbers with blanks between them.
QString vectorText(const double vector[3]);
QString roundedVectorText(const double vector[3]);

/// A text on one line that is safe to show. Control characters, format characters, line and
/// paragraph separators, tag characters and single surrogates become "\x1b" below U+0100, "\u202e"
/// below U+10000, and "\U000e0041" from there on. A backslash becomes "\\", so that different texts
/// are shown differently.
QString shown(const QString& text);
QString shown(const std::string& narrow);

/// A text of at most `longest` code units as it is; of a longer one as much of the beginning, and
/// "...".
QString beginningOf(const QString& text, int longest);

/// "1 file", "2 files"
QString counted(unsigned long long count, const QString& one, const QString& several);

/// A JSON number; a number that JSON does not have is the text of numberText().
QJsonValue jsonNumber(double value);
QJsonArray jsonNumbers(const double* values, int count);

/// Writes an object on one line, member by member, for one that is too large to be built first.
/// Escapes as printJson().
class JsonWriter {
public:
    /// @param out  has to live as long
    explicit JsonWriter(std::ostream& out);

    void add(const char* key, const QJsonValue& value);

    /// An array as the next member. Elements follow, and then endArray().
    void beginArray(const char* key);
    void addElement(const QJsonValue& value);
    void endArray();

    void end();

private:
    void separate();

    std::ostream& out_;
    bool isFirst_ = true;
};

/// One line. What shown() escapes, but for the backslash, becomes "\u202e" or two of these.
void printJson(const QJsonObject& object, std::ostream& out);

}  // namespace trv::cli
