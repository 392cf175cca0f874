// Operations of the C interface. None throws, and each failure has a status and a reason.

#include <tests/c/c_objects.h>
#include <tests/torture/operations.h>

#include <gtest/gtest.h>

namespace trv::testing {
namespace {

std::size_t liveHandles() {
    std::size_t count = 0;
    EXPECT_EQ(trvfiles_live_handles(&count, 0), TRVFILES_SUCCESS);
    return count;
}

/// Runs calls with a fault that is made before. A failure has a reason, and no call keeps an object
/// that it has not given away.
///
/// @param calls  takes the fault; returns the first status that is not TRVFILES_SUCCESS
template <class Calls>
int checked(Workshop& at, Calls calls) {
    const FaultHandle fault;
    const std::size_t before = liveHandles();
    const int status = at.under([&] { return calls(fault); });
    EXPECT_EQ(fault.reason().empty(), status == TRVFILES_SUCCESS) << status;
    EXPECT_EQ(liveHandles(), before);
    return status;
}

Outcome createObjects(Workshop& at) {
    constexpr Handle::Create creates[] = {trvfiles_texts_create, trvfiles_context_create,
                                          trvfiles_assembly_create, trvfiles_messages_create};
    const int status = checked(at, [&](trvfiles_fault fault) {
        for (const Handle::Create create : creates) {
            trvfiles_handle created = 0;
            const std::int32_t result = create(&created, fault);
            EXPECT_EQ(created != 0, result == TRVFILES_SUCCESS);
            if (result != TRVFILES_SUCCESS) return result;
            trvfiles_release(created, fault);
        }
        return TRVFILES_SUCCESS;
    });
    return {status, ""};
}

// The root and two children of it, one of which has a child.
void fillAssembly(const Assembly& assembly) {
    assembly.setText(0, TRVFILES_COMPONENT_NAME, "the root of the assembly");
    assembly.add(0, 0, "a name of more than sixteen bytes", "a.stl");
    assembly.add(0, 1, "another name of more than that");
    assembly.add(2, 0, "c", "c.stl");
}

template <class Change>
Outcome changeAssembly(Workshop& at, Change change) {
    const Assembly assembly;
    fillAssembly(assembly);
    Handle copy;
    EXPECT_EQ(trvfiles_assembly_copy(assembly, copy.place(), 0), TRVFILES_SUCCESS);
    const int status = checked(at, [&](trvfiles_fault fault) { return change(assembly, fault); });
    if (status != TRVFILES_SUCCESS) {
        std::int32_t isEqual = 0;
        EXPECT_EQ(trvfiles_assembly_equal(assembly, copy, &isEqual, 0), TRVFILES_SUCCESS);
        EXPECT_EQ(isEqual, 1);
    }
    return {status, ::testing::PrintToString(assembly.names())};
}

Outcome addComponent(Workshop& at) {
    return changeAssembly(at, [](trvfiles_assembly assembly, trvfiles_fault fault) {
        return trvfiles_component_add(assembly, 0, 1, assembly, 2, nullptr, fault);
    });
}

Outcome appendComponent(Workshop& at) {
    return changeAssembly(at, [](trvfiles_assembly assembly, trvfiles_fault fault) {
        return trvfiles_component_add(assembly, 2, 1, 0, 0, nullptr, fault);
    });
}

Outcome renameComponent(Workshop& at) {
    return changeAssembly(at, [](trvfiles_assembly assembly, trvfiles_fault fault) {
        return trvfiles_component_set_text(assembly, 3, TRVFILES_COMPONENT_NAME,
                                           "Stativ \xC3\xA9 of more than sixteen bytes", fault);
    });
}

Outcome replaceComponents(Workshop& at) {
    return changeAssembly(at, [](trvfiles_assembly assembly, trvfiles_fault fault) {
        const std::size_t parents[] = {TRVFILES_NO_INDEX, 0, 1, 0};
        const std::size_t names[] = {0, 1, 2, 24, 24};
        auto table = sized<trvfiles_component_table>();
        table.count = 4;
        table.parent = parents;
        table.name = names;
        table.text = "abthe third of the names";
        table.text_length = 24;
        return trvfiles_assembly_set_components(assembly, &table, fault);
    });
}

Outcome takeTables(Workshop& at) {
    const Assembly assembly;
    fillAssembly(assembly);
    std::size_t counts[2] = {};
    const int status = checked(at, [&](trvfiles_fault fault) {
        Handle components;
        Handle placements;
        auto table = sized<trvfiles_component_table>();
        auto placed = sized<trvfiles_placement_table>();
        std::int32_t result = trvfiles_assembly_components(assembly, components.place(), fault);
        if (result != TRVFILES_SUCCESS) return result;
        result = trvfiles_assembly_flatten(assembly, nullptr, placements.place(), fault);
        if (result != TRVFILES_SUCCESS) return result;
        trvfiles_components_get(components, &table, 0);
        trvfiles_placements_get(placements, &placed, 0);
        counts[0] = table.count;
        counts[1] = placed.count;
        return result;
    });
    return {status, std::to_string(counts[0]) + ' ' + std::to_string(counts[1])};
}

Outcome readAssembly(Workshop& at) {
    const Assembly assembly;
    const std::string path = at.text("f.assembly");
    const int status = checked(at, [&](trvfiles_fault fault) {
        return trvfiles_assembly_read(assembly, path.c_str(), fault);
    });
    return {status, ::testing::PrintToString(assembly.names())};
}

Outcome writeAssemblyToMemory(Workshop& at) {
    const Assembly assembly;
    fillAssembly(assembly);
    const Texts bytes;
    const int status = checked(at, [&](trvfiles_fault fault) {
        return trvfiles_assembly_write_memory(assembly, bytes, fault);
    });
    EXPECT_EQ(bytes.all().empty(), status != TRVFILES_SUCCESS);
    return {status, ::testing::PrintToString(bytes.all())};
}

Outcome readContext(Workshop& at) {
    const Context context;
    const std::string path = at.text("f.mctx");
    const int status = checked(at, [&](trvfiles_fault fault) {
        return trvfiles_context_read(context, path.c_str(), fault);
    });
    return {status, ""};
}

Outcome writeContext(Workshop& at) {
    const Context context;
    EXPECT_EQ(trvfiles_context_set_text(context, 0, "a name of more than sixteen bytes", 0),
              TRVFILES_SUCCESS);
    const std::string path = at.text("f.mctx");
    const int status = checked(at, [&](trvfiles_fault fault) {
        return trvfiles_context_write(context, path.c_str(), fault);
    });
    return {status, ""};
}

Outcome setContext(Workshop& at) {
    const Context context;
    auto numbers = sized<trvfiles_context_numbers>();
    numbers.machine_proximity = 2;
    const int status = checked(at, [&](trvfiles_fault fault) {
        const std::int32_t result = trvfiles_context_set_text(
            context, TRVFILES_CONTEXT_COMMENT, "Stativ \xC3\xA9 of more than sixteen", fault);
        return result == TRVFILES_SUCCESS ? trvfiles_context_set_numbers(context, &numbers, fault)
                                          : result;
    });
    return {status, ""};
}

Outcome useAxis(Workshop& at) {
    const Texts bytes;
    const std::string path = at.text("f.axis");
    auto axis = sized<trvfiles_axis>();
    const int status = checked(at, [&](trvfiles_fault fault) {
        const std::int32_t result = trvfiles_axis_read(path.c_str(), &axis, fault);
        if (result != TRVFILES_SUCCESS) return result;
        axis.tag_count = 0;
        return trvfiles_axis_write_memory(&axis, bytes, fault);
    });
    return {status, ::testing::PrintToString(bytes.all())};
}

Outcome expandText(Workshop& at) {
    const Texts texts;
    const int status = checked(at, [&](trvfiles_fault fault) {
        return trvfiles_expand("$LIB/a name of more than sixteen bytes", 1, texts, fault);
    });
    return {status, ::testing::PrintToString(texts.all())};
}

Outcome lookUp(Workshop& at) {
    const Texts texts;
    const int status = checked(at, [&](trvfiles_fault fault) {
        const std::int32_t result = trvfiles_variable_definitions(0, "LIB", texts, fault);
        return result == TRVFILES_SUCCESS ? trvfiles_variable_get(0, "LIB", texts, fault) : result;
    });
    return {status, ::testing::PrintToString(texts.all())};
}

Outcome loadMessages(Workshop& at) {
    const Messages messages;
    const Texts texts;
    const std::string path = at.text("a.cfg");
    const int status = checked(at, [&](trvfiles_fault fault) {
        const std::int32_t result = trvfiles_messages_load(messages, path.c_str(), fault);
        return result == TRVFILES_SUCCESS ? trvfiles_messages_sections(messages, texts, fault)
                                          : result;
    });
    return {status, ::testing::PrintToString(texts.all())};
}

Outcome setEntries(Workshop& at) {
    const Messages messages;
    const Texts texts;
    const int status = checked(at, [&](trvfiles_fault fault) {
        std::int32_t result =
            trvfiles_messages_set_entry(messages, "section", "A = a value of some length", fault);
        if (result == TRVFILES_SUCCESS) {
            result = trvfiles_messages_set(messages, "text", 3, "a message of some length", fault);
        }
        return result == TRVFILES_SUCCESS
                   ? trvfiles_messages_find(messages, "section", "a", 0, texts, fault)
                   : result;
    });
    return {status, ::testing::PrintToString(texts.all())};
}

Outcome listFavourites(Workshop& at) {
    const Texts texts;
    const int status = checked(
        at, [&](trvfiles_fault fault) { return trvfiles_catalogue_list("", texts, fault); });
    return {status, ::testing::PrintToString(texts.all())};
}

}  // namespace

// The throwing handlers of a test throw through a call of C++, and end as an internal error here.
std::vector<Operation> cFileOperations() {
    const std::set<int> reading = {TRVFILES_OPEN_ERROR, TRVFILES_CONTENT_ERROR,
                                   TRVFILES_OUT_OF_MEMORY};
    const std::set<int> writing = {TRVFILES_OPEN_ERROR,      TRVFILES_CONTENT_ERROR,
                                   TRVFILES_STRUCTURE_ERROR, TRVFILES_OUT_OF_MEMORY,
                                   TRVFILES_FATAL_REPORT,    TRVFILES_INTERNAL_ERROR};
    const std::set<int> loading = {TRVFILES_NOT_FOUND, TRVFILES_FAILED, TRVFILES_OUT_OF_MEMORY,
                                   TRVFILES_FATAL_REPORT, TRVFILES_INTERNAL_ERROR};
    return {
        inQt({"CReadAnAssembly", TRVFILES_SUCCESS, reading, readAssembly}),
        {"CReadAContext", TRVFILES_SUCCESS, reading, readContext},
        {"CWriteAContext", TRVFILES_SUCCESS, writing, writeContext},
        {"CUseAnAxis", TRVFILES_SUCCESS, reading, useAxis},
        {"CLoadMessages", TRVFILES_SUCCESS, loading, loadMessages},
    };
}

std::vector<Operation> cMemoryOperations() {
    const std::set<int> memory = {TRVFILES_OUT_OF_MEMORY};
    const std::set<int> runtime = {TRVFILES_OUT_OF_MEMORY, TRVFILES_FATAL_REPORT, TRVFILES_FAILED,
                                   TRVFILES_INTERNAL_ERROR, TRVFILES_UNDEFINED};
    return {
        {"CCreateObjects", TRVFILES_SUCCESS, runtime, createObjects},
        {"CAddAComponent", TRVFILES_SUCCESS, memory, addComponent},
        {"CAppendAComponent", TRVFILES_SUCCESS, memory, appendComponent},
        {"CRenameAComponent", TRVFILES_SUCCESS, memory, renameComponent},
        {"CReplaceComponents", TRVFILES_SUCCESS, memory, replaceComponents},
        {"CTakeTables", TRVFILES_SUCCESS, memory, takeTables},
        {"CWriteAnAssemblyToMemory", TRVFILES_SUCCESS, memory, writeAssemblyToMemory},
        {"CSetAContext", TRVFILES_SUCCESS, memory, setContext},
        {"CExpandAText", TRVFILES_SUCCESS, runtime, expandText},
        {"CLookUpAVariable", TRVFILES_SUCCESS, runtime, lookUp},
        {"CSetEntries", TRVFILES_SUCCESS, runtime, setEntries},
        inQt({"CListTheFavourites", TRVFILES_SUCCESS, runtime, listFavourites, {}, false, true}),
    };
}

}  // namespace trv::testing
