// Any machine context record. It is written and read back into a record with other fields.

#include <fuzz/harness/context_fields.h>
#include <fuzz/harness/host_channels.h>
#include <fuzz/harness/input_reader.h>
#include <fuzz/harness/own_directory.h>
#include <fuzz/harness/require.h>
#include <fuzz/harness/storage_balance.h>
#include <fuzz/targets.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <filesystem>
#include <string>

namespace trv::fuzz {
namespace {

// Characters of every kind, including halves of surrogate pairs and zeros.
std::wstring wideText(std::string_view bytes) {
    constexpr unsigned firstBeyondAscii = 0x80;
    std::wstring text;
    for (const char byte : bytes) {
        const unsigned code = static_cast<unsigned char>(byte);
        text += static_cast<wchar_t>(code < firstBeyondAscii ? code : code << 8 | code);
    }
    return text;
}

CMachineContextData recordOf(InputReader& input) {
    const unsigned wideTexts = input.byte();
    const bool hasPlainNumbers = (wideTexts & 0x80U) != 0;
    double numbers[5];
    for (double& number : numbers)
        number = hasPlainNumbers ? input.number(65536) / 64.0 - 512 : input.real();
    CMachineContextData data;
    data.setOriginProgram(numbers[0], numbers[1], numbers[2]);
    data.setMachineProximity(numbers[3]);
    data.setClampingProximity(numbers[4]);
    for (std::size_t i = 0; i < contextTexts.size(); ++i) {
        const std::string_view bytes = input.piece();
        if ((wideTexts >> i & 1U) != 0) {
            (data.*contextTexts[i].setWide)(wideText(bytes));
        } else {
            (data.*contextTexts[i].set)(std::string(bytes));
        }
    }
    return data;
}

}  // namespace

void checkMachineContextRoundTrip(std::string_view input) {
    const HostChannels channels;
    const StorageBalance balance;
    InputReader reader(input);
    const CMachineContextData data = recordOf(reader);
    CQvFilesIO files(ownDirectory().wide());
    require(files.writeMachineContext("trip.mctx", data) == eFileIOSuccess,
            "any record can be written");
    require(!std::filesystem::exists(ownFile("trip.mctx.messages.tmp")),
            "no temporary file is left");

    CMachineContextData back;
    setFields(back, distinctFields());
    require(files.readMachineContext("trip.mctx", back) == eFileIOSuccess,
            "a written file can be read");
    require(fieldsOf(back) == readBack(fieldsOf(data), distinctFields()),
            "each field reads back as documented, whatever the others are");

    const std::string bytes = testing::bytesOf(ownFile("trip.mctx"));
    require(files.writeMachineContext("trip.mctx", data) == eFileIOSuccess &&
                testing::bytesOf(ownFile("trip.mctx")) == bytes,
            "the same record gives the same bytes");
    require(HostChannels::fatalCount == 0 && HostChannels::errorCount == 0, "nothing is reported");
}

}  // namespace trv::fuzz
