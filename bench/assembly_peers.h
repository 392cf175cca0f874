#pragma once

/// @file
/// XML libraries that read and write the assembly of plain_assembly.h, each in the way that its
/// documentation recommends.

#include <bench/plain_assembly.h>

#include <string>

namespace trv::bench {

/// How a peer converts the text of a number.
enum class Numbers { asDouble, fromChars };

/// Reads with pugi::xml_document::load_file(). `asDouble` takes numbers by
/// xml_attribute::as_double().
PlainAssembly readByPugixml(const std::string& path, Numbers numbers);

/// Builds a pugi::xml_document and saves it with an indentation of three blanks.
void writeByPugixml(const std::string& path, const PlainAssembly& assembly);

/// Reads with expat, in blocks of 64 KiB.
PlainAssembly readByExpat(const std::string& path);

/// Reads with the xmlTextReader of libxml2.
PlainAssembly readByLibxml2(const std::string& path);

}  // namespace trv::bench
