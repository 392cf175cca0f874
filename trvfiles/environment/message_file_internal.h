#pragma once

/// @file
/// How a message file gets from the disk into a store.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/environment/message_parser.h>
#include <trvfiles/environment/message_store.h>

#include <memory>

namespace trv {

/// For a new store: each header adds a section, each entry the next message of its section.
extern const message_sink plain_sink;

/// For a store that has contents: sections and entries are found by name, and added where there is
/// none of that name.
extern const message_sink merging_sink;

/// `missing` is no error. `failed` has been reported: the file cannot be opened, or it was given up
/// or could not be read to its end, and the store holds what came before.
enum class load_result { loaded, missing, failed };

/// Reads the file of that path into the store.
///
/// @param path  taken as it stands; also the name under which the entries are registered. REQUIRES:
///              a text that lookups, handlers and the growth of the store leave where it is
load_result load_file(message_store* store, const char* path, const message_sink& sink);

struct store_destroyer {
    void operator()(message_store* store) const noexcept { destroy_store(store); }
};
using store_owner = std::unique_ptr<message_store, store_destroyer>;

}  // namespace trv
