#pragma once

/// @file
/// The reader of sectioned settings files.

#include <QString>

#include <cstdint>
#include <cstdio>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct CFileFault;

/// A text of sections with "key = value" lines, which is parsed as a whole and kept.
///
/// - A line that begins with "[" and holds a "]" opens the section whose name is between the two. A
///   section that is opened again replaces the earlier one with all its lines.
/// - A line that holds "=" and does not begin with "#" sets a key; the last line of a key counts.
/// - Every other line is kept without a meaning. Names, keys and values lose " \t\f\v\n\r" at both
///   ends. A CR before a line end is not part of the line.
/// - Lines above the first header form a section with the empty name, unless all are blank.
///
/// Names are compared byte by byte. If case is ignored, it is that of ASCII letters only, and the
/// first match in byte order counts. Parsing takes at most 7 bytes of memory for each byte of the
/// text, and time O(n log n).
///
/// Threads: one object on one thread; several objects at once.
class CSectionedFile {
    // A part of the text. It has half the size of a std::string_view; a file of short lines has one
    // for each of them.
    struct Place {
        std::uint32_t start = 0;
        std::uint32_t length = 0;

        std::string_view in(const char* text) const { return {text + start, length}; }
    };

public:
    /// The lines between one header and the next. A section without lines counts as absent.
    class Section {
    public:
        /// How many lines there are, blank ones and comments included.
        int lineCount() const { return lineCount_; }

        /// The line of the header in the file, counted from 0; -1 for the lines above the first
        /// header.
        int headerLine() const { return headerLine_; }

    private:
        friend class CSectionedFile;

        Place name_;
        int lineCount_ = 0;
        int headerLine_ = -1;
        // The range of its key lines among those of all sections: sorted by key, each key once.
        std::uint32_t firstKey_ = 0;
        std::uint32_t keyCount_ = 0;
    };

    /// Parses a stream to its end, or up to the line in which it goes bad. What the object held is
    /// dropped, by the calls below as well, and also if they fail.
    ///
    /// @param fault  takes the reason of a failure
    /// @return 0; -1 if the stream is not good at the start, and for more than 256 MiB: no settings
    ///         file is that long, but a device may have no end
    int parse(std::istream& stream, CFileFault* fault = nullptr);

    /// Parses a file from its current position.
    ///
    /// @param file   stays open
    /// @param fault  takes the reason of a failure
    /// @return 0; -1 if a read fails, and for more than 256 MiB
    int parse(std::FILE* file, CFileFault* fault = nullptr);

    /// Parses a text in memory, of which the object keeps a copy.
    ///
    /// @param fault  takes the reason of a failure
    /// @return 0; -1 for more than 256 MiB
    int parse(std::string_view text, CFileFault* fault = nullptr);

    /// Opens a file and parses it.
    ///
    /// @param fault  takes the reason of a failure
    /// @return 0; -1 if it cannot be opened, is a directory, or cannot be parsed
    int parseFile(const std::wstring& fileName, CFileFault* fault = nullptr);
    int parseFile(const QString& fileName, CFileFault* fault = nullptr);

    /// The section of a name; an empty one if there is none. Valid until the next parse.
    const Section& section(const std::string& name, bool caseSensitive) const;

    /// Looks a key up in a section of this object.
    ///
    /// @param value       written if the key is found
    /// @param lineNumber  takes the key's line in the section, counted from 0; may be nullptr
    /// @return whether the key is found
    bool sectionValue(const Section& section, const std::string& key, bool caseSensitive,
                      std::string& value, int* lineNumber = nullptr) const;

    /// Looks up a section and a key in it.
    ///
    /// @param lineNumber  takes the key's line in the file, counted from 0; may be nullptr
    /// @return whether both are found
    bool value(const std::string& sectionName, bool sectionCaseSensitive, const std::string& key,
               bool keyCaseSensitive, std::string& value, int* lineNumber = nullptr) const;

    /// Writes every section with its lines and its keys, in byte order of their names.
    void dump(std::ostream& stream) const;

    /// Whether the text begins with the bytes EF BB BF, which are not part of the first line.
    bool hasUtf8Signature() const { return hasUtf8Signature_; }

private:
    // The value is not stored: valueOf() finds it after the key. `index` is the line in the
    // section, counted from 0.
    struct KeyLine {
        Place key;
        int index;
    };
    struct Content {
        std::string text;
        std::vector<KeyLine> keys;
    };
    static_assert(sizeof(Section) == 24 && sizeof(KeyLine) == 12);

    void clear();
    int parseText(std::string text);
    void reserve(std::string_view unread);
    void open(std::string_view name, int headerLine);
    void takeLine(std::string_view line);
    void close(std::string_view lines);
    void sortKeys(Section& section);
    void sortSections();

    Place placeOf(std::string_view part) const;
    std::string_view textFrom(const Section& section) const;
    std::string_view valueOf(const KeyLine& line) const;

    // Every Place is in this text, which copies of the object share.
    std::shared_ptr<Content> content_;
    // Sorted by name, each name once; while a text is parsed, the last one is open.
    std::vector<Section> sections_;
    bool hasUtf8Signature_ = false;
};
