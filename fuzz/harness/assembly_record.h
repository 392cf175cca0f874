#pragma once

/// @file
/// The record of an assembly, compared bit for bit, and how Qt's DOM reads it.

#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/support/CFileFault.h>
#include <trvfiles/support/EFileIOStatus.h>

#include <QByteArray>

#include <string>

namespace trv::fuzz {

/// What reading a document by the DOM gives.
struct Reading {
    EFileIOStatus status = eFileIOContentError;
    int version = 0;
    CTrvAssemblyData data;
    CFileFault fault;
};

/// Requires a reason of every failure, a place of each that the parser finds, and only characters
/// that XML allows outside of tags.
Reading readByDom(const QByteArray& text);

/// All of a record, its numbers bit for bit: comparing records allows for tolerances.
std::string bytesOf(const CTrvAssemblyData& data);

}  // namespace trv::fuzz
