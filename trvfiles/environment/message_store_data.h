#pragma once

/// @file
/// What a store is made of, for the sources that implement it.
///
/// Threads: one at a time.

#include <trvfiles/environment/name_index.h>
#include <trvfiles/environment/store_section.h>
#include <trvfiles/environment/stored_vector.h>
#include <trvfiles/environment/text_pool.h>

namespace trv {

struct message_store {
    text_pool texts;
    stored_vector<store_section> sections;
    name_index section_names;
};

}  // namespace trv
