#pragma once

/// @file
/// What message_file.cpp gives to the library's own sources: loading a message file from the disk
/// into a store.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/environment/message_parser.h>
#include <trvfiles/environment/message_store.h>

#include <memory>

namespace trv {

/// For a new store: each header adds a section, each entry the next message of its section.
extern const message_sink plain_sink;

/// For a store with contents: sections and entries are found by name, and added if there is none of
/// that name.
extern const message_sink merging_sink;

/// `missing` is not an error. `failed` has been reported: the file cannot be opened, was given up
/// or could not be read to its end. The store then holds the part before.
enum class load_result { loaded, missing, failed };

/// Reads the file of that path into the store.
///
/// @param path  taken unchanged; also the name under which the entries are registered. REQUIRES: a
///              text that stays valid during lookups, handlers and the growth of the store
load_result load_file(message_store* store, const char* path, const message_sink& sink);

struct store_destroyer {
    void operator()(message_store* store) const noexcept { destroy_store(store); }
};
using store_owner = std::unique_ptr<message_store, store_destroyer>;

}  // namespace trv
