#pragma once

/// @file
/// The catalogue of machine contexts.

#include <trvfiles/export.h>

#include <string>
#include <vector>

/// Finds, chooses and creates machine contexts.
///
/// A context is a pair of files in one directory: "<name>.mctx", and the reference axis file
/// "[stockposition@<name>]<axis>.ref", which the context names as its machine position. A
/// directory's own axis file is "transfo.dat".
///
/// No operation prints or throws for a file problem. One problem is reported: a context whose
/// temporary file cannot be opened, through the fatal channel, whose default handler ends the
/// process. If the handler returns, the operation fails.
///
/// Creation, both kinds:
/// - A file "exists" if it can be opened for reading. Any other file is created exclusively: if its
///   name is taken, the operation fails and nothing is overwritten. A link is never followed to
///   create a file.
/// - If the context cannot be written, its reference file is removed, before anything is reported.
///   That is the copy which this call has made, also if it has overwritten an older reference file.
///   Nothing else is removed.
/// - Several processes may create contexts in a directory at the same time. Those that create one
///   context wait for each other, and one of them succeeds. The others find the two files and fail,
///   or report the temporary file if they have waited for 10 seconds.
///
/// Threads: one at a time, with the whole runtime.
class TRV_EXPORT CMachineContextUtils {
public:
    /// The class has no members, so copying and assigning do nothing.
    CMachineContextUtils() = default;
    CMachineContextUtils(const CMachineContextUtils& other) = default;
    ~CMachineContextUtils() = default;

    /// Does nothing.
    CMachineContextUtils& operator=(const CMachineContextUtils& other);
    CMachineContextUtils& operator=(CMachineContextUtils&& other) noexcept;

    /// The directory of the installation's favourite contexts: the variable TRV_MCTX_DEF, expanded;
    /// if that is not defined or empty, "$TRVHOME\standard\machine_context". The directory need not
    /// exist. The first call may load the environment.
    ///
    /// @return an absolute path with "/" between its parts; empty if neither is known, or
    ///         if an expanded text takes 400 bytes and more
    static std::wstring sGetFavoriteMachineContextDirectoryW();

    /// The favourite contexts below a directory: in each of its directories, sorted by name without
    /// regard to case, the file "<directory>/<directory>.mctx"; if there is none, those further
    /// down. Hidden directories (on Linux those whose names begin with a dot) are ignored.
    ///
    /// Links to directories are followed, but not into a directory that is being walked already.
    /// Each directory is listed once, and entered only if that leads to a context. A context to
    /// which several paths lead is in the result with each of them. So the result of directories
    /// that link to each other is as long as the number of paths through them.
    ///
    /// @param directory  empty for sGetFavoriteMachineContextDirectoryW()
    /// @return the paths, each beginning with the directory as given (without the "."
    ///         of the current one); empty if the directory cannot be listed
    static std::vector<std::wstring> sGetFavoriteMachineContext(std::wstring directory);

    /// Chooses the default context: the first one of the highest machine position.
    ///
    /// @param files     bare file names; those of default contexts, "[MACHINE_POSITION_<n>].mctx",
    ///                  count, whatever follows the number
    /// @param index     the index of the chosen file, counted from 0, or -1
    /// @param position  its machine position, or -1
    /// @return whether there is one
    static bool sGetDefaultMachineContext(std::vector<std::wstring> files, int& index,
                                          int& position);

    /// Creates the default context of a machine position: "[MACHINE_POSITION_<n>].mctx" and its
    /// reference file, a copy of the directory's "transfo.dat". If that is missing, it is created
    /// as the identity, complete from the moment when it appears. If one of the two files exists,
    /// both are written anew, and the existing one is lost if the reference file is the one and the
    /// context cannot be written.
    ///
    /// @param directory      has to exist; empty for the current one
    /// @param position       from 1
    /// @param contextFile    takes the bare name of the context file on success; may be nullptr
    /// @param referenceFile  likewise
    /// @return false for a position below 1, if both files exist, and if a file cannot be written;
    ///         a "transfo.dat" that has been created stays
    static bool sCreateDefaultMachineContext(const std::wstring& directory, int position,
                                             std::wstring* contextFile,
                                             std::wstring* referenceFile);

    /// Creates a context for a machine.
    ///
    /// Both axis files are looked for in the directory, but copied and removed by their bare names
    /// in the current directory: a host makes the two the same. A reference file that exists in
    /// another current directory is overwritten. If the current directory lacks the axis file, the
    /// copy leaves an empty reference file there.
    ///
    /// @param directory          empty for the current one
    /// @param machine            the machine's file name; without ".mac" it begins a generated name
    /// @param referenceAxisFile  the axis file to copy; empty for "transfo.dat"
    /// @param contextFile        the name of the context file; empty for "<machine>[<axis>].mctx"
    /// @param createdContextFile    takes the name of the context file on success; may be nullptr
    /// @param createdReferenceFile  likewise, of the reference file
    /// @return false if the axis file does not exist, if one of the files to create exists, and if
    ///         a file cannot be written
    static bool sCreateMachineContext(const std::wstring& directory, const std::wstring& machine,
                                      const std::wstring& referenceAxisFile,
                                      const std::wstring& contextFile,
                                      std::wstring* createdContextFile,
                                      std::wstring* createdReferenceFile);

    /// The same operations in narrow text: the local 8-bit code page, UTF-8 on Linux. In a result,
    /// characters that the code page of Windows lacks are replaced: then it is the name of another
    /// file.
    static std::string sGetFavoriteMachineContextDirectory();
    static std::vector<std::string> sGetFavoriteMachineContextNarrow(const std::string& directory);
    static bool sGetDefaultMachineContextNarrow(const std::vector<std::string>& files, int& index,
                                                int& position);
    static bool sCreateDefaultMachineContextNarrow(const std::string& directory, int position,
                                                   std::string* contextFile,
                                                   std::string* referenceFile);
    static bool sCreateMachineContextNarrow(const std::string& directory,
                                            const std::string& machine,
                                            const std::string& referenceAxisFile,
                                            const std::string& contextFile,
                                            std::string* createdContextFile,
                                            std::string* createdReferenceFile);
};
