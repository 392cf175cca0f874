#pragma once

/// @file
/// From the DOM document of an assembly file to its record.

#include <trvfiles/support/EFileIOStatus.h>

#include <QDomDocument>

class CTrvAssemblyData;
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

}  // namespace trv
