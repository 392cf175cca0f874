#pragma once

/// @file
/// The handles behind environment_store(), application_store() and catalogue_store(), for the
/// loader that fills them. Each is none (null) until its first load; the stores live until the
/// process ends.

#include <trvfiles/environment/message_store.h>

namespace trv {

struct process_stores {
    message_store* environment = nullptr;
    message_store* application = nullptr;
    message_store* catalogue = nullptr;
};
extern process_stores loaded_stores;

}  // namespace trv
