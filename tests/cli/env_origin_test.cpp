#include <cli/env_origin.h>
#include <tests/environment/configured_store.h>
#include <trvfiles/environment/message_store_data.h>
#include <trvfiles/support/platform.h>

#include <QJsonDocument>
#include <gtest/gtest.h>

#include <string>

namespace trv::testing {
namespace {

using cli::Origin;

std::string jsonOf(const Origin& origin) {
    QJsonObject object;
    cli::addOrigin(origin, object);
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

TEST(EnvOrigin, IsAPlaceInAFile) {
    ConfiguredStore store;
    store.variable("LIMIT = 1", "a.cfg", 7);
    const Origin origin = cli::originOf(*store.get(), store.get()->sections[0].text(0));
    EXPECT_EQ(origin.kind, Origin::Kind::file);
    EXPECT_EQ(origin.file, "a.cfg");
    EXPECT_EQ(origin.line, 7);
    EXPECT_EQ(cli::originText(origin).toStdString(), "a.cfg:7");
    EXPECT_EQ(jsonOf(origin), R"({"file":"a.cfg","line":7,"origin":"file"})");
}

TEST(EnvOrigin, MayBeAProgram) {
    ConfiguredStore store;
    store.variable("LIMIT = 1");
    const Origin origin = cli::originOf(*store.get(), store.get()->sections[0].text(0));
    EXPECT_EQ(origin.kind, Origin::Kind::program);
    EXPECT_EQ(cli::originText(origin).toStdString(), "set by program");
    EXPECT_EQ(jsonOf(origin), R"({"file":null,"line":null,"origin":"program"})");
}

TEST(EnvOrigin, MayBeOutsideOfTheConfiguration) {
    const Origin environment = {Origin::Kind::environment, "", 0, "CFG\x1bPATH"};
    EXPECT_EQ(cli::originText(environment).toStdString(), "environment variable CFG\\x1bPATH");
    EXPECT_EQ(jsonOf(environment), R"({"file":null,"line":null,"origin":"environment"})");
    const Origin zone = {Origin::Kind::workZone, "", 0, ""};
    EXPECT_EQ(cli::originText(zone).toStdString(), "work zone");
    EXPECT_EQ(jsonOf(zone), R"({"file":null,"line":null,"origin":"workZone"})");
}

TEST(EnvOrigin, HasNoHiddenCharacters) {
    const Origin origin = {Origin::Kind::file, "a\x1b.cfg", 3, ""};
    EXPECT_EQ(cli::originText(origin).toStdString(), "a\\x1b.cfg:3");
}

TEST(EnvOrigin, SpellsPathsAsTheSystemDoes) {
    const auto spelled = [](const char* path) { return cli::nativeSpelling(path).toStdString(); };
    const bool windows = platform::backslash_separates();
    EXPECT_EQ(spelled("/opt/shop\\config\\environ.cfg"),
              windows ? "\\opt\\shop\\config\\environ.cfg" : "/opt/shop/config/environ.cfg");
    EXPECT_EQ(spelled("\\opt\\\\shop//cell/./a"),
              windows ? "\\opt\\shop\\cell\\a" : "/opt/shop/cell/a");
    EXPECT_EQ(spelled("\\\\server\\share\\a"),
              windows ? "\\\\server\\share\\a" : "/server/share/a");
    EXPECT_EQ(spelled("../a"), windows ? "..\\a" : "../a");
    EXPECT_EQ(spelled(""), "");
}

}  // namespace
}  // namespace trv::testing
