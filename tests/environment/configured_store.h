#pragma once

#include <trvfiles/environment/message_store.h>
#include <trvfiles/environment/variables_internal.h>

#include <gtest/gtest.h>

#include <string>

namespace trv::testing {

/// Puts a store of the test's own, with the sections `var` and `path`, in the place of the one that
/// a lookup would load.
class ConfiguredStore {
public:
    ConfiguredStore() : store_(create_store()), earlier_(loaded_stores.environment) {
        var_ = add_section(store_, "var");
        path_ = add_section(store_, "path");
        loaded_stores.environment = store_;
    }
    ~ConfiguredStore() {
        loaded_stores.environment = earlier_;
        destroy_store(store_);
    }
    ConfiguredStore(const ConfiguredStore&) = delete;
    ConfiguredStore& operator=(const ConfiguredStore&) = delete;

    /// Sets "NAME = value" as by program.
    void variable(const std::string& text) {
        EXPECT_EQ(0, set_variable(store_, var_, text.c_str()));
    }
    void path(const std::string& text) { EXPECT_EQ(0, set_variable(store_, path_, text.c_str())); }

    /// Sets "NAME = value" as from a line of a file.
    void variable(const std::string& text, const char* file, int line) {
        EXPECT_EQ(
            0, set_parameter(store_, var_, text.c_str(), register_file_name(store_, file), line));
    }
    void path(const std::string& text, const char* file, int line) {
        EXPECT_EQ(
            0, set_parameter(store_, path_, text.c_str(), register_file_name(store_, file), line));
    }

    message_store* get() const { return store_; }
    int var() const { return var_; }

private:
    message_store* store_;
    message_store* earlier_;
    int var_ = -1;
    int path_ = -1;
};

}  // namespace trv::testing
