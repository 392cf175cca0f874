/* NOLINTBEGIN(modernize-deprecated-headers,modernize-use-using): the header is C too. */
#ifndef TRVFILES_C_TRVFILES_H
#define TRVFILES_C_TRVFILES_H

/**
 * @file
 * The C interface of trvfiles: for hosts in C, and for every language and compiler that calls C.
 *
 * Handles. An object of the library is a number, its handle. 0 is not an object. A number is never
 * used again: a function recognises a handle that was released, that belongs to another type of
 * object or that never existed, and returns TRVFILES_BAD_HANDLE. It reads no freed memory for that.
 * Each call takes one lock and one lookup in a table for each handle. What a function creates
 * belongs to the caller until trvfiles_release().
 *
 * Statuses. Each function that can fail returns a status, TRVFILES_SUCCESS or another constant
 * below. Unless a function says otherwise, a call that does not succeed leaves its results as they
 * were. No exception leaves a function, and none ends the process: what the runtime reports through
 * its fatal channel during a call becomes TRVFILES_FATAL_REPORT, with the message as the reason.
 *
 * Every function may return TRVFILES_BAD_HANDLE, TRVFILES_BAD_ARGUMENT, TRVFILES_OUT_OF_MEMORY and
 * TRVFILES_INTERNAL_ERROR. The comments below name the other statuses.
 *
 * Faults. The last argument `fault` is 0, or a fault that takes the reason of a failure. The call
 * empties it first.
 *
 * Texts are in UTF-8 on every system. A text argument ends at its first zero byte. It is copied
 * before the call ends, is at most TRVFILES_MAX_TEXT_LENGTH bytes long, and may be NULL only if its
 * comment says so. Bytes that are not UTF-8 are TRVFILES_BAD_TEXT. So is a character which the code
 * page of a Windows program lacks, in a text of a component or of the runtime; with UTF-8 in its
 * manifest a program has all characters. Results are complete UTF-8: bytes of a file that are not
 * text are U+FFFD.
 *
 * Paths are used as they are given, relative ones in the current directory. On Linux each "\" acts
 * as "/".
 *
 * Layout. Functions have the C calling convention. Their numbers are of fixed width, or size_t. No
 * argument is an enum or a structure. A structure begins with its size, which the caller sets to
 * `sizeof`: later versions add members at the end, and fill no more than this size. A size below
 * that of the first version is TRVFILES_BAD_ARGUMENT; what the library does not know yet becomes 0.
 * Later versions add functions and constants, and never change one.
 *
 * Placements are 16 numbers, row by row, for row vectors: the elements 0-2, 4-6 and 8-10 are the
 * images of the x, y and z axes, 12-14 the translation in the project's length unit, and 3, 7, 11
 * are 0 and 15 is 1. An orientation is the nine numbers of the three images in this order.
 *
 * Threads. Calls may run at the same time on different objects. On the same object calls that only
 * read may. A fault, and the texts that take a result, are for one call at a time. The functions of
 * machine context writing, the catalogue, the runtime, messages and channels run on one thread at a
 * time together, and the first of them before threads share the runtime. An object that is released
 * while another call uses it lives until that call ends.
 */

#include <stddef.h>
#include <stdint.h>

#if defined(TRVFILES_STATIC_DEFINE)
#define TRVFILES_API
#elif defined(_WIN32) && defined(trvfiles_EXPORTS)
#define TRVFILES_API __declspec(dllexport)
#elif defined(_WIN32)
#define TRVFILES_API __declspec(dllimport)
#elif defined(__GNUC__)
#define TRVFILES_API __attribute__((visibility("default")))
#else
#define TRVFILES_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** The call completed. */
#define TRVFILES_SUCCESS INT32_C(1)
/** A file could not be opened, or a machine context could not be parsed at all or saved. */
#define TRVFILES_OPEN_ERROR INT32_C(2)
/** A file was opened, but not all of its text could be written. */
#define TRVFILES_SHORT_WRITE INT32_C(3)
/** Something that a file needs is missing or malformed, or a record cannot be written. */
#define TRVFILES_CONTENT_ERROR INT32_C(4)
/** A file holds something else: a wrong root element, or a root component that is broken. */
#define TRVFILES_STRUCTURE_ERROR INT32_C(5)
/** A handle is 0, released, unknown or of another type. Nothing was done. */
#define TRVFILES_BAD_HANDLE INT32_C(100)
/** An argument is outside of its range, or NULL. Nothing was done. */
#define TRVFILES_BAD_ARGUMENT INT32_C(101)
/** A text is not UTF-8, too long, or not in the code page. Nothing was done. */
#define TRVFILES_BAD_TEXT INT32_C(102)
/** Memory ran out. */
#define TRVFILES_OUT_OF_MEMORY INT32_C(103)
/** The runtime has sent a message to its fatal channel, which is the reason. */
#define TRVFILES_FATAL_REPORT INT32_C(104)
/** The operation failed, and the library knows no more than the reason says. */
#define TRVFILES_FAILED INT32_C(105)
/** An exception that the library does not expect, such as one of a C++ host's handler. */
#define TRVFILES_INTERNAL_ERROR INT32_C(106)
/** The file, section or entry does not exist. */
#define TRVFILES_NOT_FOUND INT32_C(-21)
/** A name in brackets has no closing bracket. */
#define TRVFILES_SYNTAX_ERROR INT32_C(-31)
/** A path does not fit the buffers of a search. */
#define TRVFILES_BUFFER_TOO_SMALL INT32_C(-32)
/** An expansion has no end, or a search got a text that is too long. */
#define TRVFILES_NAME_TOO_LONG INT32_C(-42)
/** A variable is not defined. An expansion has its result nevertheless. */
#define TRVFILES_UNDEFINED INT32_C(-43)
/** A search reference has no name of a file. */
#define TRVFILES_NO_FILE_NAME INT32_C(-44)

/** The maximum number of bytes in a text argument. */
#define TRVFILES_MAX_TEXT_LENGTH ((size_t)16777216)
/** The number of no component: the parent of the root. */
#define TRVFILES_NO_INDEX SIZE_MAX

/** A handle of any type. */
typedef uint64_t trvfiles_handle;
/** What a call reports beyond its status. */
typedef trvfiles_handle trvfiles_fault;
/** A list of texts, which takes the results of a call instead of what it held. */
typedef trvfiles_handle trvfiles_texts;
/** A machine context. */
typedef trvfiles_handle trvfiles_context;
/** An assembly. */
typedef trvfiles_handle trvfiles_assembly;
/** All components of an assembly as arrays. */
typedef trvfiles_handle trvfiles_components;
/** The flattened assembly as arrays. */
typedef trvfiles_handle trvfiles_placements;
/** A store of messages and entries. */
typedef trvfiles_handle trvfiles_messages;

/* -- The library ------------------------------------------------------------------------------ */

/** The version of the loaded library: major * 1000000 + minor * 1000 + patch. Threads: any. */
TRVFILES_API int32_t trvfiles_version(void);

/** The same as a text, "0.1.0". Valid as long as the library is loaded. Threads: any. */
TRVFILES_API const char* trvfiles_version_text(void);

/**
 * What a status means: one line of English, valid as long as the library is loaded. Threads: any.
 *
 * @param status  any number; another one has a text of its own
 */
TRVFILES_API const char* trvfiles_status_text(int32_t status);

/**
 * Releases an object of any type. Its handle, and the pointers that were got from the object, are
 * not valid after that. Threads: a store of messages with the runtime, any other object on any
 * thread.
 *
 * @param handle  the object
 * @param fault   0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_BAD_HANDLE also for 0
 */
TRVFILES_API int32_t trvfiles_release(trvfiles_handle handle, trvfiles_fault fault);

/**
 * How many objects are not released: for the tests of a host.
 *
 * @param count  takes the number
 * @param fault  0, or a fault
 */
TRVFILES_API int32_t trvfiles_live_handles(size_t* count, trvfiles_fault fault);

/* -- Faults ----------------------------------------------------------------------------------- */

/** Why a call has failed. Texts end with a zero byte, which the lengths do not count. */
typedef struct trvfiles_fault_values {
    /** sizeof(trvfiles_fault_values), set by the caller. */
    size_t size;
    /** One line of English; empty after a success. Valid until the fault is used in another call or
        released. */
    const char* reason;
    size_t reason_length;
    /** The line of the file to which the reason refers, from 1; 0 if it is not known. */
    int32_t line;
    /** The column in the line, from 1 in UTF-16 units; 0 if it is not known. */
    int32_t column;
    /** The system's number of the failure, an errno value; 0 if the system has not failed. */
    int32_t system_error;
    /** A number that trvfiles_fault_cause_name() knows; 0 after a success, and if the status alone
        says why: those of the interface and of the expansion. */
    int32_t cause;
    /** How many notes there are, also after a success. */
    size_t note_count;
    /** What the cause is about, as in "ComponentInfo"; may be empty. Valid as the reason. */
    const char* subject;
    size_t subject_length;
} trvfiles_fault_values;

/** Something that was read otherwise than the file says. The pointers are valid as the reason. */
typedef struct trvfiles_note {
    /** sizeof(trvfiles_note), set by the caller. */
    size_t size;
    /** A number that trvfiles_note_kind_name() knows. */
    int32_t kind;
    /** The line of the file, from 1; 0 if the note is about no line. */
    int32_t line;
    /** The column in the line, from 1 in UTF-16 units; 0 if it is not known. */
    int32_t column;
    /** How often; 0 for a kind that counts nothing. */
    int32_t count;
    /** The component, element or key; may be empty. */
    const char* subject;
    size_t subject_length;
    /** What was altered and what the record holds instead. */
    const char* text;
    size_t text_length;
    /** The attribute of the element; empty if the note is about the whole element. */
    const char* attribute;
    size_t attribute_length;
    /** What the file has, if the note is about a value. */
    const char* value;
    size_t value_length;
    /** The element or the section that has the subject; may be empty. */
    const char* parent;
    size_t parent_length;
    /** The name that the format defines, if the subject differs from it in case only. */
    const char* expected;
    size_t expected_length;
} trvfiles_note;

/**
 * Creates an empty fault.
 *
 * @param created  takes the fault, which the caller releases
 */
TRVFILES_API int32_t trvfiles_fault_create(trvfiles_fault* created);

/**
 * Gets the reason of the last call to which the fault was given.
 *
 * @param fault   a fault
 * @param values  is filled
 */
TRVFILES_API int32_t trvfiles_fault_get(trvfiles_fault fault, trvfiles_fault_values* values);

/**
 * Gets one of the notes of that call.
 *
 * @param fault  a fault
 * @param index  from 0, below the number of notes
 * @param note   is filled
 */
TRVFILES_API int32_t trvfiles_fault_get_note(trvfiles_fault fault, size_t index,
                                             trvfiles_note* note);

/**
 * The name of a kind of note, as in "not-a-number": the same in all versions. Threads: any.
 *
 * @param kind  any number; another one gives an empty text
 */
TRVFILES_API const char* trvfiles_note_kind_name(int32_t kind);

/**
 * The name of a cause, as in "not-well-formed": the same in all versions. Threads: any.
 *
 * @param cause  any number; 0 and a number without a cause give an empty text
 */
TRVFILES_API const char* trvfiles_fault_cause_name(int32_t cause);

/* -- Texts ------------------------------------------------------------------------------------ */

/**
 * Creates an empty list of texts.
 *
 * @param created  takes the list, which the caller releases
 * @param fault    0, or a fault
 */
TRVFILES_API int32_t trvfiles_texts_create(trvfiles_texts* created, trvfiles_fault fault);

/**
 * How many texts a list has.
 *
 * @param texts  a list
 * @param count  takes the number
 * @param fault  0, or a fault
 */
TRVFILES_API int32_t trvfiles_texts_count(trvfiles_texts texts, size_t* count,
                                          trvfiles_fault fault);

/**
 * Gets one of the texts.
 *
 * @param texts   a list
 * @param index   from 0, below the number of texts
 * @param text    takes a pointer to the text and a zero byte after it, valid until the list takes
 *                another result or is released
 * @param length  takes the number of bytes without the last zero; NULL if it is not needed. The
 *                bytes of a file may hold other zeros.
 * @param fault   0, or a fault
 */
TRVFILES_API int32_t trvfiles_texts_get(trvfiles_texts texts, size_t index, const char** text,
                                        size_t* length, trvfiles_fault fault);

/**
 * The absolute path of a name in a directory, with "/" between its parts; not cleaned.
 *
 * @param directory  a relative or an empty one is in the current directory
 * @param name       of the file; an absolute name ignores the directory
 * @param path       takes one text
 * @param fault      0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_absolute_path(const char* directory, const char* name,
                                            trvfiles_texts path, trvfiles_fault fault);

/* -- Axis files ------------------------------------------------------------------------------- */

/** What an axis file holds. */
typedef struct trvfiles_axis {
    /** sizeof(trvfiles_axis), set by the caller. */
    size_t size;
    /** The placement. The axes are the inverse of the block in the file. */
    double matrix[16];
    /** How many tags there are, at the beginning of `tags`: 0 to 3 if read, 0 or 3 to write. */
    int32_t tag_count;
    /** 0 for a tag that was not read; not negative to write. */
    int32_t tags[3];
} trvfiles_axis;

/**
 * Reads an axis file.
 *
 * @param path   of the file
 * @param axis   is filled on success
 * @param fault  0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_OPEN_ERROR; TRVFILES_CONTENT_ERROR if one of the four matrix
 *         lines is missing or does not hold four numbers; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_axis_read(const char* path, trvfiles_axis* axis,
                                        trvfiles_fault fault);

/**
 * Reads an axis file that has these bytes.
 *
 * @param bytes   of the file; NULL if `length` is 0
 * @param length  their number
 * @param axis    is filled on success
 * @param fault   0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_CONTENT_ERROR
 */
TRVFILES_API int32_t trvfiles_axis_read_memory(const void* bytes, size_t length,
                                               trvfiles_axis* axis, trvfiles_fault fault);

/**
 * Writes an axis file over an existing one: the placement and its inverse with six decimals and, if
 * there are tags, the tag line.
 *
 * @param path   of the file
 * @param axis   what is written
 * @param fault  0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_OPEN_ERROR; TRVFILES_SHORT_WRITE; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_axis_write(const char* path, const trvfiles_axis* axis,
                                         trvfiles_fault fault);

/**
 * The bytes that trvfiles_axis_write() gives a file.
 *
 * @param axis   what is written
 * @param bytes  takes one text
 * @param fault  0, or a fault
 */
TRVFILES_API int32_t trvfiles_axis_write_memory(const trvfiles_axis* axis, trvfiles_texts bytes,
                                                trvfiles_fault fault);

/* -- Machine contexts ------------------------------------------------------------------------- */

/** The texts of a machine context. */
#define TRVFILES_CONTEXT_NAME INT32_C(0)
#define TRVFILES_CONTEXT_COMMENT INT32_C(1)
#define TRVFILES_CONTEXT_MACHINE_NAME INT32_C(2)
#define TRVFILES_CONTEXT_MACHINE_POSITION INT32_C(3)
#define TRVFILES_CONTEXT_SURFACE_GROUP INT32_C(4)
#define TRVFILES_CONTEXT_CLAMPING_SYSTEM INT32_C(5)
#define TRVFILES_CONTEXT_REFERENCE_AXIS INT32_C(6)

/** The numbers of a machine context, in the project's length unit. */
typedef struct trvfiles_context_numbers {
    /** sizeof(trvfiles_context_numbers), set by the caller. */
    size_t size;
    /** The program origin: x, y, z. */
    double origin_program[3];
    /** The distance to keep from the machine. */
    double machine_proximity;
    /** The distance to keep from the clamping system. */
    double clamping_proximity;
} trvfiles_context_numbers;

/**
 * Creates a context with empty texts and zeros.
 *
 * @param created  takes the context, which the caller releases
 * @param fault    0, or a fault
 */
TRVFILES_API int32_t trvfiles_context_create(trvfiles_context* created, trvfiles_fault fault);

/**
 * Creates a copy of a context.
 *
 * @param context  a context
 * @param created  takes the copy, which the caller releases
 * @param fault    0, or a fault
 */
TRVFILES_API int32_t trvfiles_context_copy(trvfiles_context context, trvfiles_context* created,
                                           trvfiles_fault fault);

/**
 * Reads a machine context file.
 *
 * @param context  takes the fields that the file sets; all others keep their values. After a
 *                 failure the fields read until then are set.
 * @param path     of the file
 * @param fault    0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_OPEN_ERROR, also for more than 256 MiB; TRVFILES_CONTENT_ERROR
 *         if there is a section "machine" without "name" or "position", or "postpro" without
 *         "origin_program"; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_context_read(trvfiles_context context, const char* path,
                                           trvfiles_fault fault);

/**
 * Reads a machine context file that has these bytes.
 *
 * @param context  as for trvfiles_context_read()
 * @param bytes    of the file; NULL if `length` is 0
 * @param length   their number
 * @param fault    0, or a fault
 * @return as trvfiles_context_read()
 */
TRVFILES_API int32_t trvfiles_context_read_memory(trvfiles_context context, const void* bytes,
                                                  size_t length, trvfiles_fault fault);

/**
 * Writes a machine context file. The complete text replaces the old file in one step: if anything
 * fails, the old file stays whole. Threads: one at a time, with the runtime.
 *
 * @param context  a context
 * @param path     of the file
 * @param fault    0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_OPEN_ERROR if the file cannot be saved; TRVFILES_FATAL_REPORT
 *         if its temporary file cannot be opened, or another process writes it for 10 seconds;
 *         TRVFILES_CONTENT_ERROR or TRVFILES_STRUCTURE_ERROR if storage runs out;
 *         TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_context_write(trvfiles_context context, const char* path,
                                            trvfiles_fault fault);

/**
 * The bytes that trvfiles_context_write() gives a file. Threads: one at a time, with the runtime.
 *
 * @param context  a context
 * @param bytes    takes one text
 * @param fault    0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_CONTENT_ERROR or TRVFILES_STRUCTURE_ERROR if storage runs out
 */
TRVFILES_API int32_t trvfiles_context_write_memory(trvfiles_context context, trvfiles_texts bytes,
                                                   trvfiles_fault fault);

/**
 * Gets a text of a context.
 *
 * @param context  a context
 * @param field    one of TRVFILES_CONTEXT_...
 * @param text     takes one text
 * @param fault    0, or a fault
 */
TRVFILES_API int32_t trvfiles_context_get_text(trvfiles_context context, int32_t field,
                                               trvfiles_texts text, trvfiles_fault fault);

/**
 * Sets a text of a context.
 *
 * @param context  a context
 * @param field    one of TRVFILES_CONTEXT_...
 * @param text     the new text
 * @param fault    0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_context_set_text(trvfiles_context context, int32_t field,
                                               const char* text, trvfiles_fault fault);

/**
 * Gets the numbers of a context.
 *
 * @param context  a context
 * @param numbers  is filled
 * @param fault    0, or a fault
 */
TRVFILES_API int32_t trvfiles_context_get_numbers(trvfiles_context context,
                                                  trvfiles_context_numbers* numbers,
                                                  trvfiles_fault fault);

/**
 * Sets the numbers of a context.
 *
 * @param context  a context
 * @param numbers  the new numbers
 * @param fault    0, or a fault
 */
TRVFILES_API int32_t trvfiles_context_set_numbers(trvfiles_context context,
                                                  const trvfiles_context_numbers* numbers,
                                                  trvfiles_fault fault);

/**
 * Puts every field back to its default.
 *
 * @param context  a context
 * @param fault    0, or a fault
 */
TRVFILES_API int32_t trvfiles_context_clear(trvfiles_context context, trvfiles_fault fault);

/**
 * Whether all texts of a context are empty and all numbers are zero, within 1e-6.
 *
 * @param context  a context
 * @param is_null  takes 1 or 0
 * @param fault    0, or a fault
 */
TRVFILES_API int32_t trvfiles_context_is_null(trvfiles_context context, int32_t* is_null,
                                              trvfiles_fault fault);

/* -- The catalogue of machine contexts. Threads: one at a time, with the runtime -------------- */

/**
 * The directory of the installation's favourite contexts.
 *
 * @param directory  takes one text, an absolute path with "/"
 * @param fault      0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_UNDEFINED if neither TRV_MCTX_DEF nor TRVHOME is known;
 *         TRVFILES_FATAL_REPORT
 */
TRVFILES_API int32_t trvfiles_catalogue_directory(trvfiles_texts directory, trvfiles_fault fault);

/**
 * Lists the favourite contexts below a directory, as CMachineContextUtils does.
 *
 * @param directory  empty for that of the installation
 * @param paths      takes a text for each context; none if the directory cannot be listed
 * @param fault      0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_FATAL_REPORT; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_catalogue_list(const char* directory, trvfiles_texts paths,
                                             trvfiles_fault fault);

/**
 * Chooses the default context: the first one of the highest machine position.
 *
 * @param names     bare file names, `count` of them; NULL if there are none
 * @param count     their number
 * @param index     takes the index of the chosen name
 * @param position  takes its machine position
 * @param fault     0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_NOT_FOUND if none is a default context; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_catalogue_choose_default(const char* const* names, size_t count,
                                                       size_t* index, int32_t* position,
                                                       trvfiles_fault fault);

/**
 * Creates the default context of a machine position, with its reference file.
 *
 * @param directory  has to exist; empty for the current one
 * @param position   from 1
 * @param created    takes two texts: the bare names of the context file and of the reference file
 * @param fault      0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_FAILED if both files exist or a file cannot be written;
 *         TRVFILES_FATAL_REPORT; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_catalogue_create_default(const char* directory, int32_t position,
                                                       trvfiles_texts created,
                                                       trvfiles_fault fault);

/**
 * Creates a context for a machine, with its reference file, as CMachineContextUtils does: the axis
 * file is copied in the current directory, which a host makes the same as `directory`.
 *
 * @param directory     empty for the current one
 * @param machine       the machine's file name
 * @param axis_file     the axis file to copy; empty for "transfo.dat"
 * @param context_file  the name of the context file; empty for "<machine>[<axis>].mctx"
 * @param created       takes two texts: the names of the context file and of the reference file
 * @param fault         0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_FAILED if the axis file does not exist, if one of the files to
 *         create exists, or if one cannot be written; TRVFILES_FATAL_REPORT; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_catalogue_create(const char* directory, const char* machine,
                                               const char* axis_file, const char* context_file,
                                               trvfiles_texts created, trvfiles_fault fault);

/* -- Assemblies ------------------------------------------------------------------------------- */

/**
 * Creates an assembly: the dimension 0, 0, 0, and a root that is enabled, with empty texts, the
 * identity placement and no children.
 *
 * @param created  takes the assembly, which the caller releases
 * @param fault    0, or a fault
 */
TRVFILES_API int32_t trvfiles_assembly_create(trvfiles_assembly* created, trvfiles_fault fault);

/**
 * Creates a copy of an assembly.
 *
 * @param assembly  an assembly
 * @param created   takes the copy, which the caller releases
 * @param fault     0, or a fault
 */
TRVFILES_API int32_t trvfiles_assembly_copy(trvfiles_assembly assembly, trvfiles_assembly* created,
                                            trvfiles_fault fault);

/**
 * Reads an assembly file.
 *
 * @param assembly  takes the content on success; its dimension may hold the file's values after a
 *                  failure too
 * @param path      of the file
 * @param fault     0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_OPEN_ERROR; TRVFILES_CONTENT_ERROR; TRVFILES_STRUCTURE_ERROR,
 *         as CQvFilesIO::readTrvAssembly() says; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_assembly_read(trvfiles_assembly assembly, const char* path,
                                            trvfiles_fault fault);

/**
 * Reads an assembly file that has these bytes.
 *
 * @param assembly  as for trvfiles_assembly_read()
 * @param bytes     of the file; NULL if `length` is 0
 * @param length    their number
 * @param fault     0, or a fault
 * @return as trvfiles_assembly_read()
 */
TRVFILES_API int32_t trvfiles_assembly_read_memory(trvfiles_assembly assembly, const void* bytes,
                                                   size_t length, trvfiles_fault fault);

/**
 * Writes an assembly file over an existing one. A component with a geometry file is written without
 * its children.
 *
 * @param assembly  an assembly
 * @param path      of the file
 * @param fault     0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_CONTENT_ERROR if a component has neither a geometry file nor
 *         children, if the tree is deeper than 999 components, or if a text holds U+FFFE or U+FFFF:
 *         no file is touched then; TRVFILES_OPEN_ERROR; TRVFILES_SHORT_WRITE; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_assembly_write(trvfiles_assembly assembly, const char* path,
                                             trvfiles_fault fault);

/**
 * The bytes that trvfiles_assembly_write() gives a file.
 *
 * @param assembly  an assembly
 * @param bytes     takes one text
 * @param fault     0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_CONTENT_ERROR as trvfiles_assembly_write()
 */
TRVFILES_API int32_t trvfiles_assembly_write_memory(trvfiles_assembly assembly,
                                                    trvfiles_texts bytes, trvfiles_fault fault);

/**
 * Gets the overall size along x, y and z, in the project's length unit.
 *
 * @param assembly   an assembly
 * @param dimension  takes three numbers
 * @param fault      0, or a fault
 */
TRVFILES_API int32_t trvfiles_assembly_get_dimension(trvfiles_assembly assembly, double* dimension,
                                                     trvfiles_fault fault);

/**
 * Sets the overall size along x, y and z, in the project's length unit.
 *
 * @param assembly   an assembly
 * @param dimension  three numbers
 * @param fault      0, or a fault
 */
TRVFILES_API int32_t trvfiles_assembly_set_dimension(trvfiles_assembly assembly,
                                                     const double* dimension, trvfiles_fault fault);

/**
 * How many geometry files are placed below the root: a component with a file hides what is below
 * it.
 *
 * @param assembly  an assembly
 * @param count     takes the number
 * @param fault     0, or a fault
 */
TRVFILES_API int32_t trvfiles_assembly_file_count(trvfiles_assembly assembly, size_t* count,
                                                  trvfiles_fault fault);

/**
 * Whether two assemblies are equal, with the tolerances of CTrvAssemblyData.
 *
 * @param one       an assembly
 * @param other     an assembly, which may be the same one
 * @param is_equal  takes 1 or 0
 * @param fault     0, or a fault
 */
TRVFILES_API int32_t trvfiles_assembly_equal(trvfiles_assembly one, trvfiles_assembly other,
                                             int32_t* is_equal, trvfiles_fault fault);

/**
 * Flattens an assembly: the placement in the world of each enabled component with a geometry file,
 * in document order. A disabled component is left out with all that is below it.
 *
 * @param assembly  an assembly, which may change later without changing the result
 * @param parent    the placement of the root's parent, 16 numbers; NULL for the identity
 * @param created   takes the result, which the caller releases
 * @param fault     0, or a fault
 */
TRVFILES_API int32_t trvfiles_assembly_flatten(trvfiles_assembly assembly, const double* parent,
                                               trvfiles_placements* created, trvfiles_fault fault);

/** A flattened assembly. All pointers are valid until the placements are released. */
typedef struct trvfiles_placement_table {
    /** sizeof(trvfiles_placement_table), set by the caller. */
    size_t size;
    /** The number of placements. */
    size_t count;
    /** The index of the component of each placement. */
    const size_t* component;
    /** 16 numbers for each placement. */
    const double* world;
    /** `count` + 1 offsets in `text`: the name of the geometry file i is in the bytes from
        geometry[i] up to geometry[i + 1]. */
    const size_t* geometry;
    const char* text;
    size_t text_length;
} trvfiles_placement_table;

/**
 * Gets the arrays of a flattened assembly; nothing is copied.
 *
 * @param placements  a flattened assembly
 * @param table       is filled
 * @param fault       0, or a fault
 */
TRVFILES_API int32_t trvfiles_placements_get(trvfiles_placements placements,
                                             trvfiles_placement_table* table, trvfiles_fault fault);

/* -- Components -------------------------------------------------------------------------------
 * A component is identified by its index in document order: the root is 0, each component is before
 * its children, and `subtree_size` added to an index gives that of the next component which is not
 * below. Indices are valid until components are added or removed or a file is read. */

/** The texts of a component. */
#define TRVFILES_COMPONENT_NAME INT32_C(0)
#define TRVFILES_COMPONENT_COMMENT INT32_C(1)
#define TRVFILES_COMPONENT_GEOMETRY INT32_C(2)

/** What differs between two components. A difference in vec3 alone makes no assembly unequal. */
#define TRVFILES_DIFFERENT_NAME UINT32_C(1)
#define TRVFILES_DIFFERENT_COMMENT UINT32_C(2)
#define TRVFILES_DIFFERENT_GEOMETRY UINT32_C(4)
#define TRVFILES_DIFFERENT_ENABLED UINT32_C(8)
#define TRVFILES_DIFFERENT_TRANSLATION UINT32_C(16)
#define TRVFILES_DIFFERENT_VEC1 UINT32_C(32)
#define TRVFILES_DIFFERENT_VEC2 UINT32_C(64)
#define TRVFILES_DIFFERENT_VEC3 UINT32_C(128)

/** A component without its texts. */
typedef struct trvfiles_component {
    /** sizeof(trvfiles_component), set by the caller. */
    size_t size;
    /** The index of its parent; TRVFILES_NO_INDEX for the root. */
    size_t parent;
    /** How many components the subtree has, itself included. */
    size_t subtree_size;
    /** How many children it has. */
    size_t child_count;
    /** How many components are above it. */
    size_t depth;
    /** 1 or 0. */
    int32_t enabled;
    int32_t reserved;
    /** The origin in the parent's frame, in the project's length unit. */
    double translation[3];
    /** The images of the x, y and z axes in the parent's frame. */
    double orientation[9];
} trvfiles_component;

/**
 * How many components an assembly has, the root included.
 *
 * @param assembly  an assembly
 * @param count     takes the number
 * @param fault     0, or a fault
 */
TRVFILES_API int32_t trvfiles_component_count(trvfiles_assembly assembly, size_t* count,
                                              trvfiles_fault fault);

/**
 * Gets a component without its texts.
 *
 * @param assembly   an assembly
 * @param index      of the component
 * @param component  is filled
 * @param fault      0, or a fault
 */
TRVFILES_API int32_t trvfiles_component_get(trvfiles_assembly assembly, size_t index,
                                            trvfiles_component* component, trvfiles_fault fault);

/**
 * Gets a text of a component.
 *
 * @param assembly  an assembly
 * @param index     of the component
 * @param field     one of TRVFILES_COMPONENT_...
 * @param text      takes one text
 * @param fault     0, or a fault
 */
TRVFILES_API int32_t trvfiles_component_get_text(trvfiles_assembly assembly, size_t index,
                                                 int32_t field, trvfiles_texts text,
                                                 trvfiles_fault fault);

/**
 * Sets a text of a component. Nothing is checked: see trvfiles_assembly_write().
 *
 * @param assembly  an assembly
 * @param index     of the component
 * @param field     one of TRVFILES_COMPONENT_...
 * @param text      the new text
 * @param fault     0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_component_set_text(trvfiles_assembly assembly, size_t index,
                                                 int32_t field, const char* text,
                                                 trvfiles_fault fault);

/**
 * Enables or disables a component.
 *
 * @param assembly  an assembly
 * @param index     of the component
 * @param enabled   0 to disable it, any other number to enable it
 * @param fault     0, or a fault
 */
TRVFILES_API int32_t trvfiles_component_set_enabled(trvfiles_assembly assembly, size_t index,
                                                    int32_t enabled, trvfiles_fault fault);

/**
 * Places a component in the frame of its parent.
 *
 * @param assembly     an assembly
 * @param index        of the component
 * @param translation  three numbers; NULL leaves the translation as it is
 * @param orientation  nine numbers; NULL leaves the orientation as it is
 * @param fault        0, or a fault
 */
TRVFILES_API int32_t trvfiles_component_set_placement(trvfiles_assembly assembly, size_t index,
                                                      const double* translation,
                                                      const double* orientation,
                                                      trvfiles_fault fault);

/**
 * Adds a component: a copy of another one with all that is below it, or a default one.
 *
 * Takes time for the copy, for the children of the parent and for its depth. The next call that
 * uses an index takes time for all components, unless the component was added at the end of the
 * document order. A tree is built in time for its size by trvfiles_assembly_set_components().
 *
 * @param assembly      an assembly
 * @param parent        the index of its parent
 * @param position      from 0 up to the number of the parent's children
 * @param source        the assembly of the component to copy, which may be the same one; 0 for a
 *                      default component: enabled, with empty texts and the identity placement
 * @param source_index  of the component to copy
 * @param index         takes the index of the new component; NULL if it is not needed
 * @param fault         0, or a fault
 */
TRVFILES_API int32_t trvfiles_component_add(trvfiles_assembly assembly, size_t parent,
                                            size_t position, trvfiles_assembly source,
                                            size_t source_index, size_t* index,
                                            trvfiles_fault fault);

/**
 * Removes a component with all that is below it. The next call that uses an index takes time for
 * all components.
 *
 * @param assembly  an assembly
 * @param index     of the component; the root cannot be removed
 * @param fault     0, or a fault
 */
TRVFILES_API int32_t trvfiles_component_remove(trvfiles_assembly assembly, size_t index,
                                               trvfiles_fault fault);

/**
 * Compares two components without their children, with the tolerances of CTrvAssemblyComponentData.
 *
 * @param one           an assembly
 * @param index         of a component in it
 * @param other         an assembly, which may be the same one
 * @param other_index   of a component in that
 * @param differences   takes TRVFILES_DIFFERENT_... or'ed
 * @param fault         0, or a fault
 */
TRVFILES_API int32_t trvfiles_component_compare(trvfiles_assembly one, size_t index,
                                                trvfiles_assembly other, size_t other_index,
                                                uint32_t* differences, trvfiles_fault fault);

/** All components of an assembly, in document order. As a result, all pointers are valid until the
    components are released. */
typedef struct trvfiles_component_table {
    /** sizeof(trvfiles_component_table), set by the caller. */
    size_t size;
    /** The number of components. */
    size_t count;
    /** The index of each component's parent; TRVFILES_NO_INDEX for the root. */
    const size_t* parent;
    /** How many components each subtree has, its own root included. */
    const size_t* subtree_size;
    /** 1 or 0 for each component. */
    const uint8_t* enabled;
    /** Three numbers for each component. */
    const double* translation;
    /** Nine numbers for each component. */
    const double* orientation;
    /** The placement of each component in the world, 16 numbers; disabled ones too. */
    const double* world;
    /** Three arrays of `count` + 1 offsets in `text`: the name of component i is in the bytes from
        name[i] up to name[i + 1]. */
    const size_t* name;
    const size_t* comment;
    const size_t* geometry;
    const char* text;
    size_t text_length;
} trvfiles_component_table;

/**
 * Takes all components of an assembly at once, as arrays.
 *
 * @param assembly  an assembly, which may change later without changing the result
 * @param created   takes the result, which the caller releases
 * @param fault     0, or a fault
 */
TRVFILES_API int32_t trvfiles_assembly_components(trvfiles_assembly assembly,
                                                  trvfiles_components* created,
                                                  trvfiles_fault fault);

/**
 * Gets the arrays of all components; nothing is copied.
 *
 * @param components  all components of an assembly
 * @param table       is filled
 * @param fault       0, or a fault
 */
TRVFILES_API int32_t trvfiles_components_get(trvfiles_components components,
                                             trvfiles_component_table* table, trvfiles_fault fault);

/**
 * Replaces all components of an assembly at once.
 *
 * @param assembly  an assembly, which keeps its dimension
 * @param table     `count` components in document order, at least the root. `parent` is needed: the
 *                  parent of a component is the one before it or one of that one's parents.
 *                  `subtree_size` and `world` are ignored. Any other array that is NULL gives the
 *                  fields of a default component. Offsets must not fall, and must not be above
 *                  `text_length`. The arrays are not kept.
 * @param fault     0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_BAD_TEXT, also for a zero byte in a text
 */
TRVFILES_API int32_t trvfiles_assembly_set_components(trvfiles_assembly assembly,
                                                      const trvfiles_component_table* table,
                                                      trvfiles_fault fault);

/* -- The runtime. Threads: one at a time ------------------------------------------------------ */

/**
 * The directory that the product is installed in.
 *
 * @param publish  not 0 to set the environment variable TRVHOME to a root that did not come from it
 * @param root     takes one text
 * @param fault    0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_NOT_FOUND
 */
TRVFILES_API int32_t trvfiles_install_root(int32_t publish, trvfiles_texts root,
                                           trvfiles_fault fault);

/**
 * Sets a variable of the process environment for this library. On Windows each C runtime library
 * has a copy of the environment: one that the host sets later may be missing in that of this
 * library.
 *
 * @param name   of the variable, without "="
 * @param value  empty to remove the variable
 * @param fault  0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_FAILED for a name that no variable can have, or if the system
 *         refuses; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_process_variable_set(const char* name, const char* value,
                                                   trvfiles_fault fault);

/** Variables, "$NAME", and path variables, "?NAME". */
#define TRVFILES_VARIABLE INT32_C(0)
#define TRVFILES_PATH_VARIABLE INT32_C(1)

/**
 * Looks up a variable: in the process environment first, then in the configuration, which the first
 * lookup loads.
 *
 * @param kind    TRVFILES_VARIABLE or TRVFILES_PATH_VARIABLE
 * @param name    of the variable
 * @param result  takes two texts: the value, whose references are not expanded, and where it came
 *                from, as in "from environment" or "from 'FILE' line 4"
 * @param fault   0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_UNDEFINED; TRVFILES_FATAL_REPORT if the configuration has a
 *         fault: a later call may find the variable; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_variable_get(int32_t kind, const char* name, trvfiles_texts result,
                                           trvfiles_fault fault);

/**
 * The definitions of a variable in the configuration, from the one that counts to the first.
 *
 * @param kind    TRVFILES_VARIABLE or TRVFILES_PATH_VARIABLE
 * @param name    of the variable
 * @param result  takes three texts for each definition: "NAME = value" as it was written, its file,
 *                which is empty if the program has set it, and its line as a decimal number
 * @param fault   0, or a fault
 * @return as trvfiles_variable_get(); TRVFILES_UNDEFINED also for a variable that only the process
 *         environment defines
 */
TRVFILES_API int32_t trvfiles_variable_definitions(int32_t kind, const char* name,
                                                   trvfiles_texts result, trvfiles_fault fault);

/**
 * All variables that the configuration defines, as for_each_variable() walks them.
 *
 * @param result  takes two texts for each variable: its name and its value as it is written
 * @param fault   0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_NOT_FOUND without a configuration; TRVFILES_FATAL_REPORT
 */
TRVFILES_API int32_t trvfiles_variable_list(trvfiles_texts result, trvfiles_fault fault);

/**
 * Expands the references in a text.
 *
 * @param text    the text
 * @param as_path not 0 to write each separator of the result as one "\"
 * @param result  takes one text, also for TRVFILES_UNDEFINED
 * @param fault   0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_UNDEFINED; TRVFILES_SYNTAX_ERROR; TRVFILES_NAME_TOO_LONG;
 *         TRVFILES_FATAL_REPORT; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_expand(const char* text, int32_t as_path, trvfiles_texts result,
                                     trvfiles_fault fault);

/**
 * Finds the file that a text names, as in "?CFG\environ.cfg".
 *
 * @param directory  NULL if `name` has it
 * @param name       of the file
 * @param result     takes one text: the file; for TRVFILES_NOT_FOUND the first path that was tried
 * @param fault      0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_NOT_FOUND; TRVFILES_UNDEFINED; TRVFILES_SYNTAX_ERROR;
 *         TRVFILES_BUFFER_TOO_SMALL; TRVFILES_NAME_TOO_LONG; TRVFILES_NO_FILE_NAME;
 *         TRVFILES_FATAL_REPORT; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_search(const char* directory, const char* name, trvfiles_texts result,
                                     trvfiles_fault fault);

/* -- Message files. Threads: one at a time, with the runtime ---------------------------------- */

/** The stores of the process. */
#define TRVFILES_STORE_ENVIRONMENT INT32_C(0)
#define TRVFILES_STORE_APPLICATION INT32_C(1)
#define TRVFILES_STORE_CATALOGUE INT32_C(2)

/**
 * Creates an empty store.
 *
 * @param created  takes the store, which the caller releases
 * @param fault    0, or a fault
 */
TRVFILES_API int32_t trvfiles_messages_create(trvfiles_messages* created, trvfiles_fault fault);

/**
 * Opens a store of the process. Releasing the handle does not destroy the store.
 *
 * @param store    one of TRVFILES_STORE_...; as long as nothing has filled it, it acts as empty,
 *                 and calls that change it return TRVFILES_NOT_FOUND
 * @param created  takes the handle, which the caller releases
 * @param fault    0, or a fault
 */
TRVFILES_API int32_t trvfiles_messages_open(int32_t store, trvfiles_messages* created,
                                            trvfiles_fault fault);

/**
 * Merges a message file into a store.
 *
 * @param messages  a store that trvfiles_messages_create() made
 * @param path      of the file, in which no reference is expanded
 * @param fault     0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_NOT_FOUND if the file is missing; TRVFILES_FATAL_REPORT if it
 *         has a fault: the store keeps what it has taken until then; TRVFILES_FAILED;
 *         TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_messages_load(trvfiles_messages messages, const char* path,
                                            trvfiles_fault fault);

/**
 * Merges the file of that name from every directory of a list, from the last to the first, into a
 * store of the process. References in both arguments are expanded.
 *
 * @param store        TRVFILES_STORE_APPLICATION, or TRVFILES_STORE_CATALOGUE, which takes a path
 *                     in which nothing is expanded
 * @param file_name    of the file
 * @param directories  separated by ";" or ","; NULL for the catalogue
 * @param fault        0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_FAILED; TRVFILES_FATAL_REPORT; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_messages_load_into(int32_t store, const char* file_name,
                                                 const char* directories, trvfiles_fault fault);

/**
 * The names of the sections of a store.
 *
 * @param messages  a store
 * @param names     takes a text for each section
 * @param fault     0, or a fault
 */
TRVFILES_API int32_t trvfiles_messages_sections(trvfiles_messages messages, trvfiles_texts names,
                                                trvfiles_fault fault);

/**
 * The texts of a section as they are stored.
 *
 * @param messages  a store
 * @param section   the name of the section
 * @param result    takes two texts for each message: the message, which is empty if it was removed,
 *                  and where it came from
 * @param fault     0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_NOT_FOUND; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_messages_list(trvfiles_messages messages, const char* section,
                                            trvfiles_texts result, trvfiles_fault fault);

/**
 * Gets the value of an entry.
 *
 * @param messages  a store
 * @param section   the name of the section
 * @param name      of the entry
 * @param exact     not 0 if case counts
 * @param result    takes two texts: the value, and where its entry came from
 * @param fault     0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_NOT_FOUND; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_messages_find(trvfiles_messages messages, const char* section,
                                            const char* name, int32_t exact, trvfiles_texts result,
                                            trvfiles_fault fault);

/**
 * Sets a message by its number.
 *
 * @param messages  a store
 * @param section   the name of the section, which is added if it is missing
 * @param number    from 0 up to 32766
 * @param text      the message
 * @param fault     0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_FAILED if a limit of the store is reached; TRVFILES_NOT_FOUND;
 *         TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_messages_set(trvfiles_messages messages, const char* section,
                                           int32_t number, const char* text, trvfiles_fault fault);

/**
 * Sets an entry.
 *
 * @param messages  a store
 * @param section   the name of the section, which is added if it is missing
 * @param entry     "NAME = value"
 * @param fault     0, or a fault
 * @return as trvfiles_messages_set(); TRVFILES_FAILED also for a text without "="
 */
TRVFILES_API int32_t trvfiles_messages_set_entry(trvfiles_messages messages, const char* section,
                                                 const char* entry, trvfiles_fault fault);

/**
 * Removes an entry.
 *
 * @param messages  a store
 * @param section   the name of the section
 * @param name      of the entry; case counts
 * @param fault     0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_NOT_FOUND; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_messages_remove_entry(trvfiles_messages messages, const char* section,
                                                    const char* name, trvfiles_fault fault);

/**
 * Writes a store to a file, which the complete text replaces in one step.
 *
 * @param messages  a store
 * @param path      of the file
 * @param all       0 to write the entries that belong to this file, as store_parameters() does; not
 *                  0 to write every message, as store_messages() does
 * @param fault     0, or a fault
 * @return TRVFILES_SUCCESS; TRVFILES_FATAL_REPORT if the temporary file cannot be opened;
 *         TRVFILES_FAILED if the file cannot be written; TRVFILES_NOT_FOUND; TRVFILES_BAD_TEXT
 */
TRVFILES_API int32_t trvfiles_messages_save(trvfiles_messages messages, const char* path,
                                            int32_t all, trvfiles_fault fault);

/* -- Channels. Threads: one at a time, with the runtime --------------------------------------- */

/** The channels through which every message of the runtime leaves. */
#define TRVFILES_CHANNEL_ERROR INT32_C(0)
#define TRVFILES_CHANNEL_FATAL INT32_C(1)
#define TRVFILES_CHANNEL_TRACE INT32_C(2)

/**
 * Receives a message during a call. It may call functions of the library. It must return: longjmp()
 * is not allowed.
 *
 * @param context  as given to trvfiles_channel_set()
 * @param channel  one of TRVFILES_CHANNEL_...
 * @param message  ends with a zero byte, valid until the function returns
 */
typedef void (*trvfiles_message_handler)(void* context, int32_t channel, const char* message);

/**
 * Sets the handler of a channel for all later messages.
 *
 * @param channel  one of TRVFILES_CHANNEL_...
 * @param handler  NULL for the default: errors go to standard error, traces are dropped, and fatal
 *                 messages are the reason of their call only. A handler for fatal messages receives
 *                 them in addition to that.
 * @param context  is passed to the handler
 * @param fault    0, or a fault
 */
TRVFILES_API int32_t trvfiles_channel_set(int32_t channel, trvfiles_message_handler handler,
                                          void* context, trvfiles_fault fault);

/**
 * Where the default handlers print.
 *
 * @param quiet  not 0 to drop errors
 * @param echo   not 0 to print errors and traces on standard output
 * @param fault  0, or a fault
 */
TRVFILES_API int32_t trvfiles_channel_set_output(int32_t quiet, int32_t echo, trvfiles_fault fault);

#ifdef __cplusplus
}
#endif

#endif
/* NOLINTEND(modernize-deprecated-headers,modernize-use-using) */
