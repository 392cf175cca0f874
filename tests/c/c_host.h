#ifndef TESTS_C_C_HOST_H
#define TESTS_C_C_HOST_H

/* What a test asks the part that is compiled as C. */

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Reads an assembly and returns the number of its placements, or 0 minus a status. */
int64_t c_host_placements(const char* path);

/* The sizes of the structures, as C has them, in the order of the header. */
size_t c_host_struct_sizes(size_t* sizes, size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
