/* Compiled as C11: the header is C, and a C host links the library. */

#include <tests/c/c_host.h>
#include <trvfiles/c/trvfiles.h>

static int32_t count_placements(trvfiles_assembly assembly, const char* path, size_t* count) {
    trvfiles_placement_table table = {0};
    trvfiles_placements placements = 0;
    int32_t status = trvfiles_assembly_read(assembly, path, 0);
    if (status == TRVFILES_SUCCESS) {
        status = trvfiles_assembly_flatten(assembly, NULL, &placements, 0);
    }
    table.size = sizeof table;
    if (status == TRVFILES_SUCCESS) status = trvfiles_placements_get(placements, &table, 0);
    *count = table.count;
    if (placements != 0) trvfiles_release(placements, 0);
    return status;
}

int64_t c_host_placements(const char* path) {
    trvfiles_assembly assembly = 0;
    size_t count = 0;
    int32_t status = trvfiles_assembly_create(&assembly, 0);
    if (status == TRVFILES_SUCCESS) status = count_placements(assembly, path, &count);
    trvfiles_release(assembly, 0);
    return status == TRVFILES_SUCCESS ? (int64_t)count : -(int64_t)status;
}

size_t c_host_struct_sizes(size_t* sizes, size_t capacity) {
    const size_t known[] = {
        sizeof(trvfiles_fault_values),
        sizeof(trvfiles_note),
        sizeof(trvfiles_axis),
        sizeof(trvfiles_context_numbers),
        sizeof(trvfiles_placement_table),
        sizeof(trvfiles_component),
        sizeof(trvfiles_component_table),
    };
    const size_t count = sizeof known / sizeof known[0];
    size_t i;
    for (i = 0; i < count && i < capacity; ++i)
        sizes[i] = known[i];
    return count;
}
