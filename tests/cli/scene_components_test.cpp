#include <cli/scene_components.h>
#include <tests/cli/scene_sample.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <limits>

namespace trv::testing {
namespace {

class SceneComponentsTest : public ViewedProject {
protected:
    QString write(const std::string& name, const CTrvAssemblyData& data) const {
        EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly((directory_ / name).wstring(), data),
                  eFileIOSuccess);
        return path(name);
    }

    static CTrvAssemblyComponentData at(double x, CTrvAssemblyComponentData component) {
        const double translation[3] = {x, 2 * x, -x};
        const double vec1[3] = {0.5, 0.25, 0};
        const double vec2[3] = {0, 1, 0.125};
        const double vec3[3] = {3, 0, 1};
        component.setTranslation(translation);
        component.setOrientation(vec1, vec2, vec3);
        return component;
    }

    static CTrvAssemblyComponentData disabled(CTrvAssemblyComponentData component) {
        component.setEnabled(false);
        return component;
    }

    // What is written for a record, which may be one that no file can hold.
    std::string textOf(const CTrvAssemblyData& data) const {
        cli::SceneFiles files;
        std::ostringstream out;
        cli::JsonWriter json(out);
        cli::SceneComponents(path("a.xml"), data, files).write(json);
        json.end();
        return out.str();
    }

    QJsonObject writtenAs(const CTrvAssemblyData& data) const {
        return QJsonDocument::fromJson(QByteArray::fromStdString(textOf(data))).object();
    }

    // The numbers of the list that the library gives.
    static std::vector<double> flattened(const CTrvAssemblyData& data) {
        std::vector<double> numbers;
        for (const CComponentInfo& entry : data.getComponentFileList()) {
            const double* vectors[4] = {};
            entry.getOrientation(vectors[0], vectors[1], vectors[2]);
            entry.getTranslation(vectors[3]);
            for (const double* const vector : vectors)
                numbers.insert(numbers.end(), vector, vector + 3);
        }
        return numbers;
    }
};

TEST_F(SceneComponentsTest, HaveTheColumnsOfTheTreeAndThePlacements) {
    file("vise, small.stl", emptyStl);
    file("part.stl", emptyStl);
    const QJsonObject data = dataOf({file("a.xml", setupXml)});
    const std::string written =
        QJsonDocument(QJsonArray{assemblyIn(data)}).toJson(QJsonDocument::Compact).toStdString();
    EXPECT_EQ(written,
              "[{\"components\":{\"comment\":[\"\",\"left, \\\"old\\\"\",\"\"],"
              "\"enabled\":[1,1,0],\"file\":[-1,0,1],\"local\":\"" +
                  (std::string(atTen) + atFive + turned) +
                  "\",\"name\":[\"Setup\",\"Vise\",\"Part\"],\"parent\":[-1,0,0],\"world\":\"" +
                  atTen + atTenAndFive + turnedAtTen +
                  "\"},"
                  "\"dimension\":[[0,0,0],[100,50,20.5]],"
                  "\"ghosts\":{\"component\":[2],\"file\":[1],\"matrix\":\"" +
                  turnedAtTen + "\"},\"path\":\"" + text("a.xml") +
                  "\",\"placements\":{\"component\":[1],\"file\":[0],\"matrix\":\"" + atTenAndFive +
                  "\"}}]");
}

TEST_F(SceneComponentsTest, PlaceWhatTheLibraryPlaces) {
    CTrvAssemblyData data = assembly(
        at(1, component("root", {at(2, leaf("a", "a.stl")),
                                 disabled(at(3, component("b", {at(4, leaf("c", "c.stl"))}))),
                                 at(5, component("d", {disabled(at(6, leaf("e", "e.stl"))),
                                                       at(7, leaf("f", "a.stl"))}))})));
    const QJsonObject written = assemblyIn(dataOf({write("a.xml", data)}));
    EXPECT_EQ(integersOf(column(written, "placements", "component")), (std::vector<int>{1, 6}));
    EXPECT_EQ(integersOf(column(written, "placements", "file")), (std::vector<int>{0, 0}));
    EXPECT_EQ(numbersOf(column(written, "placements", "matrix")), flattened(data));
    EXPECT_EQ(numbersOf(column(written, "placements", "matrix")).size(), 24U);
}

TEST_F(SceneComponentsTest, HaveAsGhostsWhatWouldBePlacedIfItWereEnabled) {
    const auto tree = [](bool isEnabled) {
        CTrvAssemblyComponentData group = at(3, component("b", {at(4, leaf("c", "c.stl"))}));
        group.setEnabled(isEnabled);
        CTrvAssemblyComponentData single = at(6, leaf("e", "e.stl"));
        single.setEnabled(isEnabled);
        return assembly(at(1, component("root", {at(2, leaf("a", "a.stl")), group, single})));
    };
    const QJsonObject written = assemblyIn(dataOf({write("a.xml", tree(false))}));
    EXPECT_EQ(integersOf(column(written, "ghosts", "component")), (std::vector<int>{3, 4}));
    EXPECT_EQ(integersOf(column(written, "ghosts", "file")), (std::vector<int>{1, 2}));
    const std::vector<double> all = flattened(tree(true));
    EXPECT_EQ(numbersOf(column(written, "ghosts", "matrix")),
              std::vector<double>(all.begin() + 12, all.end()));
    EXPECT_EQ(integersOf(column(written, "components", "enabled")),
              (std::vector<int>{1, 1, 0, 1, 0}));
}

TEST_F(SceneComponentsTest, HaveThePlacementOfEachComponentInTheAssembly) {
    const auto tree = [](const char* file, bool isEnabled) {
        CTrvAssemblyComponentData group = at(3, leaf("b", file));
        group.setEnabled(isEnabled);
        group.setComponents({at(4, leaf("c", "c.stl"))});
        return assembly(at(1, component("root", {at(2, leaf("a", "a.stl")), group})));
    };
    const QJsonObject written = writtenAs(tree("", false));
    const std::vector<double> world = numbersOf(column(written, "components", "world"));
    const std::vector<double> root = {0.5, 0.25, 0, 0, 1, 0.125, 3, 0, 1, 1, 2, -1};
    ASSERT_EQ(world.size(), 48U);
    EXPECT_EQ(std::vector<double>(world.begin(), world.begin() + 12), root);
    EXPECT_EQ(std::vector<double>(world.begin() + 12, world.end()), flattened(tree("b.stl", true)));
}

TEST_F(SceneComponentsTest, KeepADisabledRootAsAGhost) {
    CTrvAssemblyComponentData root = leaf("root", "a.stl");
    root.setEnabled(false);
    const QJsonObject written = assemblyIn(dataOf({write("a.xml", assembly(root))}));
    EXPECT_EQ(integersOf(column(written, "placements", "component")), std::vector<int>());
    EXPECT_EQ(column(written, "placements", "matrix"), QJsonValue(QLatin1String("")));
    EXPECT_EQ(integersOf(column(written, "ghosts", "component")), std::vector<int>{0});
}

TEST_F(SceneComponentsTest, AreOneForAnEmptyAssembly) {
    const QJsonObject written = assemblyIn(dataOf({file(
        "a.xml",
        R"(<ComponentInfo version="1"><Attributs/><Component name=""></Component></ComponentInfo>)")}));
    EXPECT_EQ(integersOf(column(written, "components", "parent")), std::vector<int>{-1});
    EXPECT_EQ(integersOf(column(written, "placements", "component")), std::vector<int>());
    EXPECT_TRUE(written.value(QLatin1String("dimension")).isNull());
}

TEST_F(SceneComponentsTest, HaveNoDimensionThatIsNoSize) {
    CTrvAssemblyData data = assembly(leaf("root", "a.stl"));
    const double size[3] = {1, std::numeric_limits<double>::infinity(), 2};
    data.setDimension(size);
    const QJsonObject written = assemblyIn(dataOf({write("a.xml", data)}));
    EXPECT_TRUE(written.value(QLatin1String("dimension")).isNull());
}

// Deeper than the stack that a recursion would need.
TEST_F(SceneComponentsTest, MayBeDeep) {
    constexpr int levels = 200000;
    const QJsonObject written = writtenAs(chain(levels, "a.stl"));
    EXPECT_EQ(integersOf(column(written, "placements", "component")), std::vector<int>{levels - 1});
    EXPECT_EQ(integersOf(column(written, "components", "parent")).back(), levels - 2);
}

TEST_F(SceneComponentsTest, HaveTextsThatCannotEndTheirElement) {
    const std::string name = "</script>\xF0\x9F\x94\xA9 \xE2\x80\xAE\x01" + std::string(10000, 'x');
    const std::string comment = "<!-- \"'\\ \n\xFF";
    CTrvAssemblyComponentData root = leaf(name, "a.stl");
    root.setComment(comment);
    const CTrvAssemblyData data = assembly(root);
    const std::string out = textOf(data);
    EXPECT_NE(out.find("\"name\":[\"</script>\xF0\x9F\x94\xA9 \\u202e\\u0001xxx"),
              std::string::npos);
    // On Windows the code page says what the last byte is, as in every other text.
    const std::string last = platform::backslash_separates() ? "" : "\xEF\xBF\xBD\"]";
    EXPECT_NE(out.find("\"comment\":[\"<!-- \\\"'\\\\ \\n" + last), std::string::npos);
    const QJsonObject written = writtenAs(data);
    EXPECT_EQ(column(written, "components", "name").toArray().at(0).toString().size(),
              9 + 2 + 1 + 1 + 1 + 10000);
}

}  // namespace
}  // namespace trv::testing
