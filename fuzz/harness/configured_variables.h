#pragma once

#include <fuzz/harness/require.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/environment/variables_internal.h>
#include <trvfiles/support/platform.h>

namespace trv::fuzz {

/// A configuration that replaces the one that a lookup would load. The temporary directory of the
/// process is set, so that no lookup creates one.
class ConfiguredVariables {
public:
    ConfiguredVariables() : store_(create_store()) {
        platform::set_environment("TRVTMPDIR", "\\no\\such\\directory");
        require(store_ != nullptr, "a store can be made");
        var_ = add_section(store_, "var");
        path_ = add_section(store_, "path");
        loaded_stores.environment = store_;
    }
    ~ConfiguredVariables() {
        loaded_stores.environment = nullptr;
        destroy_store(store_);
    }
    ConfiguredVariables(const ConfiguredVariables&) = delete;
    ConfiguredVariables& operator=(const ConfiguredVariables&) = delete;

    /// Sets "NAME = value"; a text without "=" is ignored.
    void variable(const char* text) { set_variable(store_, var_, text); }
    void path(const char* text) { set_variable(store_, path_, text); }

private:
    message_store* store_;
    int var_ = -1;
    int path_ = -1;
};

}  // namespace trv::fuzz
