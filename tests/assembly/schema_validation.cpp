#include <tests/assembly/schema_validation.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>

#include <array>
#include <cstdio>

namespace trv::testing {
namespace {

std::string quoted(const std::string& path) {
    return " '" + path + '\'';
}

std::string outputOf(const std::string& call) {
    std::FILE* const pipe = ::popen(call.c_str(), "r");
    std::string output;
    std::array<char, 4096> part;
    for (std::size_t size = 1; pipe != nullptr && size > 0;) {
        size = std::fread(part.data(), 1, part.size(), pipe);
        output.append(part.data(), size);
    }
    if (pipe != nullptr) ::pclose(pipe);
    return output;
}

}  // namespace

SchemaAnswer askSchema(const std::vector<std::string>& documents) {
    const TemporaryDirectory directory;
    const auto pathOf = [&](std::size_t i) { return directory.text() + '/' + std::to_string(i); };
    // Without --huge xmllint takes 256 levels of elements at most.
    std::string call =
        quoted(TRV_XMLLINT) + " --huge --nonet --noout --schema" + quoted(TRV_ASSEMBLY_SCHEMA);
    for (std::size_t i = 0; i < documents.size(); ++i) {
        writeBytes(pathOf(i), documents[i]);
        call += quoted(pathOf(i));
    }
    SchemaAnswer answer;
    answer.output = outputOf(call + " 2>&1");
    for (std::size_t i = 0; i < documents.size(); ++i) {
        const std::string line = pathOf(i) + " validates\n";
        answer.accepted.push_back(answer.output.find(line) != std::string::npos);
    }
    return answer;
}

}  // namespace trv::testing
