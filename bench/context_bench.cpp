#include <bench/bench_files.h>
#include <bench/comparison.h>
#include <bench/plain_context.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/machine_context/CMachineContextData.h>

namespace trv::bench {
namespace {

constexpr double below = 1.0;

CMachineContextData record() {
    CMachineContextData record;
    record.setName("Setup A");
    record.setComment("first op");
    record.setMachineName("MILL5");
    record.setMachinePosition("POS1");
    record.setMachineProximity(10);
    record.setOriginProgram(12.5, 0, -3);
    record.setReferenceAxisForOriginProgram("transfo.dat");
    record.setSurfaceGroup("roughing");
    record.setClampingSystem("VISE");
    record.setClampingProximity(2.5);
    return record;
}

using Read = PlainContext (*)(const std::string& path);
using Save = void (*)(const std::string& path, const PlainContext& context);

Peer reader(const char* name, Read read, const std::string& path, double bound = below) {
    const auto work = [read, path] {
        require(read(path).clampingProximity == "2.500000", "reading");
    };
    return {name, work, bound};
}

// A comment that differs from one call to the next: a library may skip the save of a file that does
// not change.
class Comment {
public:
    const char* next() {
        isFirst_ = !isFirst_;
        return isFirst_ ? "first op" : "second op";
    }

private:
    bool isFirst_ = false;
};

// Each peer writes to its own file, which exists from the first call on.
Peer saver(const char* name, Save save, double bound) {
    const std::string path = diskFile(std::string("saved with ") + name);
    const auto work = [save, path, comment = Comment()]() mutable {
        save(path, sampleContext(comment.next()));
    };
    return {name, work, bound};
}

}  // namespace

Comparisons contextComparisons() {
    const std::string source = workFile("read.mctx");
    const std::wstring wideSource = std::filesystem::path(source).wstring();
    const std::wstring wideTarget = std::filesystem::path(diskFile("saved.mctx")).wstring();
    require(CQvFilesIO::sWriteMachineContext(wideSource, record()) == eFileIOSuccess,
            "writing the sample context");

    const auto read = [wideSource] {
        CMachineContextData data;
        require(CQvFilesIO::sReadMachineContext(wideSource, data) == eFileIOSuccess &&
                    data.getClampingProximity() == 2.5,
                "reading a machine context");
    };
    const auto save = [wideTarget, data = record(), comment = Comment()]() mutable {
        data.setComment(comment.next());
        require(CQvFilesIO::sWriteMachineContext(wideTarget, data) == eFileIOSuccess,
                "saving a machine context");
    };
    return {
        {"read a .mctx file",
         read,
         {reader("QSettings", readWithQSettings, source),
          reader("GKeyFile", readWithGKeyFile, source),
          reader("SimpleIni", readWithSimpleIni, source),
          // System calls take more than half of the time of both.
          reader("inih", readWithInih, source, 1.1), reader("KConfig", readWithKConfig, source)}},
        {"save a .mctx file, synced",
         save,
         {saver("QSettings", saveWithQSettings, below), saver("GKeyFile", saveWithGKeyFile, below),
          saver("KConfig", saveWithKConfig, below),
          saver("a temporary file, fsync, rename", saveByHand, 1.25)},
         Clock::wall},
    };
}

}  // namespace trv::bench
