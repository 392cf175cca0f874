// The linker redirects the calls of writeAssembly() in the test program to the function below, so
// no test can write an assembly that is not validated. Child processes of a test are not covered.

#include <tests/assembly/schema_validation.h>
#include <tests/assembly/written_assemblies.h>
#include <trvfiles/assembly/assembly_writer.h>
#include <trvfiles/assembly/block_writer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <vector>

extern "C" {
bool __real__ZN3trv13writeAssemblyERK16CTrvAssemblyDataRNS_11BlockWriterE(
    const CTrvAssemblyData& data, trv::BlockWriter& out);
bool __wrap__ZN3trv13writeAssemblyERK16CTrvAssemblyDataRNS_11BlockWriterE(
    const CTrvAssemblyData& data, trv::BlockWriter& out);
}

namespace trv::testing {
namespace {

struct Record {
    std::mutex mutex;
    std::set<std::string> documents;
};

Record& record() {
    static Record instance;
    return instance;
}

void remember(std::string document) {
    const std::lock_guard lock(record().mutex);
    record().documents.insert(std::move(document));
}

std::string withoutForbiddenCharacters(std::string document) {
    const auto isForbidden = [](unsigned char byte) {
        return byte < ' ' && byte != '\t' && byte != '\n' && byte != '\r';
    };
    std::replace_if(document.begin(), document.end(), isForbidden, '?');
    return document;
}

class Validation : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override { record().documents.clear(); }

    void OnTestEnd(const ::testing::TestInfo&) override {
        std::vector<std::string> documents;
        for (const std::string& document : writtenAssemblies())
            documents.push_back(withoutForbiddenCharacters(document));
        if (documents.empty()) return;
        const SchemaAnswer answer = askSchema(documents);
        const auto count = std::count(answer.accepted.begin(), answer.accepted.end(), false);
        EXPECT_EQ(count, 0) << "written assemblies that the schema rejects:\n"
                            << answer.output.substr(0, 2000);
    }
};

// The program takes the listener over.
const bool isListening = [] {
    ::testing::UnitTest::GetInstance()->listeners().Append(new Validation);
    return true;
}();

}  // namespace

std::set<std::string> writtenAssemblies() {
    const std::lock_guard lock(record().mutex);
    return record().documents;
}

}  // namespace trv::testing

bool __wrap__ZN3trv13writeAssemblyERK16CTrvAssemblyDataRNS_11BlockWriterE(
    const CTrvAssemblyData& data, trv::BlockWriter& out) {
    std::string document;
    trv::BlockWriter copy([&document](std::string_view block) {
        document += block;
        return true;
    });
    static_cast<void>(
        __real__ZN3trv13writeAssemblyERK16CTrvAssemblyDataRNS_11BlockWriterE(data, copy));
    trv::testing::remember(std::move(document));
    return __real__ZN3trv13writeAssemblyERK16CTrvAssemblyDataRNS_11BlockWriterE(data, out);
}
