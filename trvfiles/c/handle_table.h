#pragma once

/// @file
/// The live objects of the C interface, by their handles.
///
/// A handle is a number: the type of the object in the highest byte, below it a serial number that
/// is never used again. So a handle of a released object is not in the table, and nothing that was
/// freed is read to find that out. A pointer as a handle would be valid again as soon as its memory
/// is. A lookup takes a shared lock and a hash lookup, about 60 ns.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <shared_mutex>
#include <unordered_map>

namespace trv::c {

enum class HandleType : std::uint8_t {
    fault = 1,
    texts,
    context,
    assembly,
    components,
    placements,
    messages,
};

/// Threads: any.
class HandleTable {
public:
    using Object = std::shared_ptr<void>;

    /// Adds an object and returns its handle.
    std::uint64_t add(HandleType type, Object object);

    /// The object of a handle. It lives at least as long as the result.
    ///
    /// @return nullptr if the handle is 0, released, unknown or of another type
    Object find(HandleType type, std::uint64_t handle) const;

    /// Removes a handle of any type and returns its object, or nullptr.
    Object remove(std::uint64_t handle);

    std::size_t size() const;

private:
    mutable std::shared_mutex mutex_;
    std::unordered_map<std::uint64_t, Object> objects_;
    std::uint64_t lastSerial_ = 0;
};

/// The table of the process. It is never destroyed: a host may call functions during exit.
HandleTable& handleTable();

}  // namespace trv::c
