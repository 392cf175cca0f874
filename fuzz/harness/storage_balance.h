#pragma once

#include <fuzz/harness/require.h>
#include <trvfiles/support/dynamic_storage.h>

#include <cstring>

namespace trv::fuzz {

/// Requires at its end that the checked heap holds as much as at its beginning.
class StorageBalance {
public:
    StorageBalance() { storage_report(before_, sizeof before_); }
    ~StorageBalance() {
        char after[64];
        storage_report(after, sizeof after);
        require(std::strcmp(before_, after) == 0, "what was allocated has been freed");
    }
    StorageBalance(const StorageBalance&) = delete;
    StorageBalance& operator=(const StorageBalance&) = delete;

private:
    char before_[64];
};

}  // namespace trv::fuzz
