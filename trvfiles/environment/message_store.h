#pragma once

/// @file
/// Stores of messages and variables: named sections, each an ordered list of numbered texts.
///
/// A text of the form "NAME = value" is an entry that can also be found by its name: what stands
/// before the first "=" without the blanks around it. Its value is what follows the "=" without
/// leading blanks. Every text knows its origin, a file and a line or the program, and which text it
/// replaced. Texts are never taken out of a store, so their offsets stay good for its life.
///
/// Limits: 32767 sections, 32767 messages a section, 99 characters a section name. Offsets are
/// printed as eight hexadecimal digits.
///
/// A null store is an empty one: each function gives its failure value. An operation that fails,
/// for want of storage too, leaves sections and messages as they were. Texts that are handed over
/// are copied, and may themselves lie in the store.
///
/// Threads: one at a time, all stores together; the record flag and the buffer of find_parameter()
/// are those of the process.

#include <trvfiles/environment/text_record.h>
#include <trvfiles/export.h>

#include <cstddef>
#include <cstdint>

namespace trv {

struct message_store;

/// Makes an empty store.
///
/// @return none (null) when storage runs out; the caller ends it with destroy_store()
TRV_EXPORT message_store* create_store();

/// Releases a store and all that is in it; null does nothing.
TRV_EXPORT void destroy_store(message_store* store);

/// The index of the first section with exactly this name, or -1.
TRV_EXPORT int find_section(const message_store* store, const char* name);

/// What add_section() returns if it fails.
inline constexpr std::uint16_t no_section = 65535;

/// Adds a section, also when there is one of that name: lookups by name then see only the first.
///
/// @return its index; no_section for a null name or one of 100 characters and more, for the 32768th
///         section and when storage runs out
TRV_EXPORT std::uint16_t add_section(message_store* store, const char* name);

/// The index of the section of this name, which is added if there is none; -1 on failure.
TRV_EXPORT int find_or_add_section(message_store* store, const char* name);

/// The name of a section, good until a section is added; "" for a bad index.
TRV_EXPORT const char* section_name(const message_store* store, int section);

/// How many messages a section has; -1 without a store, -2 for a bad index.
TRV_EXPORT int message_count(const message_store* store, int section);

/// How many sections there are; -1 without a store.
TRV_EXPORT int section_count(const message_store* store);

/// A text by its number, from 0, as it is stored: references to replaced texts are not resolved.
///
/// @return the text, good until one is added to the store; "" for a deleted one; none (null) for a
///         bad section or number
TRV_EXPORT const char* get_message(const message_store* store, int section, int number);

/// Keeps a file name, for the origins of texts. The same name gives the same registration.
///
/// @return the registration, or -1 for a null name and when storage runs out
TRV_EXPORT std::int32_t register_file_name(message_store* store, const char* file_name);

/// Adds a text behind the last one of a section.
///
/// @param text  null acts as empty
/// @param file  a registration in this store, or -1 for set by program
/// @param line  of the text in the file; ignored for a text that is set by program, which has line
/// 0
/// @return 0; -1 for a bad section or file, for the 32768th message and when storage runs out
TRV_EXPORT int append_message(message_store* store, int section, const char* text,
                              std::int32_t file, int line);

/// Puts a text in the place of another one, which the new record keeps as its previous.
///
/// Behind the first "=", or everywhere in a text without one, a single "+" stands for the value of
/// the text that is replaced: it is stored as "+(XXXXXXXX)" with that text's offset. A "+" that is
/// meant as such is doubled. The new text is not deleted, whatever the old one was.
///
/// @return 0; -1 for a bad section, number or file and when storage runs out
TRV_EXPORT int replace_message(message_store* store, int section, int number, const char* text,
                               std::int32_t file, int line);

/// Sets a message by program: replaces one that exists, else adds the text, after as many texts
/// "undefined message" as are needed to give it its number.
///
/// @return 0; -1 for a bad section, a number below 0 or above 32766 and when storage runs out
TRV_EXPORT int set_message(message_store* store, int section, int number, const char* text);

/// Sets an entry: replaces the first one of exactly the same name, a deleted one too, else adds the
/// text. Leading blanks are left out.
///
/// @param text  "NAME = value". Without a "=" it is not stored but reported through the error
///              channel, as a warning if it comes from a file.
/// @return 0, also after that warning; -1 for a text without "=" that is set by program, for a bad
///         section or file, for the 32768th message and when storage runs out
TRV_EXPORT int set_parameter(message_store* store, int section, const char* text, std::int32_t file,
                             int line);

/// set_parameter() as set by program.
TRV_EXPORT int set_variable(message_store* store, int section, const char* text);

/// Marks the first entry of exactly this name deleted, a deleted one again, and with it all the
/// texts it replaced.
///
/// @return 0; -2 when no entry has the name; -1 for a bad section
TRV_EXPORT int remove_parameter(message_store* store, int section, const char* name);

/// The value of the first entry of a name that is not deleted.
///
/// In the value "++" reads as "+". A "+(XXXXXXXX)" is replaced by the value of the text at that
/// offset, which is resolved in turn, if a text begins there and was stored before the one that
/// refers to it; otherwise the "+" becomes "$(TRVNULL)". A result stops growing at 1 MiB and after
/// 10000 replacements. Each replacement is told to the trace channel.
///
/// @param exact   whether case counts; of the ASCII letters only, other bytes are always compared
/// @param record  unless null, gets the record of the entry, or null without one; it lies in the
///                store and is good until a text is added
/// @return the value, or none (null). One without a "+" lies in the store and is good until a text
///         is added; any other lies in one buffer for the process, until the next lookup in any
///         store.
TRV_EXPORT const char* find_parameter(const message_store* store, int section, const char* name,
                                      bool exact, const text_record** record = nullptr);

/// Writes where a text came from: "from '%s' line %d" or "set by program".
///
/// @param buffer  takes at most `size` bytes, always terminated; a null buffer takes nothing
/// @param text    a text as get_message() gave it, or a place in it, such as its value, at most
///                1024 bytes behind its start
/// @return 0, or -1 with an empty text when `text` points to no text of the store
TRV_EXPORT int describe_origin(char* buffer, std::size_t size, const message_store* store,
                               const char* text);

/// Turns "\n", as two characters, into a newline in every message of every section.
TRV_EXPORT void convert_newlines(message_store* store);

/// Sets whether texts that are made from now on, in any store, are persistent; initially they are.
///
/// @return the value so far
TRV_EXPORT bool set_record_flag(bool record);

}  // namespace trv
