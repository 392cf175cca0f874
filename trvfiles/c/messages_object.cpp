#include <trvfiles/c/messages_object.h>
#include <trvfiles/c/refusal.h>
#include <trvfiles/c/trvfiles.h>
#include <trvfiles/environment/variables.h>

#include <new>

namespace trv::c {

MessagesObject::MessagesObject() : own_(create_store()) {
    if (own_ == nullptr) throw std::bad_alloc();
}

MessagesObject::MessagesObject(std::int32_t store) : ofProcess_(store) {}

message_store* MessagesObject::store() const {
    if (!isOfProcess()) return own_.get();
    if (ofProcess_ == TRVFILES_STORE_ENVIRONMENT) return environment_store();
    return ofProcess_ == TRVFILES_STORE_APPLICATION ? application_store() : catalogue_store();
}

message_store* MessagesObject::existingStore() const {
    message_store* found = store();
    if (found == nullptr) throw Refusal{TRVFILES_NOT_FOUND, "the process does not have the store"};
    return found;
}

}  // namespace trv::c
