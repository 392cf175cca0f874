/* Replaces the header of a C library: the host is built for Windows without one. It declares the
   only function that the host uses. */

#ifndef C_HOST_STDIO_H
#define C_HOST_STDIO_H

__declspec(dllimport) int printf(const char* format, ...);

#endif
