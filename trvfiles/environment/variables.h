#pragma once

/// @file
/// Lookup of variables by name, in the process environment first and then in the configuration of
/// the installation, and the three stores that belong to the process.
///
/// The first lookup that the process environment cannot answer loads the configuration.
///
/// A name may be the result of an earlier lookup: it is copied before loading or a hook could
/// overwrite it. Results are available from before main() until the process ends, in static objects
/// and exit handlers too.
///
/// Threads: one at a time, with the whole runtime; make the first lookup before threads share it.

#include <trvfiles/environment/message_store.h>
#include <trvfiles/export.h>

#include <cstddef>
#include <string>

namespace trv {

/// The value of a variable: what the process environment has under this name, else the entry of
/// section `var` of the environment store, found without regard to case.
///
/// Two names, in exactly this spelling, are special: "TMP" gives the temporary directory of the
/// work zone, and before "TRVZONE" is looked up the zone hook of the host runs.
///
/// @param name  a name that holds a "=" is looked for in the store alone
/// @return the value, or none for an undefined or a null name. A value of the process environment
///         stands until that variable changes. One of the store, whose trailing blanks are cut
///         where it stands, is good until the next lookup or change of any store; copy what has to
///         live longer.
TRV_EXPORT const char* get_variable(const char* name);

/// The value of a path variable: what the process environment has under the name followed by
/// "PATH", else the entry of that name, without "PATH", of section `path`, found without regard to
/// case.
///
/// @return the value, or none; none for a null name. It lives as that of get_variable().
TRV_EXPORT const char* get_path_variable(const char* name);

/// The text that stands for an undefined variable: the value of "TRVNULL", in which the first "$"
/// is replaced by the name. It is not expanded.
///
/// @param name  null acts as an empty name
/// @return an empty text where "TRVNULL" is undefined
TRV_EXPORT std::string null_value(const char* name);

/// Whether a switch value is on: every value is, an empty one too, but "OFF" in any case. None
/// (null) is off.
TRV_EXPORT bool is_on(const char* value);

/// is_on() of the variable of that name, so that an undefined variable is off.
TRV_EXPORT bool variable_is_on(const char* name);

/// Writes where the value of a variable came from: "from environment", for "TMP" "from environment
/// variable TRVTMPDIR", else what describe_origin() says of the value.
///
/// @param buffer  takes at most `size` bytes, always terminated; a null buffer takes nothing
/// @param value   as get_variable() returned it: a value of the store is told by its address
/// @return 0, or -1 with an empty text where the origin is not known
TRV_EXPORT int describe_variable_origin(char* buffer, std::size_t size, const char* name,
                                        const char* value);

/// The same for a path variable: "from environment 'NAMEPATH'", else what describe_origin() says
/// of the value.
TRV_EXPORT int describe_path_origin(char* buffer, std::size_t size, const char* name,
                                    const char* value);

/// The store of the configuration; none (null) until a lookup has loaded it.
TRV_EXPORT message_store* environment_store();

/// The store of the host's own files; none (null) until load_application_files() has filled it.
TRV_EXPORT message_store* application_store();

/// The message catalogue; none (null) until load_catalogue_file() has filled it.
TRV_EXPORT message_store* catalogue_store();

/// The value of an entry of the application store.
///
/// @param section  compared exactly
/// @param name     compared without regard to case
/// @return as find_parameter(): none where the store, the section or the entry is missing. Never
///         loads anything.
TRV_EXPORT const char* get_application_parameter(const char* section, const char* name);

/// A text of the message catalogue by its number, from 0.
///
/// @return as get_message(): none where the catalogue, the section or the number is missing. Never
///         loads anything.
TRV_EXPORT const char* get_catalogue_message(const char* section, int number);

/// The value of an entry of the message catalogue; arguments and result as those of
/// get_application_parameter().
TRV_EXPORT const char* get_catalogue_parameter(const char* section, const char* name);

}  // namespace trv
