#pragma once

/// @file
/// A call of each function of the C interface that takes a handle, for tests of every function.

#include <tests/c/c_objects.h>

#include <functional>
#include <string>
#include <vector>

namespace trv::testing {

enum class HandleKind { none, fault, texts, context, assembly, components, placements, messages };

/// One object of each kind, and what the calls need besides.
struct LiveObjects {
    LiveObjects();

    trvfiles_handle of(HandleKind kind) const;

    FaultHandle fault;
    Texts texts;
    Context context;
    Assembly assembly;
    Handle components;
    Handle placements;
    Messages messages;

    // The results of the calls.
    trvfiles_handle created = 0;
    std::size_t count = 0;
    const char* text = nullptr;
    int32_t flag = 0;
    uint32_t bits = 0;
    double vector[3] = {1, 2, 3};
    std::size_t noParent = TRVFILES_NO_INDEX;
    trvfiles_fault_values faultValues = sized<trvfiles_fault_values>();
    trvfiles_note note = sized<trvfiles_note>();
    trvfiles_axis axis = sized<trvfiles_axis>();
    trvfiles_context_numbers numbers = sized<trvfiles_context_numbers>();
    trvfiles_component component = sized<trvfiles_component>();
    trvfiles_placement_table placementTable = sized<trvfiles_placement_table>();
    trvfiles_component_table table = sized<trvfiles_component_table>();
    trvfiles_component_table rootAlone = sized<trvfiles_component_table>();
};

/// A call with valid arguments but for the handle. A function that takes two handles has two calls.
struct HandleUse {
    const char* function;
    HandleKind kind;
    std::function<int32_t(LiveObjects& live, trvfiles_handle handle, trvfiles_fault fault)> call;
    /// Whether the function has an argument `fault`.
    bool takesFault = true;
};

/// Without a call that would release a live object.
std::vector<HandleUse> handleUses();

}  // namespace trv::testing
