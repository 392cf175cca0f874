// A host that reads and writes assemblies while its process exits.
// Usage: assembly_exit_host FILE COPY

#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <cstdio>
#include <cstdlib>

namespace {

const char* file;
const char* copy;

void readAndWrite(const char* moment) {
    CQvFilesIO files("");
    CTrvAssemblyData data;
    CTrvAssemblyData movedFrom;
    const CTrvAssemblyData taken = std::move(movedFrom);
    const EFileIOStatus readStatus = files.readTrvAssembly(file, data);
    const EFileIOStatus writeStatus = files.writeTrvAssembly(copy, data);
    std::printf(
        "%s: read %d \"%s\" %llu, written %d, default \"%s\"\n", moment, readStatus,
        data.getRootComponent().getName().c_str(), data.getComponentNumber(), writeStatus,
        static_cast<const CTrvAssemblyData&>(movedFrom).getRootComponent().getName().c_str());
    std::fflush(stdout);
}

// Constructed before anything of the library or of Qt is used, so destroyed after all that they
// construct on the way.
struct Early {
    ~Early() { readAndWrite("destructor"); }
} early;

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) return EXIT_FAILURE;
    file = arguments[1];
    copy = arguments[2];
    std::atexit([] { readAndWrite("early handler"); });
    readAndWrite("main");
    std::atexit([] { readAndWrite("late handler"); });
    return EXIT_SUCCESS;
}
