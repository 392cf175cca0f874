#pragma once

/// @file
/// The reader and writer of one assembly file.

#include <trvfiles/support/EFileIOStatus.h>

#include <QString>

#include <string>
#include <string_view>

class CTrvAssemblyData;
struct CFileFault;

/// Reads or writes one assembly file; constructed for one call.
///
/// REQUIRES: setInvalidDataPolicy() before each call.
///
/// Threads: one object on one thread; several objects at once.
class CTrvAssemblyIO {
public:
    /// @param fileName  the path of the file, used as it is
    explicit CTrvAssemblyIO(QString fileName);
    virtual ~CTrvAssemblyIO();

    CTrvAssemblyIO(const CTrvAssemblyIO&) = delete;
    CTrvAssemblyIO& operator=(const CTrvAssemblyIO&) = delete;

    /// Reads the file into a record; the statuses are those of CQvFilesIO::readTrvAssembly().
    ///
    /// @param fault  takes the reason of a failure, and notes
    EFileIOStatus read(CTrvAssemblyData& data, CFileFault* fault = nullptr);

    /// Writes a record to the file; the statuses are those of CQvFilesIO::writeTrvAssembly().
    ///
    /// @param fault  takes the reason of a failure
    EFileIOStatus write(const CTrvAssemblyData& data, CFileFault* fault = nullptr);

    /// read() of a file that has these bytes.
    ///
    /// @param fault  as for read()
    static EFileIOStatus readBytes(std::string_view bytes, CTrvAssemblyData& data,
                                   CFileFault* fault = nullptr);

    /// The bytes that write() gives the file.
    ///
    /// @param bytes  written on success only
    /// @param fault  as for write()
    /// @return eFileIOSuccess; eFileIOContentError as write()
    static EFileIOStatus writeBytes(std::string& bytes, const CTrvAssemblyData& data,
                                    CFileFault* fault = nullptr);

private:
    QString fileName_;
    int version_ = 0;
};
