#pragma once

/// @file
/// The form in which the commands print numbers and texts.
///
/// Threads: any.

#include <cli/output_buffer.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <cstddef>
#include <ostream>
#include <string>

namespace trv::cli {

/// The shortest text that reads back as the same number, with "." in every locale; "nan", "inf" or
/// "-inf".
QString numberText(double value);

/// A human-readable number: rounded to six decimals, without trailing zeros.
QString roundedText(double value);

/// Three numbers with blanks between them.
QString vectorText(const double vector[3]);
QString roundedVectorText(const double vector[3]);

/// A text on one line without hidden characters. Control characters, format characters, line and
/// paragraph separators, tag characters and single surrogates become "\x1b" below U+0100, "\u202e"
/// below U+10000, and "\U000e0041" from there on. A backslash becomes "\\", so different texts are
/// printed differently.
QString shown(const QString& text);
QString shown(const std::string& narrow);

/// As shown(), but a backslash stays one: for texts that are used by other programs. Different
/// texts may be printed the same.
QString shownUnquoted(const QString& text);

/// As shown(), in UTF-8 for many texts: a text of plain ASCII is appended without a
/// conversion.
void appendShown(std::string& out, const std::string& narrow);

/// The whole text if it has at most `maxLength` code units, else its beginning of that length and
/// "...".
QString beginningOf(const QString& text, int maxLength);

/// "1 file", "2 files"
QString counted(unsigned long long count, const QString& one, const QString& several);

/// A JSON number. If JSON cannot hold the number, the text of numberText().
QJsonValue jsonNumber(double value);
QJsonArray jsonNumbers(const double* values, int count);

/// Writes an object on one line, member by member. It is for objects that are too large to be built
/// in memory first. Escapes like printJson().
class JsonWriter {
public:
    /// @param out  has to live as long as the writer. It has the whole text after end()
    explicit JsonWriter(std::ostream& out);

    void add(const char* key, const QJsonValue& value);
    /// Adds each member of an object.
    void addAll(const QJsonObject& object);

    // These are faster than add(), which builds a document for each value.
    void addText(const char* key, const std::string& narrow);
    void addUtf8(const char* key, const std::string& text);
    void addInteger(const char* key, long long value);
    void addBoolean(const char* key, bool value);
    void addNull(const char* key);
    /// An array of numbers in the form of jsonNumber().
    void addNumbers(const char* key, const double* values, int count);

    /// Starts a text as the next member: the bytes of numbers in base64, each a double with its
    /// lowest byte first. Calls of addBase64() and then endBase64() follow.
    void beginBase64(const char* key);
    /// @param count  of the numbers; a multiple of three
    void addBase64(const double* numbers, std::size_t count);
    void endBase64();

    /// Starts an object as the next member. Its members and then endObject() follow.
    void beginObject(const char* key);

    /// Starts an array as the next member. Calls of addElement() or beginObject() and then
    /// endArray() follow.
    void beginArray(const char* key);
    void addElement(const QJsonValue& value);
    void addTextElement(const std::string& narrow);
    void addIntegerElement(long long value);
    /// Starts an object as the next element. Its members and then endObject() follow.
    void beginObject();
    void endObject();
    void endArray();

    void end();

private:
    void appendText(const std::string& narrow);
    void separate();
    void beginMember(const char* key);

    OutputBuffer out_;
    bool isFirst_ = true;
};

/// Adds the members "translation", "vec1", "vec2" and "vec3".
void addFrame(JsonWriter& json, const double translation[3], const double vec1[3],
              const double vec2[3], const double vec3[3]);

/// Prints the object on one line. Characters that shown() escapes, except the backslash, become
/// "\u202e" or two such escapes.
void printJson(const QJsonObject& object, std::ostream& out);

}  // namespace trv::cli
