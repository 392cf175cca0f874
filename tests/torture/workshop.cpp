#include <tests/assembly/sample_components.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <tests/machine_context/context_samples.h>
#include <tests/torture/workshop.h>
#include <trvfiles/support/platform.h>

#include <utility>

namespace trv::testing {
namespace {

namespace fs = std::filesystem;

// Deeper than the limit for parsing on the caller's stack.
constexpr int deepLevels = 110;

void write(const fs::path& path, std::string_view text) {
    fs::create_directories(path.parent_path());
    writeBytes(path, text);
}

std::string repeated(std::string_view text) {
    std::string result;
    for (int i = 0; i < deepLevels; ++i)
        result += text;
    return result;
}

// Without indentation it is a twentieth as long as what the library writes.
std::string deepDocument() {
    return "<ComponentInfo version='1'><Attributs/>" + repeated("<Component><Data>") +
           "<File name='f'/>" + repeated("</Data></Component>") + "</ComponentInfo>";
}

// The texts that the library has to write are created once in a process.
struct MadeFiles {
    std::string context;
    std::string assembly;
    std::string deepAssembly;
    std::string largeAssembly;
    std::string axis;
};

MadeFiles madeByTheLibrary() {
    const TemporaryDirectory directory;
    CQvFilesIO files(directory.wide());
    files.writeMachineContext("made.mctx", firstOperation());
    files.writeTrvAssembly(
        "made.assembly",
        assemblyOf(group("root", {leaf("a", "a.stl"), group("b", {leaf("c", "c.stl")})})));
    files.writeTrvAssembly("deep.assembly", assemblyOf(chain(deepLevels)));
    // Three blocks of 64 KiB.
    constexpr int children = 200;
    files.writeTrvAssembly("large.assembly",
                           assemblyOf(group("root", std::vector<CTrvAssemblyComponentData>(
                                                        children, leaf("a", "f")))));
    const double placement[16] = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1};
    files.writeAxis(L"made.axis", placement, 1, 2, 3);
    return {bytesOf(directory / "made.mctx"), bytesOf(directory / "made.assembly"),
            bytesOf(directory / "deep.assembly"), bytesOf(directory / "large.assembly"),
            bytesOf(directory / "made.axis")};
}

const MadeFiles& madeFiles() {
    static const MadeFiles files = madeByTheLibrary();
    return files;
}

void empty(const fs::path& directory) {
    for (const auto& entry : fs::directory_iterator(directory))
        fs::remove_all(entry);
}

}  // namespace

Files filesOf(const fs::path& directory) {
    Files files;
    for (const auto& entry : fs::recursive_directory_iterator(directory)) {
        files[entry.path().lexically_relative(directory).generic_string()] =
            entry.is_regular_file() ? bytesOf(entry.path()) : "";
    }
    return files;
}

Workshop::Workshop(fs::path directory, Fault& fault)
    : directory_(std::move(directory)),
      fault_(fault),
      earlier_(std::exchange(loaded_stores, process_stores())) {
    empty(directory_);
    writeFiles();
    fs::current_path(directory_);
    setVariables();

    loaded_stores.environment = create_store();
    const int var = add_section(loaded_stores.environment, "var");
    const int path = add_section(loaded_stores.environment, "path");
    set_variable(loaded_stores.environment, var, ("ROOT = " + directory_.string()).c_str());
    set_variable(loaded_stores.environment, var, "LIB = $ROOT/lib");
    set_variable(loaded_stores.environment, path, "CFG = $ROOT/one;$ROOT/two");
}

Workshop::~Workshop() {
    forgetEnvironment();
    destroy_store(loaded_stores.application);
    destroy_store(loaded_stores.catalogue);
    loaded_stores = earlier_;
}

void Workshop::makeFiles() {
    madeFiles();
}

void Workshop::forgetEnvironment() {
    destroy_store(std::exchange(loaded_stores.environment, nullptr));
}

void Workshop::writeFiles() const {
    const MadeFiles& made = madeFiles();
    write(path("f.mctx"), made.context);
    write(path("private.mctx"), made.context);
    fs::permissions(path("private.mctx"), fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("f.mctx", path("link.mctx"));
    write(path("f.assembly"), made.assembly);
    write(path("deep.assembly"), made.deepAssembly);
    write(path("large.assembly"), made.largeAssembly);
    // Only the DOM reads a document with an instruction, here after it has been scanned to its end.
    write(path("large-unusual.assembly"), made.largeAssembly + "<?a b?>");
    write(path("deep-unusual.assembly"), deepDocument() + "<?a b?>");
    write(path("f.axis"), made.axis);
    write(path("transfo.dat"), made.axis);
    write(path("old"), "what stood here before\n");

    write(path("a.cfg"), "[var]\nA = 1\n/if A == 1\nB = 2\n/endif\n[text]\none\ntwo\n");
    write(path("one/x.cfg"), "[var]\nX = one\nONLY_ONE = 1\n");
    write(path("two/x.cfg"), "[var]\nX = two\nX2 = +;more\n");

    write(path("home/config/environ.cfg"),
          "[var]\nN = home\n[path]\nENV = $TRVHOME/first;$TRVHOME/second\n");
    write(path("home/first/environ.cfg"), "[var]\nN = first;+\n");
    write(path("home/second/environ.cfg"), "[var]\nN = second;+\n");

    write(path("conf/workzone.num"), "0000000a\n");
    fs::create_directories(path("zone"));
    write(path("used/workzone.num"), "00000007\n");
    fs::create_directories(path("tmp"));

    write(path("favourites/A/A.mctx"), made.context);
    write(path("favourites/B/C/C.mctx"), made.context);
}

void Workshop::setVariables() const {
    for (const char* name : {"TRVHOME_LS", "TRVTMPDIR", "TMP", "TRVNULL", "ENVPATH", "CFGPATH",
                             "TRV_TRVFILES_VERBOSE", "TRV_EXPAND_MIN_BUFFER_SIZE"}) {
        platform::set_environment(name, nullptr);
    }
    platform::set_environment("TRVHOME", text("home").c_str());
    platform::set_environment("TRVZONE", text("zone").c_str());
    platform::set_environment("TRVCONF", text("conf").c_str());
    platform::set_environment("TRVTMP", text("tmp").c_str());
    platform::set_environment("TRV_MCTX_DEF", text("favourites").c_str());
}

}  // namespace trv::testing
