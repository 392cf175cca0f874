#pragma once

/// @file
/// The two ways to read an assembly document. Both feed an AssemblyBuilder, which has the rules of
/// the format.

#include <trvfiles/support/EFileIOStatus.h>

#include <QDomDocument>

class CTrvAssemblyData;
class QIODevice;
struct CFileFault;

namespace trv {

/// Fills a record from a document.
///
/// @param version  takes the root's version
/// @param data     its root component is replaced on success; its dimension as soon as it is read
/// @param fault    takes the reason of a failure and its place; notes are appended to those that it
///                 holds
/// @return eFileIOSuccess, eFileIOContentError or eFileIOStructureError
EFileIOStatus readDocument(const QDomDocument& document, int& version, CTrvAssemblyData& data,
                           CFileFault* fault = nullptr);

/// What readPlainDocument() may accept.
enum class Accepted {
    /// Every document that readDocument() reads without leaving out a component.
    complete,
    /// Only documents about which readDocument() has no note.
    unaltered,
};

/// Reads a plain document (see PlainScanner) without the DOM, in 0.02 of its time.
///
/// @param device  not sequential; read from its current position to any other one
/// @return whether the document is plain, accepted and read with eFileIOSuccess: version and data
/// are
///         then those that readDocument() would give. If not, both are unchanged, and the document
///         has to be read by parseDocument() and readDocument().
/// @throws std::bad_alloc
bool readPlainDocument(QIODevice& device, Accepted accepted, int& version, CTrvAssemblyData& data);

/// Reads an assembly: a plain document without the DOM, any other one with it.
///
/// @param device  open for reading, at its beginning; read once if it cannot go back, as a pipe
/// @param fault   takes the reason of a failure and its place, and notes; has to be empty
/// @return as readDocument(); eFileIOContentError too if parseDocument() does not accept the
///         document
/// @throws std::bad_alloc
EFileIOStatus readAnyDocument(QIODevice& device, int& version, CTrvAssemblyData& data,
                              CFileFault* fault = nullptr);

}  // namespace trv
