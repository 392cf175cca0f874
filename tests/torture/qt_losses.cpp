// Qt 5.15 loses memory of its own where it runs out of it: in its DOM, and where it lists a
// directory or follows links. This excuses the functions that do, and nothing else, in a program
// that is built with the address sanitizer.

extern "C" {

// Most functions of the DOM have no name that the system knows.
const char* __lsan_default_suppressions() {
    return "leak:libQt5Xml.so\n"
           "leak:QDirIterator::QDirIterator\n"
           "leak:QDir::canonicalPath\n";
}

// Qt is built without frame pointers: only the slow way leads through it.
const char* __asan_default_options() {
    return "fast_unwind_on_malloc=0:malloc_context_size=15";
}

}  // extern "C"
