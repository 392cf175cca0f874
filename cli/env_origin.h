#pragma once

/// @file
/// Where the text of a variable or a path list comes from, and how paths of the runtime are
/// printed.

#include <QJsonObject>
#include <QString>

#include <cstdint>
#include <string>

namespace trv {
struct message_store;
}

namespace trv::cli {

struct Origin {
    enum class Kind {
        /// A line of a configuration file.
        file,
        /// Set by the runtime or the host.
        program,
        /// A variable of the process environment.
        environment,
        /// Computed for the work zone: its temporary directory.
        workZone
    };

    Kind kind = Kind::program;
    /// The file as the runtime spells it, and the line; empty and 0 for any other kind.
    std::string file;
    int line = 0;
    /// The name of the variable in the process environment; empty for any other kind.
    std::string variable;
};

/// The origin of a text of a store.
Origin originOf(const message_store& store, std::int32_t text);

/// A path of the runtime in the spelling of the system: each run of "/" and "\" is one separator,
/// "/" on POSIX and "\" on Windows. The two at the front of a network path of Windows stay.
QString nativeSpelling(const std::string& path);

/// "/opt/shop/site/environ.cfg:4", "set by program", "environment variable SITE" or "work zone",
/// without hidden characters.
QString originText(const Origin& origin);

/// Adds the keys `origin`, `file` and `line`. The last two are null unless a file is the origin.
void addOrigin(const Origin& origin, QJsonObject& object);

}  // namespace trv::cli
