#pragma once

/// @file
/// Memory that a test shares with its child processes.

#include <sys/mman.h>

#include <algorithm>
#include <new>
#include <string>
#include <type_traits>

namespace trv::testing {

template <class T>
class Shared {
    static_assert(std::is_trivially_destructible_v<T>);

public:
    Shared() {
        void* memory =
            ::mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) throw std::bad_alloc();
        value_ = new (memory) T();
    }
    ~Shared() { ::munmap(value_, sizeof(T)); }
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;

    T& operator*() const { return *value_; }
    T* operator->() const { return value_; }

private:
    T* value_;
};

/// A text of a fixed length.
class Text {
public:
    void store(const std::string& text) { text_[text.copy(text_, sizeof text_ - 1)] = '\0'; }
    std::string text() const { return text_; }

private:
    char text_[16384] = "";
};

}  // namespace trv::testing
