#pragma once

/// @file
/// From a DOM document to the bytes of a file.

#include <QDomDocument>

#include <string>

namespace trv {

/// The text of an assembly document in UTF-8, as QDomDocument::toString(3) lays it out, but with
/// each element's attributes in the order of the format: `toString` writes them in an order that
/// differs from process to process, and it recurses.
///
/// REQUIRES: a document of elements and processing instructions alone, whose attributes are those
/// of the format.
std::string documentText(const QDomDocument& document);

}  // namespace trv
