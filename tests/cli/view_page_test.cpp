#include <cli/view_page.h>
#include <tests/cli/scene_sample.h>
#include <trvfiles/version.h>

#include <QCryptographicHash>

#include <sstream>

namespace trv::testing {
namespace {

using cli::PageParts;
using cli::Scene;

class ViewPage : public ProjectDirectory {
protected:
    static PageParts parts() {
        return {{"a{}", "b{}"}, "<main></main>\n", "the notice\n", {"one()", "two()\n"}};
    }

    static std::string pageOf(const Scene& scene, const PageParts& parts) {
        cli::SceneFiles files;
        std::ostringstream out;
        cli::writePage(scene, parts, files, out);
        return out.str();
    }

    static Scene titled(const std::string& title) {
        return {QString::fromStdString(title), {}, {}};
    }

    // The texts between a beginning and an end.
    static std::vector<std::string> between(const std::string& page, const std::string& begin,
                                            const std::string& end) {
        std::vector<std::string> found;
        for (std::size_t at = 0; (at = page.find(begin, at)) != std::string::npos;) {
            at += begin.size();
            found.push_back(page.substr(at, page.find(end, at) - at));
        }
        return found;
    }

    static std::string policyOf(const std::string& page) {
        return between(page, R"("Content-Security-Policy" content=")", "\"").at(0);
    }

    static std::string hashSource(const std::string& text) {
        return " 'sha256-" +
               QCryptographicHash::hash(QByteArray::fromStdString(text), QCryptographicHash::Sha256)
                   .toBase64()
                   .toStdString() +
               '\'';
    }
};

// The hashes are those of `printf a{} | openssl dgst -sha256 -binary | base64`.
TEST_F(ViewPage, IsOneDocument) {
    EXPECT_EQ(pageOf(titled("a.xml"), parts()),
              "<!DOCTYPE html>\n"
              "<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
              "<meta name=\"generator\" content=\"trvfiles view " +
                  std::string(version_text()) +
                  "\">\n"
                  "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                  "script-src 'sha256-HR7iaask9daLMRRskMI++QeJtjWDOjyPA6lGzYGzKW4=' "
                  "'sha256-KUcSpvSxT6ZpY6acqJ+PnKqVvcJP86bOsmFTj6jYNDk='; "
                  "style-src 'sha256-X1RutGBrXCt9KkSaXMK7tHftWiRscFHOhxsS8tv8hBk=' "
                  "'sha256-7yqHVAesot11p6HczDsgKRipvI5UPgs97z80zNXlans='; "
                  "img-src data: blob:; base-uri 'none'; form-action 'none'\">\n"
                  "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                  "<title>a.xml</title>\n"
                  "<style>a{}</style>\n"
                  "<style>b{}</style>\n"
                  "</head><body>\n"
                  "<main></main>\n"
                  "<script type=\"application/json\" id=\"scene-data\">\n"
                  "{\"title\":\"a.xml\",\"version\":\"" +
                  version_text() +
                  "\",\"files\":[],\"assemblies\":[],\"frames\":[],\"diff\":null}\n"
                  "</script>\n"
                  "<script type=\"text/plain\" id=\"three-license\">\n"
                  "the notice\n"
                  "</script>\n"
                  "<script>one()</script>\n"
                  "<script>two()\n"
                  "</script>\n"
                  "</body></html>\n");
}

TEST_F(ViewPage, HasAPolicyWithTheHashesOfItsScriptsAndStylesAlone) {
    const std::string page = pageOf(titled("a.xml"), cli::embeddedPageParts());
    std::string policy = "default-src 'none'; script-src";
    for (const std::string& script : between(page, "<script>", "</script>"))
        policy += hashSource(script);
    policy += "; style-src";
    for (const std::string& style : between(page, "<style>", "</style>"))
        policy += hashSource(style);
    EXPECT_EQ(policyOf(page),
              policy + "; img-src data: blob:; base-uri 'none'; form-action 'none'");
}

TEST_F(ViewPage, HasNoTextOfAFileAsMarkup) {
    const std::string hostile = "</title></script><img src=x onerror=\"1\">&\xE2\x80\xAE";
    CTrvAssemblyData data = assembly(leaf(hostile, hostile));
    data.getRootComponent().setComment(hostile);
    Scene scene = titled(hostile);
    scene.assemblies.push_back({path("a.xml"), data});
    scene.frames.push_back({QString::fromStdString(hostile), QString::fromStdString(hostile),
                            "axis", trv::identityAxis});
    const std::string page = pageOf(scene, parts());
    EXPECT_EQ(page.find("<img"), std::string::npos);
    EXPECT_EQ(between(page, "<title>", "</title>"),
              std::vector<std::string>{"&lt;/title&gt;&lt;/script&gt;&lt;img src=x "
                                       "onerror=&quot;1&quot;&gt;&amp;\\u202e"});
    // Four elements with scripts and data, and nothing else, end a script.
    EXPECT_EQ(between(page, "</script", ">").size(), 4U);
}

TEST_F(ViewPage, HasTheGeometryAfterTheData) {
    file("a.stl", emptyStl);
    Scene scene = titled("a.xml");
    scene.assemblies.push_back({path("a.xml"), assembly(leaf("a", "a.stl"))});
    const std::string page = pageOf(scene, parts());
    EXPECT_NE(page.find("}\n</script>\n<script type=\"text/plain\" id=\"geometry-0\">"
                        "c29saWQKZW5kc29saWQK</script>\n<script type=\"text/plain\" "
                        "id=\"three-license\">"),
              std::string::npos);
}

TEST_F(ViewPage, IsRecognised) {
    EXPECT_TRUE(cli::isPage(pageOf(titled("a.xml"), parts()).substr(0, 256)));
    EXPECT_TRUE(
        cli::isPage("<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
                    "<meta name=\"generator\" content=\"trvfiles view 99.9.9\">"));
    EXPECT_FALSE(cli::isPage("<!DOCTYPE html>\n<html lang=\"en\"><head>"));
    EXPECT_FALSE(cli::isPage(""));
}

TEST_F(ViewPage, HasTheNoticeOfThreeJs) {
    const PageParts& embedded = cli::embeddedPageParts();
    if (embedded.scripts.empty()) GTEST_SKIP() << "built without libjs-three";
    const std::string page = pageOf(titled("a.xml"), embedded);
    EXPECT_NE(page.find("three.js authors"), std::string::npos);
    EXPECT_NE(page.find("The above copyright notice and this permission notice shall be included"),
              std::string::npos);
    EXPECT_EQ(between(page, "<script>", "</script>").size(), embedded.scripts.size());
}

}  // namespace
}  // namespace trv::testing
