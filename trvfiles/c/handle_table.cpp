#include <trvfiles/c/handle_table.h>

#include <mutex>
#include <new>
#include <utility>

namespace trv::c {
namespace {

constexpr unsigned typeShift = 56;

}  // namespace

std::uint64_t HandleTable::add(HandleType type, Object object) {
    const std::unique_lock lock(mutex_);
    const std::uint64_t handle = static_cast<std::uint64_t>(type) << typeShift | (lastSerial_ + 1);
    objects_.emplace(handle, std::move(object));
    ++lastSerial_;
    return handle;
}

HandleTable::Object HandleTable::find(HandleType type, std::uint64_t handle) const {
    if (handle >> typeShift != static_cast<std::uint64_t>(type)) return nullptr;
    const std::shared_lock lock(mutex_);
    const auto found = objects_.find(handle);
    return found == objects_.end() ? nullptr : found->second;
}

// The object is destroyed by the caller, after the lock.
HandleTable::Object HandleTable::remove(std::uint64_t handle) {
    const std::unique_lock lock(mutex_);
    const auto found = objects_.find(handle);
    if (found == objects_.end()) return nullptr;
    Object object = std::move(found->second);
    objects_.erase(found);
    return object;
}

std::size_t HandleTable::size() const {
    const std::shared_lock lock(mutex_);
    return objects_.size();
}

HandleTable& handleTable() {
    alignas(HandleTable) static unsigned char memory[sizeof(HandleTable)];
    static HandleTable& table = *new (memory) HandleTable;
    return table;
}

}  // namespace trv::c
