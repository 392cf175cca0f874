#pragma once

/// @file
/// The reader and writer of one assembly file.

#include <trvfiles/assembly/assembly_reader.h>
#include <trvfiles/support/EFileIOStatus.h>

#include <QString>

class CTrvAssemblyData;

/// Reads or writes one assembly file, made for one call.
///
/// REQUIRES: setInvalidDataPolicy() before each call.
///
/// Threads: one object on one thread; several objects at once.
class CTrvAssemblyIO {
public:
    /// @param fileName  the path of the file, opened as it stands
    explicit CTrvAssemblyIO(QString fileName);
    virtual ~CTrvAssemblyIO();

    CTrvAssemblyIO(const CTrvAssemblyIO&) = delete;
    CTrvAssemblyIO& operator=(const CTrvAssemblyIO&) = delete;

    /// Reads the file into a record; the statuses are those of CQvFilesIO::readTrvAssembly().
    ///
    /// @param report  takes what a person may want to know, where it is asked for
    EFileIOStatus read(CTrvAssemblyData& data, trv::ReadReport* report = nullptr);

    /// Writes a record to the file; the statuses are those of CQvFilesIO::writeTrvAssembly().
    EFileIOStatus write(const CTrvAssemblyData& data);

private:
    trv::DomTree tree_;
    QString fileName_;
    int version_ = 0;
};
