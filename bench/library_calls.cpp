// The library's part of the work of the command: a program that only calls the library. It also
// writes the sample assembly. For scripts/command-performance and scripts/python-performance.
//
// Usage: library_calls write FILE LEAVES
//        library_calls read FILE...
//        library_calls rewrite FILE            reads it, copies the record, writes it over the
//                                              file, reads that and compares
//        library_calls project LIST            reads the project files whose names are in LIST
//        library_calls bytes LIST              only reads their bytes
//        library_calls walk FILE...            prints the processor time of reading and walking
//                                              through each in seconds

#include <trvfiles/assembly/CTrvAssemblyComponentData.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/CTrvAssemblyNode.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/machine_context/CMachineContextData.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

namespace {

CTrvAssemblyComponentData leaf(int number) {
    const double angle = 0.001 * number;
    const double translation[] = {0.1 * number, -0.25 * number, 1.0 / (number + 1)};
    const double vec1[] = {std::cos(angle), std::sin(angle), 0};
    const double vec2[] = {-std::sin(angle), std::cos(angle), 0};
    const double vec3[] = {0, 0, 1};
    CTrvAssemblyComponentData component;
    component.setName("Part " + std::to_string(number));
    component.setComment("clamped at " + std::to_string(number % 7));
    component.setGeometryFileName("geometry/part-" + std::to_string(number % 500) + ".stl");
    component.setTranslation(translation);
    component.setOrientation(vec1, vec2, vec3);
    return component;
}

// Groups of 100 leaves, every one of which is turned.
CTrvAssemblyData sample(int leaves) {
    constexpr int leavesOfGroup = 100;
    std::vector<CTrvAssemblyComponentData> groups;
    for (int first = 0; first < leaves; first += leavesOfGroup) {
        std::vector<CTrvAssemblyComponentData> group;
        for (int number = first; number < leaves && number < first + leavesOfGroup; ++number)
            group.push_back(leaf(number));
        groups.emplace_back().setName("Group " + std::to_string(groups.size()));
        groups.back().setComponents(std::move(group));
    }
    CTrvAssemblyData assembly;
    assembly.getRootComponent().setName("Set-up");
    assembly.getRootComponent().setComponents(std::move(groups));
    return assembly;
}

std::wstring wide(const std::string& file) {
    return std::filesystem::path(file).wstring();
}

std::vector<std::string> linesOf(const std::string& file) {
    std::vector<std::string> lines;
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

// The extension says what the file is.
bool readProjectFile(const std::string& file) {
    const std::filesystem::path extension = std::filesystem::path(file).extension();
    if (extension == ".xml") {
        CTrvAssemblyData data;
        return CQvFilesIO::sReadTrvAssembly(wide(file), data) == eFileIOSuccess;
    }
    if (extension == ".mctx") {
        CMachineContextData data;
        return CQvFilesIO::sReadMachineContext(wide(file), data) == eFileIOSuccess;
    }
    double matrix[16];
    int tags[3];
    CQvFilesIO files(L"");
    return files.readAxis(wide(file), matrix, tags[0], tags[1], tags[2]) == eFileIOSuccess;
}

bool readBytes(const std::string& file) {
    static char block[65536];
    std::FILE* const stream = std::fopen(file.c_str(), "rb");
    if (stream == nullptr) return false;
    while (std::fread(block, 1, sizeof block, stream) == sizeof block) {
    }
    const bool isRead = std::ferror(stream) == 0;
    return std::fclose(stream) == 0 && isRead;
}

// The fields of a component and of all below it, added up so that the compiler keeps the walk.
double walkThrough(const CTrvAssemblyNode& node) {
    double sum = static_cast<double>(node.getName().size() + node.getGeometryFileName().size());
    for (const double number : node.getTranslation())
        sum += number;
    for (const CTrvAssemblyNode& child : node.children())
        sum += walkThrough(child);
    return sum;
}

int walk(const std::wstring& path) {
    const std::clock_t start = std::clock();
    CTrvAssemblyData assembly;
    if (CQvFilesIO::sReadTrvAssembly(path, assembly) != eFileIOSuccess) return 1;
    const double sum = walkThrough(std::as_const(assembly).getRootComponent().node());
    const std::clock_t taken = std::clock() - start;
    std::cout << static_cast<double>(taken) / CLOCKS_PER_SEC << ' ' << sum << '\n';
    return 0;
}

int fail(const char* reason) {
    std::cerr << "library_calls: " << reason << '\n';
    return 2;
}

int write(const std::string& file, const CTrvAssemblyData& assembly) {
    const bool isWritten = CQvFilesIO::sWriteTrvAssembly(wide(file), assembly) == eFileIOSuccess;
    return isWritten ? 0 : fail("the file cannot be written");
}

// What an edit needs of the library: the record before it, the file, and whether the file holds the
// record.
int rewrite(const std::string& file, const CTrvAssemblyData& before) {
    const CTrvAssemblyData after = before;
    if (const int status = write(file, after); status != 0) return status;
    CTrvAssemblyData read;
    const bool isRead = CQvFilesIO::sReadTrvAssembly(wide(file), read) == eFileIOSuccess;
    return isRead && read == after ? 0 : fail("the file holds another assembly");
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() < 2) return fail("an argument is missing");
    if (arguments[0] == "write" && arguments.size() == 3) {
        return write(arguments[1], sample(std::stoi(arguments[2])));
    }
    if (arguments[0] == "project" || arguments[0] == "bytes") {
        const std::vector<std::string> files = linesOf(arguments[1]);
        const auto read = arguments[0] == "bytes" ? readBytes : readProjectFile;
        return std::all_of(files.begin(), files.end(), read) ? 0 : fail("a file cannot be read");
    }
    if (arguments[0] == "walk") {
        for (std::size_t i = 1; i < arguments.size(); ++i) {
            if (walk(wide(arguments[i])) != 0) return fail("the file cannot be read");
        }
        return 0;
    }
    std::vector<CTrvAssemblyData> assemblies(arguments.size() - 1);
    for (std::size_t i = 0; i < assemblies.size(); ++i) {
        if (CQvFilesIO::sReadTrvAssembly(wide(arguments[i + 1]), assemblies[i]) != eFileIOSuccess) {
            return fail("the file cannot be read");
        }
    }
    if (arguments[0] == "rewrite") return rewrite(arguments[1], assemblies[0]);
    return arguments[0] == "read" ? 0 : fail("unknown call");
}
