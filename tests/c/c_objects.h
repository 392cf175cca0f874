#pragma once

/// @file
/// Objects of the C interface that a test owns, and short forms of what it asks of them.

#include <trvfiles/c/trvfiles.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace trv::testing {

/// A handle that is released at the end of its scope.
class Handle {
public:
    using Create = int32_t (*)(trvfiles_handle* created, trvfiles_fault fault);

    Handle() = default;
    explicit Handle(Create create) { EXPECT_EQ(create(&handle_, 0), TRVFILES_SUCCESS); }
    ~Handle() {
        if (handle_ != 0) trvfiles_release(handle_, 0);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    // NOLINTNEXTLINE(google-explicit-constructor): a test passes it on as a handle.
    operator trvfiles_handle() const { return handle_; }

    /// The place of a handle that is created later.
    trvfiles_handle* place() { return &handle_; }

private:
    trvfiles_handle handle_ = 0;
};

class FaultHandle : public Handle {
public:
    FaultHandle()
        : Handle([](trvfiles_handle* created, trvfiles_fault) {
              return trvfiles_fault_create(created);
          }) {}

    trvfiles_fault_values values() const {
        trvfiles_fault_values values = {};
        values.size = sizeof values;
        EXPECT_EQ(trvfiles_fault_get(*this, &values), TRVFILES_SUCCESS);
        return values;
    }
    std::string reason() const { return values().reason; }
};

class Texts : public Handle {
public:
    Texts() : Handle(trvfiles_texts_create) {}

    std::vector<std::string> all() const {
        std::size_t count = 0;
        EXPECT_EQ(trvfiles_texts_count(*this, &count, 0), TRVFILES_SUCCESS);
        std::vector<std::string> texts;
        for (std::size_t i = 0; i < count; ++i)
            texts.push_back(at(i));
        return texts;
    }
    std::string at(std::size_t index) const {
        const char* text = nullptr;
        std::size_t length = 0;
        EXPECT_EQ(trvfiles_texts_get(*this, index, &text, &length, 0), TRVFILES_SUCCESS);
        return text == nullptr ? std::string() : std::string(text, length);
    }
    /// The only text.
    std::string one() const {
        const std::vector<std::string> texts = all();
        EXPECT_EQ(texts.size(), 1U);
        return texts.empty() ? std::string() : texts.front();
    }
};

class Assembly : public Handle {
public:
    Assembly() : Handle(trvfiles_assembly_create) {}

    std::size_t add(std::size_t parent, std::size_t position, const char* name,
                    const char* geometry = "") const {
        std::size_t index = 0;
        EXPECT_EQ(trvfiles_component_add(*this, parent, position, 0, 0, &index, 0),
                  TRVFILES_SUCCESS);
        setText(index, TRVFILES_COMPONENT_NAME, name);
        setText(index, TRVFILES_COMPONENT_GEOMETRY, geometry);
        return index;
    }
    void setText(std::size_t index, int32_t field, const char* text) const {
        EXPECT_EQ(trvfiles_component_set_text(*this, index, field, text, 0), TRVFILES_SUCCESS);
    }
    std::string text(std::size_t index, int32_t field) const {
        const Texts text;
        EXPECT_EQ(trvfiles_component_get_text(*this, index, field, text, 0), TRVFILES_SUCCESS);
        return text.one();
    }
    trvfiles_component component(std::size_t index) const {
        trvfiles_component component = {};
        component.size = sizeof component;
        EXPECT_EQ(trvfiles_component_get(*this, index, &component, 0), TRVFILES_SUCCESS);
        return component;
    }
    /// The names of all components in document order, each after a "." for each component above.
    std::vector<std::string> names() const {
        std::size_t count = 0;
        EXPECT_EQ(trvfiles_component_count(*this, &count, 0), TRVFILES_SUCCESS);
        std::vector<std::string> names;
        for (std::size_t i = 0; i < count; ++i)
            names.push_back(std::string(component(i).depth, '.') +
                            text(i, TRVFILES_COMPONENT_NAME));
        return names;
    }
};

class Context : public Handle {
public:
    Context() : Handle(trvfiles_context_create) {}
};

class Messages : public Handle {
public:
    Messages() : Handle(trvfiles_messages_create) {}
};

template <class Struct>
Struct sized() {
    Struct values = {};
    values.size = sizeof values;
    return values;
}

}  // namespace trv::testing
