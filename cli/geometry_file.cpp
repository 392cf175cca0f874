#include <cli/geometry_file.h>
#include <cli/input_files.h>
#include <trvfiles/support/CFileFault.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/support/platform_directories.h>
#include <trvfiles/text/open_file.h>
#include <trvfiles/text/text_conversion.h>

#include <QFileInfo>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace trv::cli {
namespace {

constexpr std::size_t beginningLength = 65536;
constexpr std::size_t stlHeaderLength = 84;
constexpr std::size_t stlFacetLength = 50;
constexpr std::string_view blanks = " \t\r\n";

QString cutText() {
    return QStringLiteral("the file ends too early");
}

// What is known of an open file.
struct Content {
    std::string beginning;
    std::string end;
    std::uint64_t size;
    bool isNamedStl;
    bool isNamedObj;
};

GeometryFile shownAs(const char* format) {
    return {format, {}, 0};
}

GeometryFile notShown(const QString& reason) {
    return {nullptr, reason, 0};
}

std::string_view withoutBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

bool startsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

// The number of facets in the header of a binary STL file: four bytes, little endian.
std::uint64_t facetCount(std::string_view beginning) {
    constexpr std::size_t place = 80;
    std::uint64_t count = 0;
    for (std::size_t i = 4; i-- > 0;)
        count = count << 8 | static_cast<unsigned char>(beginning[place + i]);
    return count;
}

bool isText(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) {
        return static_cast<unsigned char>(c) < ' ' && blanks.find(c) == std::string_view::npos;
    });
}

std::string_view firstWord(std::string_view line) {
    line = withoutBlanks(line);
    return line.substr(0, line.find_first_of(blanks));
}

// Of the first line that is neither empty nor a comment.
std::string_view firstObjWord(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view word = firstWord(text.substr(0, end));
        if (!word.empty() && word.front() != '#') return word;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return {};
}

bool isObj(std::string_view text) {
    constexpr std::array<std::string_view, 12> words = {"v", "vn", "vt", "vp", "f",      "l",
                                                        "p", "o",  "g",  "s",  "mtllib", "usemtl"};
    return isText(text) && std::find(words.begin(), words.end(), firstObjWord(text)) != words.end();
}

bool isPly(std::string_view text) {
    return startsWith(text, "ply\n") || startsWith(text, "ply\r");
}

GeometryFile brokenStl(const Content& content) {
    const std::uint64_t present = (content.size - stlHeaderLength) / stlFacetLength;
    return notShown(QStringLiteral("not an STL file: its header counts %1 facets, it has %2")
                        .arg(static_cast<qulonglong>(facetCount(content.beginning)))
                        .arg(static_cast<qulonglong>(present)));
}

bool isBinaryStl(const Content& content) {
    return content.size >= stlHeaderLength &&
           content.size == stlHeaderLength + stlFacetLength * facetCount(content.beginning);
}

GeometryFile textStl(const Content& content) {
    if (content.end.find("endsolid") == std::string::npos) return notShown(cutText());
    return shownAs("stl");
}

// The size of a binary STL file is a mark that no text has by accident, so it counts before words.
GeometryFile formatOf(const Content& content) {
    if (content.size == 0) return notShown(QStringLiteral("the file is empty"));
    if (isBinaryStl(content)) return shownAs("stl");
    const std::string_view beginning = content.beginning;
    if (isPly(beginning)) {
        if (beginning.find("end_header") == std::string_view::npos) return notShown(cutText());
        return shownAs("ply");
    }
    if (isText(beginning)) {
        if (firstWord(beginning) == "solid") return textStl(content);
        if (content.isNamedObj && isObj(beginning)) return shownAs("obj");
    } else if (content.isNamedStl && content.size >= stlHeaderLength) {
        return brokenStl(content);
    }
    return notShown(QStringLiteral("not an STL, OBJ or PLY file"));
}

// REQUIRES: the file is at its beginning.
Content contentOf(std::FILE* file, const QString& path, std::uint64_t size) {
    constexpr long endLength = 1024;
    Content content = {std::string(beginningLength, '\0'), std::string(endLength, '\0'), size,
                       path.endsWith(QLatin1String(".stl"), Qt::CaseInsensitive),
                       path.endsWith(QLatin1String(".obj"), Qt::CaseInsensitive)};
    const auto read = [file](std::string& text) {
        text.resize(std::fread(text.data(), 1, text.size(), file));
    };
    read(content.beginning);
    if (std::fseek(file, -endLength, SEEK_END) != 0) std::rewind(file);
    read(content.end);
    return content;
}

// Why a path is not that of a regular file; empty if it is.
QString whyNoFile(const QString& path) {
    if (path.isEmpty()) return QStringLiteral("not a valid file name");
    switch (platform::kind_of(systemPath(path))) {
        case platform::file_kind::none:
            return QStringLiteral("file not found");
        case platform::file_kind::directory:
            return QStringLiteral("a directory");
        case platform::file_kind::other:
            break;
    }
    return QFileInfo(path).isFile() ? QString() : notRegular().reason;
}

}  // namespace

GeometryFile examineGeometry(const QString& path) {
    const QString reason = whyNoFile(path);
    if (!reason.isEmpty()) return notShown(reason);
    CFileFault fault;
    const platform::file_handle file = openForRead(path, platform::file_mode::binary, &fault);
    if (file == nullptr) {
        return notShown(QStringLiteral("the file cannot be opened: ") +
                        QString::fromStdString(fault.reason));
    }
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(systemPath(path), error);
    if (error) return notShown(QString::fromStdString(error.message()));
    if (size > maxGeometryBytes) {
        GeometryFile large = notShown(QStringLiteral("the file is larger than 256 MiB"));
        large.size = size;
        return large;
    }
    GeometryFile found = formatOf(contentOf(file.get(), path, size));
    found.size = size;
    return found;
}

}  // namespace trv::cli
