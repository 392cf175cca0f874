#pragma once

/// @file
/// The small objects to which handles refer, and how a function gets the object of a handle.

#include <trvfiles/c/handle_table.h>
#include <trvfiles/c/refusal.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/machine_context/CMachineContextData.h>
#include <trvfiles/support/CFileFault.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace trv::c {

struct FaultObject {
    static constexpr HandleType type = HandleType::fault;
    CFileFault values;
};

struct TextsObject {
    static constexpr HandleType type = HandleType::texts;
    std::vector<std::string> texts;
};

struct ContextObject {
    static constexpr HandleType type = HandleType::context;
    CMachineContextData data;
};

/// The object of a handle.
///
/// @throws Refusal if there is none
template <class Object>
std::shared_ptr<Object> objectOf(std::uint64_t handle) {
    auto object = std::static_pointer_cast<Object>(handleTable().find(Object::type, handle));
    if (object == nullptr) throw badHandle();
    return object;
}

/// Adds a new object and stores its handle.
///
/// @throws Refusal if `created` is nullptr
template <class Object, class... Arguments>
void create(std::uint64_t* created, Arguments&&... arguments) {
    require(created);
    *created = handleTable().add(Object::type,
                                 std::make_shared<Object>(std::forward<Arguments>(arguments)...));
}

}  // namespace trv::c
