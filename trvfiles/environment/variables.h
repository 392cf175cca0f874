#pragma once

/// @file
/// Lookup of variables by name: in the process environment first, then in the configuration of the
/// installation. Also the three stores of the process.
///
/// The first lookup that the process environment does not answer loads the configuration.
///
/// A name may be the result of an earlier lookup: it is copied before the configuration is loaded
/// or a hook runs. Lookups work from before main() until the process ends, also in static objects
/// and exit handlers.
///
/// Threads: one at a time, with the whole runtime; make the first lookup before threads share it.

#include <trvfiles/environment/message_store.h>
#include <trvfiles/export.h>

#include <cstddef>
#include <string>

/// The runtime: variables, expansion, search, message files, channels and memory. The functions are
/// described with their headers, which say from which threads they may be called.
namespace trv {

/// The value of a variable, searched in this order:
///
/// 1. the variable of this name in the process environment;
/// 2. the entry of section `var` of the environment store. Case is ignored.
///
/// Two names are special if they are spelled exactly like this: "TMP" gives the temporary directory
/// of the work zone, and the zone hook of the host runs before "TRVZONE" is looked up.
///
/// @param name  a name with a "=" is searched in the store only
/// @return the value; nullptr for an undefined or a null name. A value of the process environment
///         is valid until that variable changes. One of the store has its trailing blanks cut. It
///         is valid until the next lookup or change of any store: copy what has to live longer.
TRV_EXPORT const char* get_variable(const char* name);

/// The value of a path variable, searched in this order:
///
/// 1. the variable NAMEPATH in the process environment, for the path variable NAME;
/// 2. the entry NAME of section `path` of the environment store. Case is ignored.
///
/// @return the value; nullptr for an undefined or a null name. It is valid as long as that of
///         get_variable().
TRV_EXPORT const char* get_path_variable(const char* name);

/// The text that replaces a reference to an undefined variable: the value of "TRVNULL", in which
/// the first "$" is replaced by the name. It is not expanded.
///
/// @param name  null acts as an empty name
/// @return an empty text if "TRVNULL" is undefined
TRV_EXPORT std::string null_value(const char* name);

/// Whether a switch value is on. Every value is on, an empty one too, except "OFF" in upper or
/// lower case. nullptr is off.
TRV_EXPORT bool is_on(const char* value);

/// is_on() of the variable of that name, so that an undefined variable is off.
TRV_EXPORT bool variable_is_on(const char* name);

/// Writes where the value of a variable came from: "from environment", for "TMP" "from environment
/// variable TRVTMPDIR", else what describe_origin() says of the value.
///
/// @param buffer  takes at most `size` bytes, always terminated; a null buffer takes nothing
/// @param value   as get_variable() returned it: a value of the store is identified by its address
/// @return 0, or -1 with an empty text if the origin is not known
TRV_EXPORT int describe_variable_origin(char* buffer, std::size_t size, const char* name,
                                        const char* value);

/// The same for a path variable: "from environment 'NAMEPATH'", else what describe_origin() says
/// of the value.
TRV_EXPORT int describe_path_origin(char* buffer, std::size_t size, const char* name,
                                    const char* value);

/// The store of the configuration; nullptr until a lookup has loaded it.
TRV_EXPORT message_store* environment_store();

/// The store of the host's own files; nullptr until load_application_files() has filled it.
TRV_EXPORT message_store* application_store();

/// The message catalogue; nullptr until load_catalogue_file() has filled it.
TRV_EXPORT message_store* catalogue_store();

/// The value of an entry of the application store.
///
/// @param section  compared exactly
/// @param name     compared ignoring case
/// @return as find_parameter(): nullptr if the store, the section or the entry is missing. Never
///         loads anything.
TRV_EXPORT const char* get_application_parameter(const char* section, const char* name);

/// A text of the message catalogue by its number, from 0.
///
/// @return as get_message(): nullptr if the catalogue, the section or the number is missing. Never
///         loads anything.
TRV_EXPORT const char* get_catalogue_message(const char* section, int number);

/// The value of an entry of the message catalogue; arguments and result as those of
/// get_application_parameter().
TRV_EXPORT const char* get_catalogue_parameter(const char* section, const char* name);

}  // namespace trv
