#pragma once

/// @file
/// The entry point of a host for reading and writing project files.

#include <trvfiles/export.h>
#include <trvfiles/support/CFileFault.h>
#include <trvfiles/support/EFileIOStatus.h>

#include <string>
#include <string_view>

class CMachineContextData;
class CTrvAssemblyData;

/// Reads and writes the project files of one directory.
///
/// An instance holds the directory as it was given: it need not exist, and a relative or an empty
/// one is resolved against the current directory at each call. Names are used literally, "$", "?"
/// and "~" included. Narrow names are in the local 8-bit code page and end at their first zero
/// byte; wide names take every character. On Linux narrow text is UTF-8 in every locale and under
/// every codec that the host sets in Qt. There each "\" of a directory or a name acts as "/", so a
/// file whose name holds a "\" cannot be reached.
///
/// A path that no file can have gives eFileIOOpenError or false, and never opens another file. Such
/// a path holds a zero or, on Linux, narrow bytes that are not UTF-8 or a wide unit that is not a
/// character.
///
/// Two rules resolve names. Reads and writes clean the path ("sub/../f" is "f", whether or not
/// "sub" exists); absoluteFileName() and isfileExists() leave it as it is spelled. An absolute name
/// ignores the directory; on Windows "/f" is on the drive or the share of the directory. ":/f" is
/// the name of a Qt resource of the host: assemblies can be read from it, for all else no file has
/// this name. The empty name, "." and "sub/.." are the directory itself: nothing is read or
/// written. The static members use the path as it is, without a directory.
///
/// No operation throws or prints for a file problem: the status reports it. writeMachineContext()
/// may also report through the fatal channel. Running out of memory throws std::bad_alloc. The file
/// is closed in every case.
///
/// Each read and write has a form with a `fault`. It has the same outcome, and stores in `fault`
/// why the call has failed, with line and column, and what was read otherwise than the file says;
/// nullptr acts as the form without it. Reading with a `fault` takes longer if there is anything to
/// note: a plain assembly is then read a second time.
///
/// The members "...FromMemory" and "...ToMemory" read the bytes of a file from memory and write
/// them there. Their outcomes are those of the files: records, statuses, reasons, places and bytes.
/// What depends on a path does not exist for them: nothing is resolved or opened, no temporary
/// file, no lock, and no report through the fatal channel. No field of a record depends on the path
/// of its file. Texts in memory are the same on every system: a line is read with LF or CR LF as
/// its end and written with LF, and the byte 0x1A, which ends a text file on Windows, is an
/// ordinary one.
///
/// Threads: instances may be used on several threads at once, each with its own records. The
/// exception is writing machine contexts, also to memory, which runs on one thread at a time with
/// the whole runtime. Each call of an assembly member makes QDomImplementation::ReturnNullNode Qt's
/// process-wide policy for invalid XML data and leaves it so. It writes the policy only when it is
/// another one: calls at the same time do not race, but a host that sets another policy at the same
/// time does.
///
/// Lifetime: assemblies can be read and written until the process ends, also in handlers of
/// atexit() and in destructors of static objects. From the moment at which Qt destroys its text
/// codecs, documents have to be in UTF-8, UTF-16 or ISO-8859-1; others are an eFileIOContentError.
/// On Windows, narrow text beyond ASCII is then converted as ISO-8859-1.
class TRV_EXPORT CQvFilesIO {
public:
    /// Binds an instance to a directory; nullptr acts as the empty one.
    explicit CQvFilesIO(const char* directory);
    explicit CQvFilesIO(const std::string& directory);
    explicit CQvFilesIO(const std::wstring& directory);

    /// Copies the directory.
    CQvFilesIO(const CQvFilesIO& other);
    CQvFilesIO& operator=(const CQvFilesIO& other);
    ~CQvFilesIO();

    /// A move is a copy: the source keeps its directory, because without one it would read and
    /// write in the current directory. A copy may throw std::bad_alloc, so neither is noexcept.
    // NOLINTNEXTLINE(performance-noexcept-move-constructor)
    CQvFilesIO(CQvFilesIO&& other);
    // NOLINTNEXTLINE(performance-noexcept-move-constructor)
    CQvFilesIO& operator=(CQvFilesIO&& other);

    /// Reads a machine context file. Case counts in the names of sections and keys; other sections
    /// and keys are ignored.
    ///
    /// @param name  resolved against the directory; nullptr acts as the empty name
    /// @param data  takes the fields that the file sets, in the order of the format; all others
    ///              keep their values. After a failure the fields read until then are set.
    /// @param fault takes the reason of a failure, and notes; may be nullptr
    /// @return eFileIOSuccess; eFileIOOpenError when the file cannot be opened or read, or is
    ///         longer than 256 MiB; eFileIOContentError when there is a section "machine" without
    ///         "name" or "position", or "postpro" without "origin_program"
    EFileIOStatus readMachineContext(const char* name, CMachineContextData& data,
                                     CFileFault* fault);
    EFileIOStatus readMachineContext(std::wstring name, CMachineContextData& data,
                                     CFileFault* fault);
    EFileIOStatus readMachineContext(const char* name, CMachineContextData& data);
    EFileIOStatus readMachineContext(std::wstring name, CMachineContextData& data);

    /// Writes a machine context file. The text goes to a temporary file beside the target, which
    /// replaces the target in one step when it is complete and on the disk. If anything fails, the
    /// old file stays whole. A reader sees the old file or the new one, never a part.
    ///
    /// Several processes may write the same file. They wait for each other, for 10 seconds at most;
    /// the text of the last one stays. The file keeps its rights, and its owner if the system
    /// allows it. A symbolic link stays one, and the file to which it leads is replaced. Another
    /// hard link to the file keeps the old text.
    ///
    /// Line ends in texts become blanks, texts end at their first zero, the proximities are
    /// narrowed to single precision, and in a text a "+" followed, later, by a ")" loses what is
    /// between them, the ")" included.
    ///
    /// @param name  resolved against the directory; nullptr acts as the empty name
    /// @param data  the record to write
    /// @param fault takes the reason of a failure; may be nullptr
    /// @return eFileIOSuccess; eFileIOOpenError when the file cannot be saved. If the temporary
    ///         file cannot be opened, or another process writes it for too long, this is reported
    ///         through the fatal channel first, whose default handler ends the process.
    ///         eFileIOContentError or eFileIOStructureError when storage for a section runs out: no
    ///         file is touched then.
    EFileIOStatus writeMachineContext(const char* name, const CMachineContextData& data,
                                      CFileFault* fault);
    EFileIOStatus writeMachineContext(std::wstring name, const CMachineContextData& data,
                                      CFileFault* fault);
    EFileIOStatus writeMachineContext(const char* name, const CMachineContextData& data);
    EFileIOStatus writeMachineContext(std::wstring name, const CMachineContextData& data);

    /// Reads an assembly file.
    ///
    /// @param name  resolved against the directory; nullptr acts as the empty name
    /// @param data  its root component is assigned on success; its dimension may hold the file's
    ///              values after a failure too. References to the root stay valid.
    /// @param fault takes the reason of a failure, and notes; may be nullptr
    /// @return - eFileIOSuccess. A component below the root with an incomplete "Orientation" is
    ///           left out; that is not a failure.
    ///         - eFileIOOpenError when the file cannot be opened.
    ///         - eFileIOContentError when it is not well-formed XML; when it nests more than 2,000
    ///           elements, or more than 2,000 groups of a content model; when it declares an
    ///           entity; when a text, a comment, a CDATA section or a processing instruction holds
    ///           a character that XML does not allow, or a reference to one. All of this decides
    ///           before the root element does. Also when an integer "version", "Attributs" or the
    ///           root "Component" is missing.
    ///         - eFileIOStructureError when the root element is not "ComponentInfo" or the root
    ///           component has an incomplete "Orientation".
    /// @throws std::bad_alloc when memory runs out. Also when the file nests more than 200 elements
    ///         and the system has no second stack for it. The root component is then as it was.
    EFileIOStatus readTrvAssembly(const char* name, CTrvAssemblyData& data, CFileFault* fault);
    EFileIOStatus readTrvAssembly(std::wstring name, CTrvAssemblyData& data, CFileFault* fault);
    EFileIOStatus readTrvAssembly(const char* name, CTrvAssemblyData& data);
    EFileIOStatus readTrvAssembly(std::wstring name, CTrvAssemblyData& data);

    /// Writes an assembly file over an existing one. The same record always gives the same bytes. A
    /// component with a geometry file is written without its children.
    ///
    /// @param name  resolved against the directory; nullptr acts as the empty name
    /// @param data  the record to write
    /// @param fault takes the reason of a failure; may be nullptr
    /// @return eFileIOSuccess; eFileIOContentError when a component has neither a geometry file nor
    ///         children, when the tree is deeper than 999 components, or when a text holds U+FFFE
    ///         or U+FFFF: no file is touched then; eFileIOOpenError when the file cannot be opened;
    ///         eFileIOShortWrite when it was not written to its end
    EFileIOStatus writeTrvAssembly(const char* name, const CTrvAssemblyData& data,
                                   CFileFault* fault);
    EFileIOStatus writeTrvAssembly(std::wstring name, const CTrvAssemblyData& data,
                                   CFileFault* fault);
    EFileIOStatus writeTrvAssembly(const char* name, const CTrvAssemblyData& data);
    EFileIOStatus writeTrvAssembly(std::wstring name, const CTrvAssemblyData& data);

    /// Reads an axis file: one placement and up to three tags.
    ///
    /// @param fileName  resolved against the directory; nullptr acts as the empty name
    /// @param matrix    sixteen numbers, row by row, for row vectors: 0-2, 4-6 and 8-10 are the
    ///                  images of the x, y and z axes, 12-14 the translation in the project's
    ///                  length unit; written on success only; may be nullptr. The axes are the
    ///                  inverse of the block in the file: a written rotation is read as it was, a
    ///                  written scale as its reciprocal.
    /// @param tag1  set if the tag line holds it, otherwise unchanged
    /// @param tag2  likewise
    /// @param tag3  likewise
    /// @param fault takes the reason of a failure, and notes; may be nullptr
    /// @return eFileIOSuccess; eFileIOOpenError when the file cannot be opened; eFileIOContentError
    ///         when one of the four matrix lines is missing or does not hold four numbers
    EFileIOStatus readAxis(const char* fileName, double* matrix, int& tag1, int& tag2, int& tag3,
                           CFileFault* fault = nullptr);
    EFileIOStatus readAxis(std::wstring fileName, double* matrix, int& tag1, int& tag2, int& tag3,
                           CFileFault* fault);
    EFileIOStatus readAxis(std::wstring fileName, double* matrix, int& tag1, int& tag2, int& tag3);

    /// Writes an axis file over an existing one: the placement and its inverse with six decimals
    /// and, if none of the tags is negative, the tag line.
    ///
    /// @param fileName  resolved against the directory; nullptr acts as the empty name
    /// @param matrix    sixteen numbers as in readAxis(); nullptr writes zeros
    /// @param tag1  the first tag
    /// @param tag2  the second tag
    /// @param tag3  the third tag
    /// @param fault takes the reason of a failure, and of a write that was not complete although
    ///              the status is eFileIOSuccess; may be nullptr
    /// @return eFileIOSuccess, also when the disk is full; eFileIOOpenError when the file cannot be
    ///         created or opened
    EFileIOStatus writeAxis(const char* fileName, const double* matrix, int tag1, int tag2,
                            int tag3, CFileFault* fault = nullptr);
    EFileIOStatus writeAxis(std::wstring fileName, const double* matrix, int tag1, int tag2,
                            int tag3, CFileFault* fault);
    EFileIOStatus writeAxis(std::wstring fileName, const double* matrix, int tag1, int tag2,
                            int tag3);

    /// readMachineContext() for a path that is used as it is; nullptr acts as the empty path.
    static EFileIOStatus sReadMachineContext(const char* path, CMachineContextData& data,
                                             CFileFault* fault = nullptr);
    static EFileIOStatus sReadMachineContext(const std::wstring& path, CMachineContextData& data,
                                             CFileFault* fault);
    static EFileIOStatus sReadMachineContext(const std::wstring& path, CMachineContextData& data);

    /// writeMachineContext() for a path that is used as it is; nullptr acts as the empty path.
    static EFileIOStatus sWriteMachineContext(const char* path, const CMachineContextData& data,
                                              CFileFault* fault = nullptr);
    static EFileIOStatus sWriteMachineContext(const std::wstring& path,
                                              const CMachineContextData& data, CFileFault* fault);
    static EFileIOStatus sWriteMachineContext(const std::wstring& path,
                                              const CMachineContextData& data);

    /// readTrvAssembly() for a path that is used as it is; nullptr acts as the empty path.
    static EFileIOStatus sReadTrvAssembly(const char* path, CTrvAssemblyData& data,
                                          CFileFault* fault = nullptr);
    static EFileIOStatus sReadTrvAssembly(const std::wstring& path, CTrvAssemblyData& data,
                                          CFileFault* fault);
    static EFileIOStatus sReadTrvAssembly(const std::wstring& path, CTrvAssemblyData& data);

    /// writeTrvAssembly() for a path that is used as it is; nullptr acts as the empty path.
    static EFileIOStatus sWriteTrvAssembly(const char* path, const CTrvAssemblyData& data,
                                           CFileFault* fault = nullptr);
    static EFileIOStatus sWriteTrvAssembly(const std::wstring& path, const CTrvAssemblyData& data,
                                           CFileFault* fault);
    static EFileIOStatus sWriteTrvAssembly(const std::wstring& path, const CTrvAssemblyData& data);

    /// readAxis() for a path that is used as it is; nullptr acts as the empty path.
    static EFileIOStatus sReadAxis(const char* path, double* matrix, int& tag1, int& tag2,
                                   int& tag3, CFileFault* fault = nullptr);
    static EFileIOStatus sReadAxis(const std::wstring& path, double* matrix, int& tag1, int& tag2,
                                   int& tag3, CFileFault* fault = nullptr);

    /// writeAxis() for a path that is used as it is; nullptr acts as the empty path.
    static EFileIOStatus sWriteAxis(const char* path, const double* matrix, int tag1, int tag2,
                                    int tag3, CFileFault* fault = nullptr);
    static EFileIOStatus sWriteAxis(const std::wstring& path, const double* matrix, int tag1,
                                    int tag2, int tag3, CFileFault* fault = nullptr);

    /// readMachineContext() of a file with these bytes.
    ///
    /// @param bytes  not kept after the call
    /// @param data   as in readMachineContext()
    /// @param fault  takes the reason of a failure, and notes; may be nullptr
    /// @return eFileIOSuccess; eFileIOOpenError for more than 256 MiB; eFileIOContentError as
    ///         readMachineContext()
    static EFileIOStatus sReadMachineContextFromMemory(std::string_view bytes,
                                                       CMachineContextData& data,
                                                       CFileFault* fault = nullptr);

    /// What writeMachineContext() gives a file.
    ///
    /// @param bytes  takes them instead of its content, on success only
    /// @param data   the record to write
    /// @param fault  takes the reason of a failure; may be nullptr
    /// @return eFileIOSuccess; eFileIOContentError or eFileIOStructureError when storage for a
    ///         section runs out
    static EFileIOStatus sWriteMachineContextToMemory(std::string& bytes,
                                                      const CMachineContextData& data,
                                                      CFileFault* fault = nullptr);

    /// readTrvAssembly() of a file with these bytes.
    ///
    /// @param bytes  not kept after the call, and not copied as a whole
    /// @param data   as in readTrvAssembly()
    /// @param fault  takes the reason of a failure, and notes; may be nullptr
    /// @return eFileIOSuccess, eFileIOContentError or eFileIOStructureError as readTrvAssembly()
    /// @throws std::bad_alloc as readTrvAssembly()
    static EFileIOStatus sReadTrvAssemblyFromMemory(std::string_view bytes, CTrvAssemblyData& data,
                                                    CFileFault* fault = nullptr);

    /// What writeTrvAssembly() gives a file.
    ///
    /// @param bytes  takes them instead of its content, on success only
    /// @param data   the record to write
    /// @param fault  takes the reason of a failure; may be nullptr
    /// @return eFileIOSuccess; eFileIOContentError as writeTrvAssembly()
    static EFileIOStatus sWriteTrvAssemblyToMemory(std::string& bytes, const CTrvAssemblyData& data,
                                                   CFileFault* fault = nullptr);

    /// readAxis() of a file with these bytes.
    ///
    /// @param bytes   not kept after the call
    /// @param matrix  as in readAxis(), as the tags
    /// @param tag1  set if the tag line holds it, otherwise unchanged
    /// @param tag2  likewise
    /// @param tag3  likewise
    /// @param fault takes the reason of a failure, and notes; may be nullptr
    /// @return eFileIOSuccess; eFileIOContentError as readAxis()
    static EFileIOStatus sReadAxisFromMemory(std::string_view bytes, double* matrix, int& tag1,
                                             int& tag2, int& tag3, CFileFault* fault = nullptr);

    /// What writeAxis() gives a file.
    ///
    /// @param bytes   takes them instead of its content
    /// @param matrix  sixteen numbers as in readAxis(); nullptr writes zeros
    /// @param tag1  the first tag
    /// @param tag2  the second tag
    /// @param tag3  the third tag
    /// @param fault is emptied; may be nullptr
    /// @return eFileIOSuccess
    static EFileIOStatus sWriteAxisToMemory(std::string& bytes, const double* matrix, int tag1,
                                            int tag2, int tag3, CFileFault* fault = nullptr);

    /// The absolute path of a name, with "/" between its parts; not cleaned. On Linux U+FFFD
    /// replaces bytes that are not UTF-8 and units that are not characters: then it is another
    /// file's path.
    std::string absoluteFileName(const std::string& name) const;
    std::wstring absoluteFileName(const std::wstring& name) const;

    /// Whether the file that absoluteFileName() gives can be opened for reading. A directory
    /// cannot be, a pipe with the right to read it can be. The call never waits for the writer of a
    /// pipe.
    bool isfileExists(const std::string& name) const;
    bool isfileExists(const std::wstring& name) const;

    /// Copies a file byte for byte. Neither name is resolved against the directory: relative names
    /// belong to the current directory.
    ///
    /// The destination is created or emptied before the source is opened, so a missing source
    /// leaves an empty destination.
    ///
    /// @return false when one of the files cannot be opened, and when the two strings are equal:
    ///         no file is touched then. Two spellings of one path are not recognised: the file is
    ///         emptied. Otherwise true, also when the copy could not be written to its end.
    bool copyFile(const std::string& source, const std::string& destination);
    bool copyFile(const std::wstring& source, const std::wstring& destination);

private:
    std::wstring directory_;
};
