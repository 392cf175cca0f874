/* A host in C11: the placed geometry files of an assembly, and an axis file. On Windows any
   compiler builds it: see windows/. */

#include <trvfiles/c/trvfiles.h>

#include <stdio.h>

static trvfiles_fault fault;
static trvfiles_texts texts;

static int failed(const char* what) {
    trvfiles_fault_values values = {0};
    values.size = sizeof values;
    if (trvfiles_fault_get(fault, &values) == TRVFILES_SUCCESS) {
        printf("%s: line %d: %s\n", what, (int)values.line, values.reason);
    }
    return 1;
}

/* The path of a file in the project; valid until the next call. */
static const char* path_of(const char* project, const char* name) {
    const char* path = "";
    if (trvfiles_absolute_path(project, name, texts, fault) == TRVFILES_SUCCESS) {
        trvfiles_texts_get(texts, 0, &path, NULL, fault);
    }
    return path;
}

static void print_placement(const trvfiles_placement_table* table, size_t i) {
    const size_t begin = table->geometry[i];
    const double* at = table->world + 16 * i + 12;
    printf("%.*s  %g %g %g\n", (int)(table->geometry[i + 1] - begin), table->text + begin, at[0],
           at[1], at[2]);
}

static int print_assembly(const char* path) {
    trvfiles_assembly assembly = 0;
    trvfiles_placements placements = 0;
    trvfiles_placement_table table = {0};
    size_t i;
    table.size = sizeof table;
    if (trvfiles_assembly_create(&assembly, fault) != TRVFILES_SUCCESS ||
        trvfiles_assembly_read(assembly, path, fault) != TRVFILES_SUCCESS ||
        trvfiles_assembly_flatten(assembly, NULL, &placements, fault) != TRVFILES_SUCCESS ||
        trvfiles_placements_get(placements, &table, fault) != TRVFILES_SUCCESS) {
        return failed(path);
    }
    for (i = 0; i < table.count; ++i)
        print_placement(&table, i);
    trvfiles_release(placements, 0);
    trvfiles_release(assembly, 0);
    return 0;
}

static int print_axis(const char* path) {
    trvfiles_axis axis = {0};
    axis.size = sizeof axis;
    if (trvfiles_axis_read(path, &axis, fault) != TRVFILES_SUCCESS) return failed(path);
    printf("table  %g %g %g  G%d\n", axis.matrix[12], axis.matrix[13], axis.matrix[14],
           (int)axis.tags[2]);
    return 0;
}

int main(int argc, char** argv) {
    const char* project = argc > 1 ? argv[1] : ".";
    int result = 1;
    if (trvfiles_fault_create(&fault) == TRVFILES_SUCCESS &&
        trvfiles_texts_create(&texts, fault) == TRVFILES_SUCCESS) {
        result = print_assembly(path_of(project, "bracket.xml"));
        if (result == 0) result = print_axis(path_of(project, "table-a30.dat"));
    }
    trvfiles_release(texts, 0);
    trvfiles_release(fault, 0);
    return result;
}
