#include <bench/bench_files.h>
#include <bench/comparison.h>
#include <bench/peak_memory.h>
#include <bench/plain_assembly.h>
#include <trvfiles/assembly/CTrvAssemblyComponentData.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <memory>
#include <optional>

namespace trv::bench {
namespace {

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
// out cost nothing.
struct Sample {
    explicit Sample(int leaves)
        : plain(plainSample(leaves)),
          otherPlain(plain),
          ours(record(plain)),
          otherOurs(ours),
          file(memoryFile("assembly-" + std::to_string(leaves) + ".xml")),
          target(memoryFile("written-" + std::to_string(leaves) + ".xml")) {
        require(CQvFilesIO::sWriteTrvAssembly(wide(file), ours) == eFileIOSuccess,
                "writing the sample assembly");
    }

    PlainAssembly plain;
    PlainAssembly otherPlain;
    CTrvAssemblyData ours;
    CTrvAssemblyData otherOurs;
    std::string file;
    std::string target;
};

const Sample& sample(int leaves) {
    static std::optional<Sample> smallSample;
    static std::optional<Sample> largeSample;
    std::optional<Sample>& sample = leaves == small ? smallSample : largeSample;
    if (!sample.has_value()) sample.emplace(leaves);
    return *sample;
}

Workload read(int leaves) {
    return [leaves] {
        CTrvAssemblyData assembly;
        require(CQvFilesIO::sReadTrvAssembly(wide(sample(leaves).file), assembly) == eFileIOSuccess,
                "reading an assembly");
        benchmark::DoNotOptimize(assembly);
    };
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

Comparison growth(const std::string& name, Workload (*work)(int leaves)) {
    constexpr double bound = 11.5;
    return {name + ", 100k against 10k", work(large), {{"trvfiles, 10k", work(small), bound}}};
}

// The lower limit of the growth: data that does not fit into the processor's caches takes longer.
Comparison growthOfStructs(const std::string& name, Workload (*work)(int leaves)) {
    return {"structs: " + name + ", 100k against 10k",
            work(large),
            {{"structs, 10k", work(small), noBound}}};
}

}  // namespace

Comparisons assemblyComparisons() {
    const auto readDom = [] { benchmark::DoNotOptimize(readPlainly(sample(large).file)); };
    const auto writeDom = [] { writePlainly(sample(large).target, sample(large).plain); };
    Comparison memory = {"read assembly, 100k, peak memory",
                         read(large),
                         {{"setContent and a walk into structs", readDom, 1.10}}};
    memory.figure = [](const Workload& work) {
        sample(large);
        return peakMemory(work);
    };
    return {
        {"read assembly, 100k",
         read(large),
         {{"setContent and a walk into structs", readDom, 1.10}}},
        memory,
        {"write assembly, 100k", write(large), {{"DOM, toString(3), one write", writeDom, 0.85}}},
        {"flatten, 100k", flatten(large), {{"a loop over structs", flattenStructs(large), 1.5}}},
        {"compare two, 100k",
         compare(large),
         {{"structs, field by field", compareStructs(large), 1.5}}},
        {"copy one, 100k", copy(large), {{"structs, field by field", copyStructs(large), 1.5}}},
        growth("read", read),
        growth("write", write),
        growth("flatten", flatten),
        growthOfStructs("flatten", flattenStructs),
        growth("compare", compare),
        growthOfStructs("compare", compareStructs),
        growth("copy", copy),
        growthOfStructs("copy", copyStructs),
    };
}

}  // namespace trv::bench
