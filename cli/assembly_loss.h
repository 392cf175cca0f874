#pragma once

/// @file
/// The content of an assembly file that is lost if the file is read into a record and the record
/// is written over it.

#include <QIODevice>
#include <QString>

namespace trv::cli {

struct AssemblyLoss {
    /// Counted from 1; 0 if nothing is lost.
    int line = 0;
    /// Human-readable: "a comment", "the element <Tool>".
    QString what;
};

/// Finds the first content of a well-formed document that a written file does not have: a comment,
/// an instruction, a document type, text, an element or attribute that the format does not have or
/// has only once, components beside a geometry file, another version. What reading reports in a
/// note is not looked for. White space and the order of attributes do not count.
///
/// @param device  open for reading, at its beginning
AssemblyLoss findAssemblyLoss(QIODevice& device);

}  // namespace trv::cli
