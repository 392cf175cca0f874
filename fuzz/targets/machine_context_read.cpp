// A machine context file of any bytes. It is read, compared with a second reader, written and read
// again.

#include <fuzz/harness/context_fields.h>
#include <fuzz/harness/host_channels.h>
#include <fuzz/harness/own_directory.h>
#include <fuzz/harness/require.h>
#include <fuzz/harness/storage_balance.h>
#include <fuzz/targets.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/machine_context/CSectionedFile.h>

#include <cstdlib>
#include <sstream>
#include <string>

namespace trv::fuzz {
namespace {

// A second implementation of the reader's rules, on the sections of the file.
class PlainReader {
public:
    PlainReader(const std::string& text, CMachineContextData& data) : data_(data) {
        std::istringstream stream(text);
        file_.parse(stream);
    }

    EFileIOStatus read() {
        take("header", "comment", 0);
        take("header", "name", 1);
        if (has("machine")) {
            if (!take("machine", "name", 2) || !take("machine", "position", 3))
                return eFileIOContentError;
            if (find("machine", "proximity")) data_.setMachineProximity(number());
        }
        if (has("postpro")) {
            if (!find("postpro", "origin_program")) return eFileIOContentError;
            takeOrigin();
            take("postpro", "reference_axis", 6);
        }
        take("part", "surface_group", surfaceGroupText);
        take("clamping_system", "name", clampingSystemText);
        if (find("clamping_system", "proximity")) data_.setClampingProximity(number());
        return eFileIOSuccess;
    }

private:
    bool has(const char* section) const { return file_.section(section, true).lineCount() != 0; }
    bool find(const char* section, const char* key) {
        return file_.value(section, true, key, true, value_);
    }
    bool take(const char* section, const char* key, std::size_t text) {
        if (!find(section, key)) return false;
        (data_.*contextTexts[text].set)(value_);
        return true;
    }
    double number() const { return std::strtod(value_.c_str(), nullptr); }
    void takeOrigin() {
        double origin[3];
        const char* next = value_.c_str();
        for (double& coordinate : origin) {
            char* end = nullptr;
            coordinate = std::strtod(next, &end);
            if (end == next) return;
            next = end;
        }
        data_.setOriginProgram(origin[0], origin[1], origin[2]);
    }

    CMachineContextData& data_;
    CSectionedFile file_;
    std::string value_;
};

// The C library also reads numbers that the format does not define.
bool hasForeignNumbers(const std::string& text) {
    return text.find_first_of("xX(") != std::string::npos;
}

}  // namespace

void checkMachineContextRead(std::string_view input) {
    const HostChannels channels;
    const StorageBalance balance;
    const std::string text(input);
    writeOwnFile("read.mctx", text);
    CQvFilesIO files(ownDirectory().wide());

    CMachineContextData data;
    setFields(data, distinctFields());
    const EFileIOStatus status = files.readMachineContext("read.mctx", data);
    require(status == eFileIOSuccess || status == eFileIOContentError, "the status is 1 or 4");
    CMachineContextData expected;
    setFields(expected, distinctFields());
    require(status == PlainReader(text, expected).read(), "the status is as the rules say");
    require(fieldsOf(data) == fieldsOf(expected) || hasForeignNumbers(text),
            "the fields are as the rules say");

    require(files.writeMachineContext("written.mctx", data) == eFileIOSuccess,
            "any record can be written");
    CMachineContextData again;
    setFields(again, distinctFields());
    require(files.readMachineContext("written.mctx", again) == eFileIOSuccess,
            "a written file can be read");
    require(fieldsOf(again) == readBack(fieldsOf(data), distinctFields()),
            "a written file reads back as documented");
    require(HostChannels::fatalCount == 0 && HostChannels::errorCount == 0, "nothing is reported");
}

}  // namespace trv::fuzz
