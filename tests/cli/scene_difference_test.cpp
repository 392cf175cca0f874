#include <tests/cli/env_sample.h>
#include <tests/cli/scene_sample.h>

namespace trv::testing {
namespace {

class SceneDifference : public ViewedProject {
protected:
    // "kind path old new: text", a line for each entry.
    std::string differences(const std::string& first, const std::string& second) const {
        const QJsonObject data = dataOf({QStringLiteral("--diff"), file("a.xml", document(first)),
                                         file("b.xml", document(second))});
        std::string lines;
        for (const QJsonValue& value : data.value(QLatin1String("diff")).toArray()) {
            const QJsonObject entry = value.toObject();
            const auto text = [&](const char* key) {
                return entry.value(QLatin1String(key)).toString().toStdString();
            };
            const auto index = [&](const char* key) {
                return std::to_string(entry.value(QLatin1String(key)).toInt(-100));
            };
            lines += text("kind") + ' ' + text("path") + ' ' + index("old") + ' ' + index("new") +
                     ": " + text("text") + '\n';
        }
        return lines;
    }

    static std::string document(const std::string& components) {
        return R"(<ComponentInfo version="1"><Attributs><Dimension x="1" y="1" z="1"/></Attributs>)"
               R"(<Component name="r"><Data>)" +
               components + "</Data></Component></ComponentInfo>";
    }

    static std::string part(const std::string& name, const std::string& inner = "",
                            const std::string& attributes = "") {
        return "<Component name=\"" + name + "\" " + attributes + ">" + inner +
               "<Data><File name=\"" + name + ".stl\"/></Data></Component>";
    }
};

TEST_F(SceneDifference, IsEmptyForEqualAssemblies) {
    EXPECT_EQ(differences(part("a"), part("a")), "");
}

TEST_F(SceneDifference, IsNullForOneAssembly) {
    EXPECT_TRUE(dataOf({file("a.xml", setupXml)}).value(QLatin1String("diff")).isNull());
}

TEST_F(SceneDifference, HasOneEntryForEachComponent) {
    EXPECT_EQ(
        differences(part("a") + part("b") + part("c"),
                    part("a",
                         "<Translation x=\"4\"/><Orientation><vec1 y=\"1\"/>"
                         "<vec2 x=\"-1\"/><vec3 z=\"1\"/></Orientation>",
                         "comment=\"new\"") +
                        part("c", "", "enabled=\"0\"") + part("d")),
        "moved r/a[0] 1 1: comment \"\" -> \"new\"\nmoved by 4 0 0\nturned by 90\xC2\xB0 about z\n"
        "removed r/b[1] 2 -1: only in the first file\n"
        "changed r/c[2] 3 2: enabled -> disabled\n"
        "added r/d[2] -1 3: only in the second file\n");
}

TEST_F(SceneDifference, NamesWhatIsReordered) {
    EXPECT_EQ(differences(part("a") + part("b"), part("b") + part("a")),
              "reordered r/a[0] 1 2: moved among its siblings to [1]\n");
}

TEST_F(SceneDifference, NotesWhatDoesNotCount) {
    EXPECT_EQ(differences(part("a"), part("a",
                                          "<Orientation><vec1 x=\"1\"/><vec2 y=\"1\"/>"
                                          "<vec3 z=\"2\"/></Orientation>")),
              "note r/a[0] 1 1: vec3 0 0 1 -> 0 0 2, which does not count\n");
}

TEST_F(SceneDifference, HasTheDimensionFirst) {
    const QString first = file("a.xml", setupXml);
    const QString second = file("b.xml", replaced(setupXml, "x=\"100\"", "x=\"110\""));
    const QJsonArray entries =
        dataOf({QStringLiteral("--diff"), first, second}).value(QLatin1String("diff")).toArray();
    EXPECT_EQ(QJsonDocument(entries).toJson(QJsonDocument::Compact).toStdString(),
              "[{\"kind\":\"dimension\",\"new\":-1,\"old\":-1,\"path\":\"dimension\","
              "\"text\":\"100 50 20.5 -> 110 50 20.5\"}]");
}

}  // namespace
}  // namespace trv::testing
