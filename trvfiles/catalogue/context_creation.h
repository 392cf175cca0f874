#pragma once

/// @file
/// How the two files of a machine context are created, and what is removed when that fails.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/environment/file_replacement.h>

#include <QString>

#include <filesystem>
#include <optional>

class CMachineContextData;

namespace trv {

/// Creates a context: first its reference file as a copy of an axis file, then the context's file.
///
/// From the constructor to the destructor the context's temporary file is locked. So only one of
/// several callers creates a context at a time; each of the others waits, and then finds what the
/// first one has created.
class ContextCreation {
public:
    /// What happens to a file that exists. With `refused` it stays, and so does a link whose target
    /// does not exist.
    using existing = file_replacement::existing;

    /// Waits until no other caller creates this context or saves it. Nothing is reported.
    ///
    /// @param contextFile  the absolute path of the context's file
    /// @param what         what happens if that exists
    ContextCreation(QString contextFile, existing what);
    /// Removes the reference file, unless write() was successful, and then releases the lock.
    ~ContextCreation();
    ContextCreation(const ContextCreation&) = delete;
    ContextCreation& operator=(const ContextCreation&) = delete;

    /// Copies as CQvFilesIO::copyFile() does: if the axis file cannot be opened, an empty reference
    /// file stays. Nothing is copied while another caller holds the context: write() reports that.
    ///
    /// @param what  what happens if the reference file exists
    /// @return false if one of the files cannot be opened
    bool copyAxis(const QString& axisFile, const QString& referenceFile, existing what);

    /// Writes the context's file.
    ///
    /// If the temporary file could not be opened, this is reported through the fatal channel, which
    /// may end the process: by then the reference file is gone. A context's file that exists and is
    /// refused is a failure without a report.
    ///
    /// @return whether the context is complete
    bool write(const CMachineContextData& record);

private:
    bool failedWith(int reason) const;
    void removeReference();

    QString contextFile_;
    /// Has no value if narrow text cannot hold the path.
    std::optional<file_replacement> held_;
    /// The path of the copy, while it may have to be removed. A std::filesystem::path, so that
    /// removing it takes no memory.
    std::filesystem::path reference_;
};

}  // namespace trv
