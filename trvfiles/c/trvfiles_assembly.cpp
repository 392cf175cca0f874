// The functions of trvfiles.h for whole assemblies.

#include <trvfiles/c/component_tables.h>
#include <trvfiles/c/guarded_call.h>
#include <trvfiles/c/handle_objects.h>
#include <trvfiles/c/indexed_assembly.h>
#include <trvfiles/c/sized_struct.h>
#include <trvfiles/c/text_arguments.h>
#include <trvfiles/c/trvfiles.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <algorithm>
#include <utility>

namespace c = trv::c;

using c::IndexedAssembly;

namespace {

constexpr c::Placement identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

c::Placement placementArgument(const double* numbers) {
    c::Placement placement = identity;
    if (numbers != nullptr) std::copy_n(numbers, placement.size(), placement.begin());
    return placement;
}

}  // namespace

int32_t trvfiles_assembly_create(trvfiles_assembly* created, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        c::create<IndexedAssembly>(created);
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_assembly_copy(trvfiles_assembly assembly, trvfiles_assembly* created,
                               trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        c::create<IndexedAssembly>(created, c::objectOf<IndexedAssembly>(assembly)->data());
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_assembly_read(trvfiles_assembly assembly, const char* path, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault* values) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        const std::wstring file = c::wideArgument(path);
        IndexedAssembly::Change change(*object);
        return std::int32_t{CQvFilesIO::sReadTrvAssembly(file, change.data(), values)};
    });
}

int32_t trvfiles_assembly_read_memory(trvfiles_assembly assembly, const void* bytes, size_t length,
                                      trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault* values) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        const std::string_view text = c::bytesArgument(bytes, length);
        IndexedAssembly::Change change(*object);
        return std::int32_t{CQvFilesIO::sReadTrvAssemblyFromMemory(text, change.data(), values)};
    });
}

int32_t trvfiles_assembly_write(trvfiles_assembly assembly, const char* path,
                                trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault* values) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        return std::int32_t{
            CQvFilesIO::sWriteTrvAssembly(c::wideArgument(path), object->data(), values)};
    });
}

int32_t trvfiles_assembly_write_memory(trvfiles_assembly assembly, trvfiles_texts bytes,
                                       trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault* values) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        const auto result = c::objectOf<c::TextsObject>(bytes);
        std::vector<std::string> written(1);
        const EFileIOStatus status =
            CQvFilesIO::sWriteTrvAssemblyToMemory(written.front(), object->data(), values);
        if (status == eFileIOSuccess) result->texts = std::move(written);
        return std::int32_t{status};
    });
}

int32_t trvfiles_assembly_get_dimension(trvfiles_assembly assembly, double* dimension,
                                        trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        c::require(dimension);
        object->data().getDimension(dimension);
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_assembly_set_dimension(trvfiles_assembly assembly, const double* dimension,
                                        trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        c::require(dimension);
        object->setDimension(dimension);
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_assembly_file_count(trvfiles_assembly assembly, size_t* count,
                                     trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        c::require(count);
        *count = static_cast<std::size_t>(object->data().getComponentNumber());
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_assembly_equal(trvfiles_assembly one, trvfiles_assembly other, int32_t* is_equal,
                                trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto first = c::objectOf<IndexedAssembly>(one);
        const auto second = c::objectOf<IndexedAssembly>(other);
        c::require(is_equal);
        *is_equal = first->data() == second->data() ? 1 : 0;
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_assembly_flatten(trvfiles_assembly assembly, const double* parent,
                                  trvfiles_placements* created, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        c::create<c::PlacementTable>(created, *object, placementArgument(parent));
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_placements_get(trvfiles_placements placements, trvfiles_placement_table* table,
                                trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        c::fill(table, c::objectOf<c::PlacementTable>(placements)->table());
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_assembly_components(trvfiles_assembly assembly, trvfiles_components* created,
                                     trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        c::create<c::ComponentTable>(created, object->nodes());
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_components_get(trvfiles_components components, trvfiles_component_table* table,
                                trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        c::fill(table, c::objectOf<c::ComponentTable>(components)->table());
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_assembly_set_components(trvfiles_assembly assembly,
                                         const trvfiles_component_table* table,
                                         trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        c::requireSized(table);
        CTrvAssemblyComponentData root = trv::ComponentBody::toComponent(c::treeOf(*table));
        IndexedAssembly::Change change(*object);
        change.data().getRootComponent() = std::move(root);
        return TRVFILES_SUCCESS;
    });
}
