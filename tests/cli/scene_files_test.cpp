#include <cli/scene_files.h>
#include <tests/cli/scene_sample.h>

#include <filesystem>
#include <sstream>
#include <stdexcept>

namespace trv::testing {
namespace {

class SceneFilesTest : public ProjectDirectory {
protected:
    int add(const std::string& name) { return files_.add(directoryOfFiles_, name); }

    std::string contents() const {
        std::ostringstream out;
        {
            cli::OutputBuffer buffer(out);
            files_.writeContents(buffer);
        }
        return out.str();
    }

    std::string json() const {
        std::ostringstream out;
        cli::JsonWriter json(out);
        files_.write(json);
        json.end();
        return out.str();
    }

    cli::ReferenceDirectory directoryOfFiles_{path("setup.xml")};
    cli::SceneFiles files_;
};

TEST_F(SceneFilesTest, AreThereOnceWhateverTheirNames) {
    file("parts/a.stl", emptyStl);
    EXPECT_EQ(add("parts/a.stl"), 0);
    EXPECT_EQ(add("./parts/../parts/a.stl"), 0);
    EXPECT_EQ(add("b.stl"), 1);
    EXPECT_EQ(add("."), 2);
    EXPECT_EQ(add("."), 2);
    EXPECT_EQ(files_.add(cli::ReferenceDirectory(path("parts/other.xml")), "a.stl"), 0);
    EXPECT_EQ(json(),
              "{\"files\":[{\"path\":\"parts/a.stl\",\"format\":\"stl\",\"reason\":null,"
              "\"size\":15},{\"path\":\"b.stl\",\"format\":null,"
              "\"reason\":\"file not found\",\"size\":0},{\"path\":\".\",\"format\":null,"
              "\"reason\":\"not a valid file name\",\"size\":0}]}\n");
}

TEST_F(SceneFilesTest, AreElementsInBase64) {
    file("a.stl", emptyStl);
    file("b.ply", "ply\nend_header\n\xFF");
    add("a.stl");
    add("missing.stl");
    add("b.ply");
    EXPECT_EQ(contents(),
              "<script type=\"text/plain\" id=\"geometry-0\">c29saWQKZW5kc29saWQK"
              "</script>\n<script type=\"text/plain\" id=\"geometry-2\">"
              "cGx5CmVuZF9oZWFkZXIK/w==</script>\n");
}

TEST_F(SceneFilesTest, AreWholeIfTheyAreLarge) {
    const std::string large = "solid " + std::string(200000, 'x') + "\nendsolid\n";
    file("a.stl", large);
    add("a.stl");
    const std::string written = contents();
    const std::size_t begin = written.find('>') + 1;
    const std::string digits = written.substr(begin, written.find("</script>") - begin);
    EXPECT_EQ(QByteArray::fromBase64(QByteArray::fromStdString(digits)).toStdString(), large);
}

TEST_F(SceneFilesTest, AreReportedIfTheyAreNotShown) {
    file("a.stl", emptyStl);
    add("a.stl");
    add("missing.stl");
    std::ostringstream err;
    files_.reportHidden(err);
    EXPECT_EQ(err.str(), "trvfiles: missing.stl: file not found; shown as a box\n");
}

TEST_F(SceneFilesTest, AreAnErrorIfTheyVanish) {
    file("a.stl", emptyStl);
    add("a.stl");
    std::filesystem::remove(directory_ / "a.stl");
    EXPECT_THROW(contents(), std::runtime_error);
}

}  // namespace
}  // namespace trv::testing
