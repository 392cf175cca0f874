#include <bench/assembly_peers.h>
#include <bench/bench_files.h>
#include <bench/comparison.h>
#include <bench/peak_memory.h>
#include <bench/plain_assembly.h>
#include <trvfiles/assembly/CTrvAssemblyComponentData.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace trv::bench {
namespace {

constexpr int few = 20;
constexpr int tiny = 1000;
constexpr int small = 10000;
constexpr int large = 100000;

CTrvAssemblyComponentData record(const PlainComponent& plain) {
    CTrvAssemblyComponentData component;
    component.setName(plain.name);
    component.setComment(plain.comment);
    component.setEnabled(plain.enabled);
    component.setTranslation(plain.translation.data());
    component.setOrientation(plain.vec1.data(), plain.vec2.data(), plain.vec3.data());
    component.setGeometryFileName(plain.geometryFile);
    std::vector<CTrvAssemblyComponentData> children;
    for (const PlainComponent& child : plain.components)
        children.push_back(record(child));
    component.setComponents(std::move(children));
    return component;
}

CTrvAssemblyData record(const PlainAssembly& plain) {
    CTrvAssemblyData assembly;
    assembly.setDimension(plain.dimension.data());
    assembly.getRootComponent() = record(plain.root);
    return assembly;
}

std::wstring wide(const std::string& path) {
    return std::filesystem::path(path).wstring();
}

// The data for one size of assembly. It is created on first use, so comparisons that are filtered
// out cost nothing. Records and structs are as reading leaves them: the time of a walk over more
// than the processor's caches hold depends on how the data is placed in memory.
struct Sample {
    explicit Sample(int leaves)
        : file(workFile("assembly-" + std::to_string(leaves) + ".xml")),
          target(workFile("written-" + std::to_string(leaves) + ".xml")) {
        require(CQvFilesIO::sWriteTrvAssembly(wide(file), record(plainSample(leaves))) ==
                        eFileIOSuccess &&
                    CQvFilesIO::sReadTrvAssembly(wide(file), ours) == eFileIOSuccess &&
                    CQvFilesIO::sReadTrvAssembly(wide(file), otherOurs) == eFileIOSuccess,
                "writing and reading the sample assembly");
        plain = readByPugixml(file, Numbers::fromChars);
        otherPlain = readByPugixml(file, Numbers::fromChars);
    }

    std::string file;
    std::string target;
    CTrvAssemblyData ours;
    CTrvAssemblyData otherOurs;
    PlainAssembly plain;
    PlainAssembly otherPlain;
};

const Sample& sample(int leaves) {
    static std::map<int, std::optional<Sample>> samples;
    std::optional<Sample>& sample = samples[leaves];
    if (!sample.has_value()) sample.emplace(leaves);
    return *sample;
}

void readFrom(const std::string& path) {
    CTrvAssemblyData assembly;
    require(CQvFilesIO::sReadTrvAssembly(wide(path), assembly) == eFileIOSuccess,
            "reading an assembly");
    benchmark::DoNotOptimize(assembly);
}

Workload read(int leaves) {
    return [leaves] { readFrom(sample(leaves).file); };
}

Workload write(int leaves) {
    return [leaves] {
        const Sample& it = sample(leaves);
        require(CQvFilesIO::sWriteTrvAssembly(wide(it.target), it.ours) == eFileIOSuccess,
                "writing an assembly");
    };
}

Workload flatten(int leaves) {
    return [leaves] { benchmark::DoNotOptimize(sample(leaves).ours.getComponentFileList()); };
}

Workload compare(int leaves) {
    return [leaves] {
        const Sample& it = sample(leaves);
        require(it.ours == it.otherOurs, "comparing two assemblies");
    };
}

Workload copy(int leaves) {
    return [leaves] {
        CTrvAssemblyData assembly(sample(leaves).ours);
        benchmark::DoNotOptimize(assembly);
    };
}

Workload readWithPugixml(int leaves) {
    return [leaves] {
        benchmark::DoNotOptimize(readByPugixml(sample(leaves).file, Numbers::fromChars));
    };
}

Workload writeWithPugixml(int leaves) {
    return [leaves] { writeByPugixml(sample(leaves).target, sample(leaves).plain); };
}

Workload writeStructs(int leaves) {
    return [leaves] { writePlainly(sample(leaves).target, sample(leaves).plain); };
}

Workload flattenStructs(int leaves) {
    return [leaves] { benchmark::DoNotOptimize(flattenPlainly(sample(leaves).plain)); };
}

Workload compareStructs(int leaves) {
    return [leaves] {
        const Sample& it = sample(leaves);
        require(areEqual(it.plain, it.otherPlain), "comparing structs");
    };
}

Workload copyStructs(int leaves) {
    return [leaves] {
        PlainAssembly assembly(sample(leaves).plain);
        benchmark::DoNotOptimize(assembly);
    };
}

using WorkloadOf = Workload (*)(int leaves);

Workload growthOf(WorkloadOf work) {
    Workload growth = work(large);
    growth.smaller = std::make_shared<Workload>(work(small));
    return growth;
}

// Data that does not fit into the processor's caches takes longer in every program. So the growth
// is compared with that of the peer, and not with a number.
Comparison growth(const std::string& name, WorkloadOf work, const std::string& peer,
                  WorkloadOf workOfPeer) {
    constexpr double bound = 1.15;
    return {name + ", 100k against 10k", growthOf(work), {{peer, growthOf(workOfPeer), bound}}};
}

// The peers of reading a plain document.
Comparison reading(const std::string& size, int leaves) {
    const auto path = [leaves] { return sample(leaves).file; };
    return {"read assembly, " + size,
            read(leaves),
            {{"pugixml, as_double",
              [path] { benchmark::DoNotOptimize(readByPugixml(path(), Numbers::asDouble)); }, 0.65},
             {"pugixml, from_chars", readWithPugixml(leaves), 1.0},
             {"expat", [path] { benchmark::DoNotOptimize(readByExpat(path())); }, 0.40},
             {"xmlTextReader of libxml2",
              [path] { benchmark::DoNotOptimize(readByLibxml2(path())); }, 0.30},
             {"QDomDocument", [path] { benchmark::DoNotOptimize(readPlainly(path())); }, 0.06}}};
}

enum class Place { firstContent, lastContent };

// The sample with a CDATA section in its root element.
std::string fileWithCdata(int leaves, Place place) {
    const bool isFirst = place == Place::firstContent;
    std::string path =
        workFile((isFirst ? "cdata-first-" : "cdata-last-") + std::to_string(leaves) + ".xml");
    if (!std::filesystem::exists(path)) {
        std::string text = readText(sample(leaves).file);
        const std::size_t root = text.find("<ComponentInfo");
        text.insert(isFirst ? text.find('>', root) + 1 : text.rfind("</"), "<![CDATA[]]>");
        writeText(path, text);
    }
    return path;
}

Workload readWithCdata(int leaves, Place place) {
    return [leaves, place] { readFrom(fileWithCdata(leaves, place)); };
}

// An unusual document is read by the DOM. If only its end is unusual, it was first read without the
// DOM up to there, in vain. If its beginning is, the time is that of the DOM alone.
Comparison readingUnusual(const std::string& size, int leaves) {
    return {"read assembly, CDATA at the end, " + size,
            readWithCdata(leaves, Place::lastContent),
            {{"CDATA at the beginning", readWithCdata(leaves, Place::firstContent), 1.08}}};
}

Comparison writing(const std::string& size, int leaves) {
    return {
        "write assembly, " + size, write(leaves), {{"pugixml", writeWithPugixml(leaves), 0.30}}};
}

// The memory beyond the sample.
Comparison peakMemoryOf(const std::string& name, WorkloadOf work, Peer peer) {
    Comparison comparison = {
        name + ", peak memory", {work(few).run, work(large).run}, {std::move(peer)}};
    comparison.bytes = [](const Workload& measured) {
        sample(few);
        sample(large);
        return peakMemory(measured);
    };
    return comparison;
}

// A peer that holds so many bytes.
Peer bytes(const std::string& name, std::size_t (*count)(), double bound) {
    const auto hold = [](std::size_t size) {
        benchmark::DoNotOptimize(std::string(size, 'x').data());
    };
    return {name, {[hold] { hold(1); }, [hold, count] { hold(count()); }}, bound};
}

std::size_t sizeOfFile() {
    return static_cast<std::size_t>(std::filesystem::file_size(sample(large).file));
}

std::size_t mebibyte() {
    return std::size_t{1} << 20;
}

}  // namespace

Comparisons assemblyComparisons() {
    return {
        reading("1k", tiny),
        reading("10k", small),
        reading("100k", large),
        {"read assembly, 20 components",
         read(few),
         {{"pugixml, as_double",
           [] { benchmark::DoNotOptimize(readByPugixml(sample(few).file, Numbers::asDouble)); },
           1.0}}},
        readingUnusual("10k", small),
        peakMemoryOf("read assembly, 100k", read, bytes("the file's size", sizeOfFile, 0.6)),
        writing("1k", tiny),
        writing("10k", small),
        writing("100k", large),
        peakMemoryOf("write assembly, 100k", write, bytes("1 MiB", mebibyte, 1.0)),
        {"flatten, 100k", flatten(large), {{"a loop over structs", flattenStructs(large), 1.5}}},
        {"compare two, 100k",
         compare(large),
         {{"structs, field by field", compareStructs(large), 1.5}}},
        {"copy one, 100k", copy(large), {{"structs, field by field", copyStructs(large), 1.5}}},
        growth("read", read, "pugixml, from_chars", readWithPugixml),
        growth("write", write, "a loop, to_chars, fwrite", writeStructs),
        growth("flatten", flatten, "a loop over structs", flattenStructs),
        growth("compare", compare, "structs, field by field", compareStructs),
        growth("copy", copy, "structs, field by field", copyStructs),
    };
}

}  // namespace trv::bench
