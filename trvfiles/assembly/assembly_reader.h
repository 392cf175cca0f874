#pragma once

/// @file
/// From the DOM document of an assembly file to its record.

#include <trvfiles/assembly/document_parser.h>
#include <trvfiles/support/EFileIOStatus.h>

#include <QDomDocument>

class CTrvAssemblyData;

namespace trv {

/// What a person may want to know beyond the status of a read.
struct ReadReport {
    /// The reason of a failure and its place.
    ParseFault fault;
    /// How many components were left out because their "Orientation" is not complete, with all that
    /// is below them, and the line of the first.
    int leftOut = 0;
    int firstLeftOutLine = 0;
};

/// Fills a record from a document.
///
/// @param version  takes the root's version
/// @param data     its root component is replaced on success; its dimension as soon as it is read
/// @param report   takes what happened; REQUIRES: as default-made
/// @return eFileIOSuccess, eFileIOContentError or eFileIOStructureError
EFileIOStatus readDocument(const QDomDocument& document, int& version, CTrvAssemblyData& data,
                           ReadReport& report);

}  // namespace trv
