#pragma once

/// @file
/// Stores of messages and variables: named sections, each an ordered list of numbered texts.
///
/// A text of the form "NAME = value" is an entry, which can also be found by its name. The name is
/// the text before the first "=", without the blanks around it. The value is the text after that
/// "=", without leading blanks. Every text has an origin, which is a file and a line or the
/// program, and refers to the text that it replaced. Texts are never removed from the memory of a
/// store, so their offsets are valid as long as the store.
///
/// Limits: 32767 sections, 32767 messages a section, 99 characters a section name. Offsets are
/// printed as eight hexadecimal digits.
///
/// A null store acts as an empty one: each function returns its failure value. An operation that
/// fails leaves sections and messages as they were, also if storage runs out. Arguments are copied,
/// and may be texts of the store themselves.
///
/// Threads: one at a time for all stores together. The record flag and the buffer of
/// find_parameter() belong to the process.

#include <trvfiles/environment/text_record.h>
#include <trvfiles/export.h>

#include <cstddef>
#include <cstdint>

namespace trv {

struct message_store;

/// Makes an empty store.
///
/// @return nullptr if storage runs out; the caller destroys the store with destroy_store()
TRV_EXPORT message_store* create_store();

/// Destroys a store with all its texts; null is ignored.
TRV_EXPORT void destroy_store(message_store* store);

/// The index of the first section with exactly this name, or -1.
TRV_EXPORT int find_section(const message_store* store, const char* name);

/// What add_section() returns if it fails.
inline constexpr std::uint16_t no_section = 65535;

/// Adds a section, also if there is one of that name: lookups by name find only the first one.
///
/// @return its index; no_section for a null name or one of 100 characters and more, for the 32768th
///         section and if storage runs out
TRV_EXPORT std::uint16_t add_section(message_store* store, const char* name);

/// The index of the section of this name, which is added if there is none; -1 on failure.
TRV_EXPORT int find_or_add_section(message_store* store, const char* name);

/// The name of a section, valid until a section is added; "" for a bad index.
TRV_EXPORT const char* section_name(const message_store* store, int section);

/// How many messages a section has; -1 without a store, -2 for a bad index.
TRV_EXPORT int message_count(const message_store* store, int section);

/// How many sections there are; -1 without a store.
TRV_EXPORT int section_count(const message_store* store);

/// A text by its number, from 0, as it is stored: references to replaced texts are not resolved.
///
/// @return the text, valid until one is added to the store; "" for a deleted one; nullptr for a bad
///         section or number
TRV_EXPORT const char* get_message(const message_store* store, int section, int number);

/// Registers a file name, for the origins of texts. The same name gives the same registration.
///
/// @return the registration; -1 for a null name and if storage runs out
TRV_EXPORT std::int32_t register_file_name(message_store* store, const char* file_name);

/// Adds a text after the last one of a section.
///
/// @param text  null acts as empty
/// @param file  a registration in this store, or -1 for set by program
/// @param line  of the text in the file. A text that is set by program has line 0.
/// @return 0; -1 for a bad section or file, for the 32768th message and if storage runs out
TRV_EXPORT int append_message(message_store* store, int section, const char* text,
                              std::int32_t file, int line);

/// Replaces a text by another one, whose record refers to it as the previous text.
///
/// After the first "=", or everywhere in a text without one, a single "+" means the value of the
/// text that is replaced. It is stored as "+(XXXXXXXX)" with that text's offset. "++" means a "+"
/// of the text. The new text is not deleted, also if the old one was.
///
/// @return 0; -1 for a bad section, number or file and if storage runs out
TRV_EXPORT int replace_message(message_store* store, int section, int number, const char* text,
                               std::int32_t file, int line);

/// Sets a message by program. Replaces an existing one. Otherwise adds the text, after as many
/// texts "undefined message" as its number needs.
///
/// @return 0; -1 for a bad section, a number below 0 or above 32766 and if storage runs out
TRV_EXPORT int set_message(message_store* store, int section, int number, const char* text);

/// Sets an entry. Replaces the first one of exactly the same name, also a deleted one. Otherwise
/// adds the text. Leading blanks are removed.
///
/// @param text  "NAME = value". A text without "=" is not stored but reported through the error
///              channel, as a warning if it comes from a file.
/// @return 0, also after that warning; -1 for a text without "=" that is set by program, for a bad
///         section or file, for the 32768th message and if storage runs out
TRV_EXPORT int set_parameter(message_store* store, int section, const char* text, std::int32_t file,
                             int line);

/// set_parameter() of a text that is set by program.
TRV_EXPORT int set_variable(message_store* store, int section, const char* text);

/// Marks the first entry of exactly this name as deleted, with all texts that it replaced.
///
/// @return 0, also for an entry that is deleted already; -2 if no entry has the name; -1 for a bad
///         section
TRV_EXPORT int remove_parameter(message_store* store, int section, const char* name);

/// The value of the first entry of a name that is not deleted.
///
/// In the value "++" reads as "+". "+(XXXXXXXX)" is replaced by the value of the text at that
/// offset, which is resolved in turn. A text has to begin there and to have been stored before the
/// text that refers to it; otherwise the "+" becomes "$(TRVNULL)". A result stops growing at 1 MiB
/// and after 10000 replacements. Each replacement sends lines to the trace channel.
///
/// @param exact   whether case counts. Only ASCII letters have case.
/// @param record  unless null, takes the record of the entry, or nullptr if there is no entry. It
///                is in the store and is valid until a text is added.
/// @return the value, or nullptr. A value without "+" is in the store and is valid until a text is
///         added. Any other one is in the one buffer of the process and is valid until the next
///         lookup in any store.
TRV_EXPORT const char* find_parameter(const message_store* store, int section, const char* name,
                                      bool exact, const text_record** record = nullptr);

/// Writes where a text came from: "from '%s' line %d" or "set by program".
///
/// @param buffer  takes at most `size` bytes, always terminated; a null buffer takes nothing
/// @param text    a pointer into a text of the store, such as the text itself or its value, at most
///                1024 bytes after its start
/// @return 0; -1 with an empty text if `text` points to no text of the store
TRV_EXPORT int describe_origin(char* buffer, std::size_t size, const message_store* store,
                               const char* text);

/// Turns the two characters "\n" into a newline in every message of every section.
TRV_EXPORT void convert_newlines(message_store* store);

/// Sets whether texts that are added from now on, in any store, are persistent. Initially they are.
///
/// @return the earlier value
TRV_EXPORT bool set_record_flag(bool record);

}  // namespace trv
