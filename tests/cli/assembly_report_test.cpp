#include <cli/assembly_report.h>
#include <tests/cli/samples.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <gtest/gtest.h>

#include <sstream>

namespace trv::testing {
namespace {

// A group with a placed file and a disabled one that is rotated by 90 degrees.
CTrvAssemblyData setup() {
    CTrvAssemblyComponentData vise = leaf("Vise", "vise, small.stl");
    const double up[] = {0, 5, 0.1};
    vise.setTranslation(up);
    vise.setComment("left, \"old\"");

    CTrvAssemblyComponentData part = leaf("Part", "part.stl");
    const double vec1[] = {0, 1, 0};
    const double vec2[] = {-1, 0, 0};
    const double vec3[] = {0, 0, 1};
    part.setOrientation(vec1, vec2, vec3);
    part.setEnabled(false);

    CTrvAssemblyData made = assembly(component("Setup", {vise, part}));
    const double right[] = {10, 0, 0};
    made.getRootComponent().setTranslation(right);
    const double size[] = {100, 50, 20.5};
    made.setDimension(size);
    return made;
}

template <class Print>
std::string printed(Print print) {
    std::ostringstream out;
    print(out);
    return out.str();
}

// The members that `write` adds, as an object.
template <class Write>
std::string json(Write write) {
    return printed([&](std::ostream& out) {
        cli::JsonWriter writer(out);
        write(writer);
        writer.end();
    });
}

std::string assemblyJson(const CTrvAssemblyData& data) {
    const cli::ComponentSelection everything;
    return json([&](cli::JsonWriter& writer) {
        cli::writeAssembly(QStringLiteral("a.xml"), data, &everything, writer);
    });
}

QJsonArray componentsOf(const std::string& text) {
    return QJsonDocument::fromJson(QByteArray::fromStdString(text))
        .object()
        .value(QStringLiteral("components"))
        .toArray();
}

TEST(AssemblyCounts, CountComponentsAndFiles) {
    const cli::AssemblyCounts counts = cli::countsOf(setup());
    EXPECT_EQ(counts.components, 3U);
    EXPECT_EQ(counts.componentNumber, 2U);
    EXPECT_EQ(counts.placedFiles, 1U);
}

TEST(AssemblyCounts, CountOnlyTheRootIfThereIsNothingElse) {
    const cli::AssemblyCounts counts = cli::countsOf(assembly(leaf("a", "f")));
    EXPECT_EQ(counts.components, 1U);
    EXPECT_EQ(counts.componentNumber, 0U);
    EXPECT_EQ(counts.placedFiles, 1U);
}

TEST(AssemblyCounts, CountNoFileOfADisabledComponent) {
    CTrvAssemblyComponentData off =
        component("b", {component("c", {leaf("d", "f")}), leaf("e", "f")});
    off.setEnabled(false);
    const CTrvAssemblyData data = assembly(component("a", {off, leaf("g", "f")}));
    EXPECT_EQ(cli::countsOf(data).placedFiles, 1U);
    EXPECT_EQ(cli::countsOf(data).components, 6U);
    EXPECT_EQ(data.getComponentFileList().size(), 1U);
    CTrvAssemblyData disabled = data;
    disabled.getRootComponent().setEnabled(false);
    EXPECT_EQ(cli::countsOf(disabled).placedFiles, 0U);
}

TEST(PrintAssemblyHead, ShowsSizeAndCounts) {
    EXPECT_EQ(printed([](std::ostream& out) {
                  cli::printAssemblyHead(QStringLiteral("a\tb"), setup(), out);
              }),
              "Assembly file a\\x09b\n"
              "\n"
              "Dimension         100 x 50 x 20.5\n"
              "Components        3\n"
              "Component number  2\n"
              "Placed files      1\n");
}

TEST(PrintAssemblyHead, NamesStandardInput) {
    EXPECT_EQ(printed([](std::ostream& out) {
                  cli::printAssemblyHead(QStringLiteral("-"), setup(), out);
              }).substr(0, 30),
              "Assembly file standard input\n\n");
}

TEST(PrintCounts, ShowsTheCounts) {
    EXPECT_EQ(printed([](std::ostream& out) { cli::printCounts(setup(), out); }),
              "Components        3\n"
              "Component number  2\n"
              "Placed files      1\n");
}

TEST(WriteAssembly, HasEveryKey) {
    EXPECT_EQ(
        assemblyJson(setup()),
        "{\"componentCount\":3,\"componentNumber\":2,\"components\":["
        "{\"comment\":\"\",\"enabled\":true,\"geometryFile\":null,\"level\":0,\"name\":\"Setup\","
        "\"parent\":null,\"translation\":[10,0,0],\"vec1\":[1,0,0],\"vec2\":[0,1,0],"
        "\"vec3\":[0,0,1]},"
        "{\"comment\":\"left, \\\"old\\\"\",\"enabled\":true,\"geometryFile\":\"vise, small.stl\","
        "\"level\":1,\"name\":\"Vise\",\"parent\":0,\"translation\":[0,5,0.1],\"vec1\":[1,0,0],"
        "\"vec2\":[0,1,0],\"vec3\":[0,0,1]},"
        "{\"comment\":\"\",\"enabled\":false,\"geometryFile\":\"part.stl\",\"level\":1,"
        "\"name\":\"Part\",\"parent\":0,\"translation\":[0,0,0],\"vec1\":[0,1,0],"
        "\"vec2\":[-1,0,0],\"vec3\":[0,0,1]}],"
        "\"dimension\":[100,50,20.5],\"file\":\"a.xml\",\"kind\":\"assembly\",\"placedFiles\":1}"
        "\n");
}

TEST(WriteAssembly, LeavesTheListOutIfNothingIsSelected) {
    EXPECT_EQ(json([](cli::JsonWriter& writer) {
                  EXPECT_EQ(cli::writeAssembly(QStringLiteral("-"), setup(), nullptr, writer), 0U);
              }),
              "{\"componentCount\":3,\"componentNumber\":2,\"dimension\":[100,50,20.5],"
              "\"file\":\"-\",\"kind\":\"assembly\",\"placedFiles\":1}\n");
}

TEST(WriteAssembly, NamesEachComponentsParent) {
    const QJsonArray components = componentsOf(assemblyJson(
        assembly(component("a", {component("b", {component("c")}), component("d"),
                                 component("e", {component("f", {component("g")})})}))));
    const int parents[] = {-1, 0, 1, 0, 0, 4, 5};
    ASSERT_EQ(components.size(), 7);
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(components.at(i).toObject().value(QStringLiteral("parent")).toInt(-1), parents[i])
            << i;
    }
}

TEST(WriteAssembly, NamesParentsByTheirPlacesInTheList) {
    const cli::ComponentSelection selection = {{}, QStringLiteral("x")};
    std::size_t count = 0;
    const QJsonArray components = componentsOf(json([&](cli::JsonWriter& writer) {
        count = cli::writeAssembly(
            QStringLiteral("a"),
            assembly(component("a", {component("b"), component("c", {component("x")})})),
            &selection, writer);
    }));
    EXPECT_EQ(count, 3U);
    ASSERT_EQ(components.size(), 3);
    EXPECT_EQ(components.at(2).toObject().value(QStringLiteral("parent")).toInt(), 1);
}

TEST(WriteAssembly, StaysFlatForADeepTree) {
    EXPECT_EQ(componentsOf(assemblyJson(chain(999, "f"))).size(), 999);
}

TEST(AssemblySummary, CountsInWords) {
    EXPECT_EQ(cli::assemblySummary(setup()).toStdString(), "assembly, 3 components, 1 placed file");
    EXPECT_EQ(cli::assemblySummary(CTrvAssemblyData()).toStdString(),
              "assembly, 1 component, 0 placed files");
}

}  // namespace
}  // namespace trv::testing
