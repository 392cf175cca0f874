#pragma once

/// @file
/// The reader and writer of one machine context file.

#include <trvfiles/machine_context/TrvIniFile.h>
#include <trvfiles/support/EFileIOStatus.h>

#include <QString>

#include <string>
#include <string_view>

class CMachineContextData;
struct CFileFault;

namespace trv {
struct ContextField;
}

/// Reads or writes one machine context file; constructed for one call.
///
/// Reading takes the file as CSectionedFile parses it; writing fills the store of TrvIniFile and
/// saves it. Neither expands a value or loads the environment.
///
/// Threads: writing as the whole runtime, one at a time; readers on several threads at once.
class CMachineContextIO : public TrvIniFile {
public:
    /// @param path  the path of the file, used as it is
    explicit CMachineContextIO(QString path);
    ~CMachineContextIO() override;

    /// Reads the file into a record; the statuses are those of CQvFilesIO::readMachineContext().
    ///
    /// @param fault  takes the reason of a failure, and notes; for a key that is missing the line
    ///               of its section's header
    EFileIOStatus read(CMachineContextData& data, CFileFault* fault = nullptr);

    /// Writes a record to the file; the statuses are those of CQvFilesIO::writeMachineContext().
    ///
    /// @param held   a replacement of this file, if the caller has read or checked something since
    ///               it holds it; nullptr to hold the file for the save alone
    /// @param fault  takes the reason of a failure
    EFileIOStatus write(const CMachineContextData& data, trv::file_replacement* held = nullptr,
                        CFileFault* fault = nullptr);

    /// read() of a file that has these bytes.
    ///
    /// @param fault  as for read()
    static EFileIOStatus readText(std::string_view text, CMachineContextData& data,
                                  CFileFault* fault = nullptr);

    /// The text that write() gives the file, with LF as line end.
    ///
    /// @param text   written on success only
    /// @param fault  takes the reason of a failure
    /// @return eFileIOSuccess; eFileIOContentError or eFileIOStructureError as write()
    static EFileIOStatus writeText(std::string& text, const CMachineContextData& data,
                                   CFileFault* fault = nullptr);

private:
    EFileIOStatus fill(const CMachineContextData& data, CFileFault* fault);
    EFileIOStatus writeFields(const CMachineContextData& data, CFileFault* fault);
    bool writeSection(const trv::ContextField* first, const trv::ContextField* last,
                      const CMachineContextData& data);
    bool setText(int section, const char* key, std::string value);
    EFileIOStatus saveFile(trv::file_replacement* held, CFileFault* fault);

    QString path_;
};
