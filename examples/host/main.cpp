// A host: handlers that return, reasons with their places, and an edit in place.

#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/machine_context/CMachineContextData.h>
#include <trvfiles/support/diagnostics.h>

#include <iostream>
#include <string>
#include <vector>

namespace {

using Messages = std::vector<std::string>;

// The default handler would end the process.
void keep(const char* message, void* context) {
    static_cast<Messages*>(context)->push_back(message);
}

void printPlaced(const CTrvAssemblyData& assembly) {
    for (const CComponentInfo& placed : assembly.getComponentFileList()) {
        const auto [x, y, z] = placed.getTranslation();
        std::cout << placed.getFileName() << "  " << x << ' ' << y << ' ' << z << '\n';
    }
}

// "file:line:column: reason", without the numbers that are not known.
void printReason(const std::string& file, EFileIOStatus status, const CFileFault& fault) {
    std::cout << file;
    if (fault.line > 0) std::cout << ':' << fault.line;
    if (fault.column > 0) std::cout << ':' << fault.column;
    std::cout << ": " << fault.reason << " (" << fileIOStatusText(status) << ")\n";
}

// Leaves out everything on the right vise.
void clearRightVise(CTrvAssemblyData& assembly) {
    assembly.getRootComponent().node().visit([](CTrvAssemblyNode& node, std::size_t) {
        if (node.getName() != "Right vise") return CTrvAssemblyNode::Visit::proceed;
        for (CTrvAssemblyNode& child : node.children())
            child.setEnabled(false);
        return CTrvAssemblyNode::Visit::stop;
    });
}

}  // namespace

int main(int argc, char** argv) {
    Messages messages;
    trv::set_error_channel({keep, &messages});
    trv::set_fatal_channel({keep, &messages});
    CQvFilesIO project(argc > 1 ? argv[1] : ".");
    CFileFault fault;

    CTrvAssemblyData assembly;
    EFileIOStatus status = project.readTrvAssembly("bracket.xml", assembly, &fault);
    if (status != eFileIOSuccess) {
        printReason("bracket.xml", status, fault);
        return 1;
    }
    printPlaced(assembly);
    clearRightVise(assembly);
    std::cout << "without the right vise\n";
    printPlaced(assembly);

    double axis[16];
    int pallet = -1, station = -1, offset = -1;
    status = project.readAxis("table-a30.dat", axis, pallet, station, offset, &fault);
    if (status != eFileIOSuccess) {
        printReason("table-a30.dat", status, fault);
        return 1;
    }
    std::cout << "table  " << axis[12] << ' ' << axis[13] << ' ' << axis[14] << "  G" << offset
              << '\n';

    status = project.readAxis("bracket.xml", axis, pallet, station, offset, &fault);
    printReason("bracket.xml", status, fault);
    status = CQvFilesIO::sReadTrvAssemblyFromMemory(
        "<ComponentInfo version='1'>\n  <Component/>\n</ComponentInfo>", assembly, &fault);
    printReason("clipboard", status, fault);
    status = project.writeMachineContext("missing/spare.mctx", CMachineContextData(), &fault);
    printReason("missing/spare.mctx", status, fault);
    std::cout << messages.size() << " message\n";
    trv::set_error_channel({});
    trv::set_fatal_channel({});
}
