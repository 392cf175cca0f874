#pragma once

/// @file
/// Where a page is written.

#include <cli/input_files.h>

#include <QString>
#include <QStringList>

#include <functional>
#include <ostream>

namespace trv::cli {

/// The name of the page of a file: its name without the directory and the ending, and ".html", in
/// the current directory. Standard input gives "view.html".
QString pageNameOf(const QString& name);

struct PageTarget {
    QString name;
    /// Files that are never replaced.
    QStringList inputs;
    /// Whether an existing file is replaced that is not a page of this command.
    bool isForced = false;
};

/// Writes a page to a file. What the file was before is whole until the new page takes its place.
///
/// @param write  writes the page
/// @return a problem for a file that is not replaced, or that cannot be written
Problem savePage(const PageTarget& target, const std::function<void(std::ostream&)>& write);

}  // namespace trv::cli
