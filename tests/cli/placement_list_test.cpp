#include <cli/placement_list.h>
#include <tests/cli/samples.h>

#include <gtest/gtest.h>

#include <sstream>

namespace trv::testing {
namespace {

// A placed file, a disabled one, and a group whose root is moved.
CTrvAssemblyData setup() {
    CTrvAssemblyComponentData off = component("off", {leaf("x", "x.stl")});
    off.setEnabled(false);
    CTrvAssemblyComponentData vise = leaf("Vise", "vise, small.stl");
    const double up[] = {0, 5, 0.1};
    vise.setTranslation(up);
    CTrvAssemblyData made =
        assembly(component("Setup", {off, component("group", {component("empty"), vise})}));
    const double right[] = {10, 0, 0};
    made.getRootComponent().setTranslation(right);
    return made;
}

std::string list(const CTrvAssemblyData& data) {
    std::ostringstream out;
    cli::printPlacements(data, out);
    return out.str();
}

std::string csv(const CTrvAssemblyData& data, bool isRaw = false, const char* name = "a.xml") {
    std::ostringstream out;
    cli::printPlacementsAsCsv(QString::fromUtf8(name), data, isRaw, out);
    return out.str();
}

std::string json(const CTrvAssemblyData& data) {
    std::ostringstream out;
    cli::JsonWriter writer(out);
    cli::writePlacements(QStringLiteral("a.xml"), data, writer);
    writer.end();
    return out.str();
}

TEST(PrintPlacements, PrintsTheFlattenedList) {
    EXPECT_EQ(list(setup()), "vise, small.stl, at 10 5 0.1, axes 1 0 0 / 0 1 0 / 0 0 1\n");
    EXPECT_EQ(list(CTrvAssemblyData()), "");
}

TEST(PrintPlacements, RoundsNumbers) {
    CTrvAssemblyComponentData root = leaf("a", "f");
    const double translation[] = {0.1 + 0.2, -1e-9, 1.23456789};
    root.setTranslation(translation);
    EXPECT_EQ(list(assembly(root)), "f, at 0.3 0 1.234568, axes 1 0 0 / 0 1 0 / 0 0 1\n");
    EXPECT_EQ(csv(assembly(root)),
              "f,0.30000000000000004,-1e-09,1.23456789,1,0,0,0,1,0,0,0,1,a.xml,a\r\n");
}

TEST(PrintPlacementsAsCsv, NamesTheAssemblyAndThePathOfTheComponent) {
    EXPECT_EQ(csv(setup()),
              "\"vise, small.stl\",10,5,0.1,1,0,0,0,1,0,0,0,1,a.xml,Setup/group[1]/Vise[1]\r\n");
    EXPECT_EQ(csv(assembly(leaf("", "f"))), "f,0,0,0,1,0,0,0,1,0,0,0,1,a.xml,(root)\r\n");
}

TEST(PrintPlacementsAsCsv, PairsEachPlacementWithItsComponent) {
    CTrvAssemblyComponentData withFile = leaf("b", "b.stl");
    withFile.setComponents({leaf("c", "c.stl"), component("", {leaf("d", "d.stl")})});
    EXPECT_EQ(csv(assembly(component("a", {withFile, component("e"), leaf("f", "f.stl")}))),
              "b.stl,0,0,0,1,0,0,0,1,0,0,0,1,a.xml,a/b[0]\r\n"
              "c.stl,0,0,0,1,0,0,0,1,0,0,0,1,a.xml,a/b[0]/c[0]\r\n"
              "d.stl,0,0,0,1,0,0,0,1,0,0,0,1,a.xml,a/b[0]/[1]/d[0]\r\n"
              "f.stl,0,0,0,1,0,0,0,1,0,0,0,1,a.xml,a/f[2]\r\n");
}

TEST(PrintPlacementsAsCsv, QuotesIfNeeded) {
    EXPECT_EQ(csv(assembly(leaf("a,b", "say \"hi\"\r\n")), false, "x,y"),
              "\"say \"\"hi\"\"\\x0d\\x0a\",0,0,0,1,0,0,0,1,0,0,0,1,\"x,y\",\"a,b\"\r\n");
    EXPECT_EQ(csv(assembly(leaf("a", " plain %1.stl"))),
              " plain %1.stl,0,0,0,1,0,0,0,1,0,0,0,1,a.xml,a\r\n");
}

TEST(PrintPlacementsAsCsv, KeepsALineToARow) {
    EXPECT_EQ(csv(assembly(leaf("a", u8"a\nb\u2028c\u202e\\,d"))),
              "\"a\\x0ab\\u2028c\\u202e\\\\,d\",0,0,0,1,0,0,0,1,0,0,0,1,a.xml,a\r\n");
}

TEST(PrintPlacementsAsCsv, PutsAQuoteBeforeTextsLikeFormulas) {
    for (const char first : {'=', '+', '-', '@'}) {
        const std::string text = std::string(1, first) + "1";
        EXPECT_EQ(csv(assembly(leaf("a", text))),
                  "\"'" + text + "\",0,0,0,1,0,0,0,1,0,0,0,1,a.xml,a\r\n");
        EXPECT_EQ(csv(assembly(leaf("a", text)), true),
                  text + ",0,0,0,1,0,0,0,1,0,0,0,1,a.xml,a\r\n");
    }
    EXPECT_EQ(csv(assembly(leaf("=A1", "f")), false, "=x\"y"),
              "f,0,0,0,1,0,0,0,1,0,0,0,1,\"'=x\"\"y\",\"'=A1\"\r\n");
}

TEST(PrintPlacementsAsCsv, LeavesNumbersAndEscapedTextsAsTheyAre) {
    CTrvAssemblyComponentData root = leaf("a=", "\t=1");
    const double translation[] = {-1, 0, 0};
    root.setTranslation(translation);
    EXPECT_EQ(csv(assembly(root)), "\\x09=1,-1,0,0,1,0,0,0,1,0,0,0,1,a.xml,a=\r\n");
}

TEST(PrintPlacementsAsCsv, NamesStandardInput) {
    EXPECT_EQ(csv(assembly(leaf("a", "f")), false, "-"),
              "f,0,0,0,1,0,0,0,1,0,0,0,1,standard input,a\r\n");
}

TEST(PrintCsvHeader, NamesTheColumns) {
    std::ostringstream out;
    cli::printCsvHeader(out);
    EXPECT_EQ(out.str(),
              "file,x,y,z,vec1x,vec1y,vec1z,vec2x,vec2y,vec2z,vec3x,vec3y,vec3z,assembly,path\r\n");
}

TEST(WritePlacements, HasEveryKey) {
    EXPECT_EQ(json(setup()),
              "{\"file\":\"a.xml\",\"placements\":[{\"geometryFile\":\"vise, small.stl\","
              "\"path\":\"Setup/group[1]/Vise[1]\","
              "\"translation\":[10,5,0.1],\"vec1\":[1,0,0],\"vec2\":[0,1,0],\"vec3\":[0,0,1]}]}\n");
    EXPECT_EQ(json(CTrvAssemblyData()), "{\"file\":\"a.xml\",\"placements\":[]}\n");
}

TEST(WritePlacements, WritesPathsAsAssemblyDiffPrintsThem) {
    EXPECT_NE(json(assembly(leaf(u8"Größe\t\"", "f"))).find(u8"\"path\":\"Größe\\\\x09\\\"\""),
              std::string::npos);
}

TEST(WritePlacements, WalksATreeDeeperThanTheStack) {
    const std::string text = json(chain(100000, "f"));
    EXPECT_EQ(text.substr(0, 64),
              "{\"file\":\"a.xml\",\"placements\":[{\"geometryFile\":\"f\",\"path\":\"L/L[0]");
}

}  // namespace
}  // namespace trv::testing
