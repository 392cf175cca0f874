#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <iostream>

int main(int argc, char** argv) {
    CQvFilesIO project(argc > 1 ? argv[1] : ".");

    CTrvAssemblyData assembly;
    if (project.readTrvAssembly("bracket.xml", assembly) != eFileIOSuccess) return 1;
    for (const CComponentInfo& placed : assembly.getComponentFileList()) {
        const double* at = nullptr;
        placed.getTranslation(at);
        std::cout << placed.getFileName() << "  " << at[0] << ' ' << at[1] << ' ' << at[2] << '\n';
    }

    double axis[16];
    int pallet = -1, station = -1, offset = -1;
    const auto status = project.readAxis(L"table-a30.dat", axis, pallet, station, offset);
    if (status != eFileIOSuccess) return 1;
    std::cout << "table  " << axis[12] << ' ' << axis[13] << ' ' << axis[14] << "  G" << offset
              << '\n';
}
