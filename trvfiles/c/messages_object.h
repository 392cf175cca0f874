#pragma once

/// @file
/// The store of messages to which a handle refers.

#include <trvfiles/c/handle_table.h>
#include <trvfiles/environment/message_store.h>

#include <cstdint>
#include <memory>

namespace trv::c {

/// A store of the caller's, or one of the process, which may not be there yet.
///
/// Threads: one at a time, with the whole runtime.
class MessagesObject {
public:
    static constexpr HandleType type = HandleType::messages;

    /// A new store.
    ///
    /// @throws std::bad_alloc
    MessagesObject();

    /// @param store  one of TRVFILES_STORE_...
    explicit MessagesObject(std::int32_t store);

    bool isOfProcess() const { return own_ == nullptr; }

    /// nullptr as long as the process does not have the store.
    message_store* store() const;

    /// The store, to be changed.
    ///
    /// @throws Refusal if the process does not have it
    message_store* existingStore() const;

private:
    struct Destroyer {
        void operator()(message_store* store) const noexcept { destroy_store(store); }
    };

    std::unique_ptr<message_store, Destroyer> own_;
    std::int32_t ofProcess_ = 0;
};

}  // namespace trv::c
