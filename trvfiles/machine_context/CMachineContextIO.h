#pragma once

/// @file
/// The reader and writer of one machine context file.

#include <trvfiles/machine_context/TrvIniFile.h>
#include <trvfiles/support/EFileIOStatus.h>

#include <QString>

#include <string>

class CMachineContextData;

namespace trv {

/// What a section of a machine context file is read without, though it has to be there.
struct MissingKey {
    std::string section;
    std::string key;
    /// The line of the section's header, counted from 1.
    int headerLine = 0;
};

}  // namespace trv

/// Reads or writes one machine context file, made for one call.
///
/// Reading takes the file as CSectionedFile parses it; writing fills the store of TrvIniFile and
/// saves it. Neither expands a value or loads the environment.
///
/// Threads: writing as the whole runtime, one at a time; readers on several threads at once.
class CMachineContextIO : public TrvIniFile {
public:
    /// @param path  the path of the file, opened as it stands
    explicit CMachineContextIO(QString path);
    ~CMachineContextIO() override;

    /// Reads the file into a record; the statuses are those of CQvFilesIO::readMachineContext().
    ///
    /// @param missing  where asked for, takes what eFileIOContentError is about
    EFileIOStatus read(CMachineContextData& data, trv::MissingKey* missing = nullptr);

    /// Writes a record to the file; the statuses are those of CQvFilesIO::writeMachineContext().
    ///
    /// @param held  a replacement of this file, if the caller has read or checked something since
    ///              it holds it; nullptr to hold the file for the save alone
    EFileIOStatus write(const CMachineContextData& data, trv::file_replacement* held = nullptr);

private:
    bool setText(int section, const char* key, std::string value);
    bool setProximity(int section, double value);
    bool writeHeader(const CMachineContextData& data);
    bool writeMachine(const CMachineContextData& data);
    bool writePostprocessor(const CMachineContextData& data);
    bool writePart(const CMachineContextData& data);
    bool writeClampingSystem(const CMachineContextData& data);
    EFileIOStatus saveFile(trv::file_replacement* held);

    QString path_;
};
