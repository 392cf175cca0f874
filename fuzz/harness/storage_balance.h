#pragma once

#include <fuzz/harness/require.h>
#include <trvfiles/support/dynamic_storage.h>

#include <cstring>

namespace trv::fuzz {

/// Requires in its destructor that the checked heap holds as much as in its constructor.
class StorageBalance {
public:
    StorageBalance() { storage_report(before_, sizeof before_); }
    ~StorageBalance() {
        char after[64];
        storage_report(after, sizeof after);
        require(std::strcmp(before_, after) == 0, "all allocated memory has been freed");
    }
    StorageBalance(const StorageBalance&) = delete;
    StorageBalance& operator=(const StorageBalance&) = delete;

private:
    char before_[64];
};

}  // namespace trv::fuzz
