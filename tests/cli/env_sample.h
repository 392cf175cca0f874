#pragma once

/// @file
/// The command in a directory that holds a copy of the sample installation.

#include <tests/cli/process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <tests/environment/installation.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <string>

namespace trv::testing {

inline std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

/// Replaces "\opt\shop" by "/opt/shop" if the text is the value of TRVHOME itself: if no "\"
/// follows, and in the name of the file that is loaded first.
inline std::string withSlashesInTrvhome(const std::string& text, const std::string& separator) {
    const std::string root = separator + "opt" + separator + "shop";
    const std::string homeFile = separator + "config" + separator + "environ.cfg";
    std::string result;
    std::size_t done = 0;
    for (std::size_t at = text.find(root); at != std::string::npos; at = text.find(root, done)) {
        result += text.substr(done, at - done);
        done = at + root.size();
        const bool goesOn = text.compare(done, separator.size(), separator) == 0;
        const bool isHomeFile = text.compare(done, homeFile.size(), homeFile) == 0;
        result += goesOn && !isHomeFile ? root : "/opt/shop";
    }
    return result + text.substr(done);
}

/// Replaces "\" by "/" in the native paths of configuration files below "\opt\shop". A "'" follows
/// those that are in the runtime's own form, which do not change.
inline std::string withSlashesInOrigins(const std::string& text) {
    const std::string root = "\\\\opt\\\\shop";
    const std::string file = "environ.cfg";
    std::string result;
    std::size_t done = 0;
    for (std::size_t at = text.find(root); at != std::string::npos; at = text.find(root, done)) {
        result += text.substr(done, at - done);
        done = std::min(text.find_first_of(" ':;\"\n", at), text.size());
        const std::string path = text.substr(at, done - at);
        const bool isFile =
            path.size() > file.size() && path.substr(path.size() - file.size()) == file;
        const bool isNative = isFile && text.compare(done, 1, "'") != 0;
        result += isNative ? replaced(path, "\\\\", "/") : path;
    }
    return result + text.substr(done);
}

/// The text with the root of the installation replaced by "/opt/shop". A root with "\" becomes
/// "\opt\shop", in JSON "\\opt\\shop". On Windows TRVHOME has "\" as well.
inline std::string asAtOptShop(std::string text, const std::string& root) {
    const std::string json = replaced(backslashed(root), "\\", "\\\\");
    text = replaced(text, json, "\\\\opt\\\\shop");
    text = replaced(text, backslashed(root), "\\opt\\shop");
    text = replaced(text, std::filesystem::path(root).generic_string(), "/opt/shop");
    if (root != backslashed(root)) return text;
    text = withSlashesInOrigins(text);
    return withSlashesInTrvhome(withSlashesInTrvhome(text, "\\\\"), "\\");
}

/// A path below "/opt/shop" as out() shows it on this system.
inline std::string native(const std::string& path) {
    if (!platform::backslash_separates()) return path;
    const std::string shown = replaced(backslashed(path), "\\", "\\\\");
    return withSlashesInTrvhome(withSlashesInOrigins(shown), "\\\\");
}

/// The process finds the installation by TRVHOME and knows no other variable of the runtime.
class EnvCommand : public ::testing::Test {
protected:
    EnvCommand() {
        std::filesystem::copy(TRV_SAMPLE_PROJECT "/installation", directory_ / "shop",
                              std::filesystem::copy_options::recursive);
        for (const char* name : {"TRVHOME_LS",
                                 "TRVZONE",
                                 "TRVTMPDIR",
                                 "TRVTMP",
                                 "TRVCONF",
                                 "TRVNULL",
                                 "ENVPATH",
                                 "CFGPATH",
                                 "TXTPATH",
                                 "WINDOWS",
                                 "PC",
                                 "SHOP_SHIFT",
                                 "COMPANY",
                                 "UNITS",
                                 "SPINDLE_LIMIT",
                                 "POST_OPTIONS",
                                 "PALLET_MARK",
                                 "FEED_LIMIT",
                                 "SITE",
                                 "VIEWER",
                                 "CELL",
                                 "LABEL",
                                 "NOBODY",
                                 "TRV_TRVFILES_VERBOSE",
                                 "TRV_EXPAND_MIN_BUFFER_SIZE"}) {
            process_.setVariable(name, nullptr);
        }
        process_.setVariable("TRVHOME", root().c_str());
    }

    std::string root() const { return (directory_ / "shop").string(); }

    void write(const char* name, std::string_view text) const {
        std::filesystem::create_directories((directory_ / name).parent_path());
        writeBytes(directory_ / name, text);
    }

    /// @return whether it was created; the file system of Windows has no named pipes
    bool makePipe(const char* name) {
        return process_.start(QStringLiteral("mkfifo"), {QString::fromLatin1(name)}) == 0;
    }

    int run(std::initializer_list<const char*> arguments) {
        QStringList list(QStringLiteral("env"));
        for (const char* argument : arguments)
            list += QString::fromUtf8(argument);
        return process_.run(list);
    }

    /// The output, as if the installation were in /opt/shop.
    std::string out() const { return asAtOptShop(process_.out(), root()); }
    std::string err() const { return asAtOptShop(process_.err(), root()); }

    TemporaryDirectory directory_;
    Process process_{directory_.path()};
};

}  // namespace trv::testing
