/* The entry point of the host, in place of that of a C library. Its functions come from msvcrt.dll,
   which is a part of Windows. */

typedef struct {
    int new_mode;
} startup_options;

__declspec(dllimport) int __getmainargs(int* argc, char*** argv, char*** environment,
                                        int expand_wildcards, startup_options* options);
__declspec(dllimport) void exit(int status);

int main(int argc, char** argv);

/* The compiler refers to it in a program that uses floating point numbers. */
int _fltused = 1;

void start(void) {
    int argc = 0;
    char** argv = 0;
    char** environment = 0;
    startup_options options = {0};
    __getmainargs(&argc, &argv, &environment, 0, &options);
    exit(main(argc, argv));
}
