// A host that reads and writes assemblies while its process exits.
// Usage: assembly_exit_host DIRECTORY

#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

namespace {

const char* directory;

std::string nameOf(const CTrvAssemblyData& data) {
    return data.getRootComponent().getName();
}

void readAndWrite(const char* moment) {
    CQvFilesIO files(directory);
    CTrvAssemblyData data;
    const EFileIOStatus readStatus = files.readTrvAssembly(std::wstring(L"Fr\u00e4se.xml"), data);
    const EFileIOStatus writeStatus = files.writeTrvAssembly(std::wstring(L"\u20ac.xml"), data);
    // A moved-from assembly reads the shared defaults.
    CTrvAssemblyData movedFrom;
    const CTrvAssemblyData taken = std::move(movedFrom);
    std::printf("%s: read %d \"%s\" %llu, written %d, default \"%s\"\n", moment, readStatus,
                nameOf(data).c_str(), data.getComponentNumber(), writeStatus,
                nameOf(movedFrom).c_str());
    static_cast<void>(std::fflush(stdout));
}

// Constructed before the first use of the library and of Qt, so destroyed after all objects that
// they construct.
struct Early {
    ~Early() { readAndWrite("destructor"); }
} early;

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) return EXIT_FAILURE;
    directory = arguments[1];
    if (std::atexit([] { readAndWrite("early handler"); }) != 0) return EXIT_FAILURE;
    readAndWrite("main");
    if (std::atexit([] { readAndWrite("late handler"); }) != 0) return EXIT_FAILURE;
    return EXIT_SUCCESS;
}
