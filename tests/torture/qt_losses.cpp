// Qt 5.15 leaks memory if an allocation in it fails: in its DOM, and when it lists a directory or
// follows links. In a program with the address sanitizer this excludes these functions, and nothing
// else.

extern "C" {

// Most functions of the DOM have no exported name.
const char* __lsan_default_suppressions() {
    return "leak:libQt5Xml.so\n"
           "leak:QDirIterator::QDirIterator\n"
           "leak:QDir::canonicalPath\n";
}

// Qt is built without frame pointers, so only the slow unwinder works.
const char* __asan_default_options() {
    return "fast_unwind_on_malloc=0:malloc_context_size=15";
}

}  // extern "C"
