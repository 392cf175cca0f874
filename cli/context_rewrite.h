#pragma once

/// @file
/// What a machine context file holds that its record does not, and that is lost when the record is
/// written over it.

#include <QString>
#include <QStringList>

namespace trv::cli {

struct RewriteLoss {
    /// The first line, counted from 1, that a written file does not have: a comment, an unknown
    /// section or key, an earlier section or key of the same name, another version; 0 if there is
    /// none. Blank lines do not count.
    int line = 0;
    QString lineText;

    /// The first field, in the order of the format, whose value would change, and why; empty if
    /// there is none.
    QString field;
    QString value;
    QString reason;
};

/// Looks into a file that can be read as a machine context.
///
/// @param newFields  the names of the fields that get new values
RewriteLoss rewriteLoss(const QString& name, const QStringList& newFields);

}  // namespace trv::cli
