#pragma once

#include <tests/common/system.h>
#include <trvfiles/support/platform.h>

#include <optional>
#include <string>
#include <utility>

namespace trv::testing {

/// Sets an environment variable, and restores its old value in the destructor. nullptr unsets it.
/// An empty text sets it to an empty value.
class ScopedVariable {
public:
    ScopedVariable(std::string name, const char* value) : name_(std::move(name)) {
        const char* old = platform::get_environment(name_.c_str());
        if (old != nullptr) old_ = old;
        set(value);
    }
    ~ScopedVariable() { set(old_ ? old_->c_str() : nullptr); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

    void set(const char* value) {
        if (value != nullptr && *value == '\0') return setEmptyVariable(name_.c_str());
        platform::set_environment(name_.c_str(), value);
    }

private:
    std::string name_;
    std::optional<std::string> old_;
};

}  // namespace trv::testing
