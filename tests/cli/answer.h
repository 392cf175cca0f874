#pragma once

/// @file
/// The result of a command that runs in this process.

#include <cli/dispatch.h>

#include <QStringList>

#include <sstream>
#include <string>

namespace trv::testing {

struct Answer {
    int status;
    std::string out;
    std::string err;
};

inline Answer answerTo(const QStringList& arguments) {
    std::ostringstream out;
    std::ostringstream err;
    const cli::ExitStatus status = cli::run(arguments, {out, err});
    return {status, out.str(), err.str()};
}

inline QStringList words(const char* text) {
    return QString::fromUtf8(text).split(QLatin1Char(' '));
}

}  // namespace trv::testing
