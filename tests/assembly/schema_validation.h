#pragma once

#include <string>
#include <vector>

namespace trv::testing {

/// What xmllint says about documents and the schema of assembly files.
struct SchemaAnswer {
    /// Whether the schema accepts the document of this index.
    std::vector<bool> accepted;
    /// What xmllint has printed.
    std::string output;
};

/// Validates documents in one call of xmllint.
SchemaAnswer askSchema(const std::vector<std::string>& documents);

}  // namespace trv::testing
