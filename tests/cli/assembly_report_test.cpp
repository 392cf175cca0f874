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

std::string tree(const CTrvAssemblyData& data) {
    return printed([&](std::ostream& out) { cli::printTree(data, out); });
}

std::string list(const CTrvAssemblyData& data) {
    return printed([&](std::ostream& out) { cli::printPlacements(data, out); });
}

std::string csv(const CTrvAssemblyData& data) {
    return printed([&](std::ostream& out) { cli::printPlacementsAsCsv(data, out); });
}

std::string compact(const QJsonObject& json) {
    return QJsonDocument(json).toJson(QJsonDocument::Compact).toStdString();
}

constexpr const char* csvHeader =
    "file,x,y,z,vec1x,vec1y,vec1z,vec2x,vec2y,vec2z,vec3x,vec3y,vec3z\r\n";

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

TEST(PrintAssembly, ShowsSizeCountsAndTree) {
    EXPECT_EQ(printed([](std::ostream& out) {
                  cli::printAssembly(QStringLiteral("a\tb"), setup(), out);
              }),
              "Assembly file a\\x09b\n"
              "\n"
              "Dimension         100 x 50 x 20.5\n"
              "Components        3\n"
              "Component number  2\n"
              "Placed files      1\n"
              "\n"
              "Setup, at 10 0 0\n"
              "  Vise: vise, small.stl, at 0 5 0.1 -- left, \"old\"\n"
              "  Part (disabled): part.stl, at 0 0 0, axes 0 1 0 / -1 0 0 / 0 0 1\n");
}

TEST(PrintTree, ShowsAComponentWithoutAName) {
    EXPECT_EQ(tree(CTrvAssemblyData()), "(no name), at 0 0 0\n");
}

TEST(PrintTree, KeepsEveryComponentOnItsLine) {
    CTrvAssemblyComponentData root = leaf("a\nb", "c\td");
    root.setComment("e\x1b[0mf %1 %2");
    EXPECT_EQ(tree(assembly(root)), "a\\x0ab: c\\x09d, at 0 0 0 -- e\\x1b[0mf %1 %2\n");
}

TEST(PrintTree, ShowsAxesIfOneIsRotated) {
    const double unit[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    const double other[] = {0, 0.5, 0};
    CTrvAssemblyComponentData root = component("a");
    root.setOrientation(other, unit[1], unit[2]);
    EXPECT_EQ(tree(assembly(root)), "a, at 0 0 0, axes 0 0.5 0 / 0 1 0 / 0 0 1\n");
    root.setOrientation(unit[0], other, unit[2]);
    EXPECT_EQ(tree(assembly(root)), "a, at 0 0 0, axes 1 0 0 / 0 0.5 0 / 0 0 1\n");
    root.setOrientation(unit[0], unit[1], other);
    EXPECT_EQ(tree(assembly(root)), "a, at 0 0 0, axes 1 0 0 / 0 1 0 / 0 0.5 0\n");
}

TEST(PrintTree, RoundsNumbers) {
    CTrvAssemblyComponentData root = leaf("a", "f");
    const double translation[] = {0.1 + 0.2, -1e-9, 1.23456789};
    root.setTranslation(translation);
    EXPECT_EQ(tree(assembly(root)), "a: f, at 0.3 0 1.234568\n");
    EXPECT_EQ(list(assembly(root)), "f, at 0.3 0 1.234568, axes 1 0 0 / 0 1 0 / 0 0 1\n");
    EXPECT_EQ(
        csv(assembly(root)),
        csvHeader + std::string("f,0.30000000000000004,-1e-09,1.23456789,1,0,0,0,1,0,0,0,1\r\n"));
}

TEST(AssemblyJson, HasEveryKey) {
    EXPECT_EQ(
        compact(cli::assemblyJson(QStringLiteral("a.xml"), setup())),
        "{\"componentNumber\":2,\"components\":["
        "{\"comment\":\"\",\"enabled\":true,\"geometryFile\":null,\"level\":0,\"name\":\"Setup\","
        "\"parent\":null,\"translation\":[10,0,0],\"vec1\":[1,0,0],\"vec2\":[0,1,0],"
        "\"vec3\":[0,0,1]},"
        "{\"comment\":\"left, \\\"old\\\"\",\"enabled\":true,\"geometryFile\":\"vise, small.stl\","
        "\"level\":1,\"name\":\"Vise\",\"parent\":0,\"translation\":[0,5,0.1],\"vec1\":[1,0,0],"
        "\"vec2\":[0,1,0],\"vec3\":[0,0,1]},"
        "{\"comment\":\"\",\"enabled\":false,\"geometryFile\":\"part.stl\",\"level\":1,"
        "\"name\":\"Part\",\"parent\":0,\"translation\":[0,0,0],\"vec1\":[0,1,0],"
        "\"vec2\":[-1,0,0],\"vec3\":[0,0,1]}],"
        "\"dimension\":[100,50,20.5],\"file\":\"a.xml\",\"kind\":\"assembly\",\"placedFiles\":1}");
}

TEST(AssemblyJson, NamesEachComponentsParent) {
    const QJsonArray components =
        cli::assemblyJson(
            QStringLiteral("a"),
            assembly(component("a", {component("b", {component("c")}), component("d"),
                                     component("e", {component("f", {component("g")})})})))
            .value(QStringLiteral("components"))
            .toArray();
    const int parents[] = {-1, 0, 1, 0, 0, 4, 5};
    ASSERT_EQ(components.size(), 7);
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(components.at(i).toObject().value(QStringLiteral("parent")).toInt(-1), parents[i])
            << i;
    }
}

TEST(AssemblyJson, StaysFlatForADeepTree) {
    const QJsonDocument document(cli::assemblyJson(QStringLiteral("a"), chain(999, "f")));
    const QJsonDocument readBack = QJsonDocument::fromJson(document.toJson());
    EXPECT_EQ(readBack.object().value(QStringLiteral("components")).toArray().size(), 999);
}

TEST(PrintPlacements, PrintsTheFlattenedList) {
    EXPECT_EQ(list(setup()), "vise, small.stl, at 10 5 0.1, axes 1 0 0 / 0 1 0 / 0 0 1\n");
    EXPECT_EQ(list(CTrvAssemblyData()), "");
}

TEST(PrintPlacementsAsCsv, QuotesIfNeeded) {
    EXPECT_EQ(csv(setup()),
              csvHeader + std::string("\"vise, small.stl\",10,5,0.1,1,0,0,0,1,0,0,0,1\r\n"));
    EXPECT_EQ(csv(assembly(leaf("a", "say \"hi\"\r\n"))),
              csvHeader + std::string("\"say \"\"hi\"\"\\x0d\\x0a\",0,0,0,1,0,0,0,1,0,0,0,1\r\n"));
    EXPECT_EQ(csv(assembly(leaf("a", " plain %1.stl"))),
              csvHeader + std::string(" plain %1.stl,0,0,0,1,0,0,0,1,0,0,0,1\r\n"));
}

TEST(PrintPlacementsAsCsv, KeepsALineToARow) {
    EXPECT_EQ(csv(assembly(leaf("a", u8"a\nb\u2028c\u202e\\,d"))),
              csvHeader + std::string("\"a\\x0ab\\u2028c\\u202e\\\\,d\","
                                      "0,0,0,1,0,0,0,1,0,0,0,1\r\n"));
}

TEST(PrintPlacementsAsCsv, HasAHeaderWithoutFiles) {
    EXPECT_EQ(csv(CTrvAssemblyData()), csvHeader);
}

TEST(PlacementsJson, HasEveryKey) {
    EXPECT_EQ(compact(cli::placementsJson(QStringLiteral("a.xml"), setup())),
              "{\"file\":\"a.xml\",\"placements\":[{\"geometryFile\":\"vise, small.stl\","
              "\"translation\":[10,5,0.1],\"vec1\":[1,0,0],\"vec2\":[0,1,0],\"vec3\":[0,0,1]}]}");
    EXPECT_EQ(compact(cli::placementsJson(QStringLiteral("a"), CTrvAssemblyData())),
              "{\"file\":\"a\",\"placements\":[]}");
}

TEST(AssemblySummary, CountsInWords) {
    EXPECT_EQ(cli::assemblySummary(setup()).toStdString(), "assembly, 3 components, 1 placed file");
    EXPECT_EQ(cli::assemblySummary(CTrvAssemblyData()).toStdString(),
              "assembly, 1 component, 0 placed files");
}

}  // namespace
}  // namespace trv::testing
