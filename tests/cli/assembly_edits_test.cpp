#include <cli/assembly_edits.h>
#include <tests/cli/samples.h>

#include <QStringList>
#include <gtest/gtest.h>

#include <string>

namespace trv::testing {
namespace {

using cli::AssemblyEdits;
using cli::FieldEdit;

// What is wrong with the options.
std::string read(const QStringList& options, AssemblyEdits& edits) {
    QCommandLineParser parser;
    parser.addOptions(cli::editOptions());
    EXPECT_TRUE(parser.parse(QStringList(QStringLiteral("edit")) + options));
    return cli::readEdits(parser, edits).toStdString();
}

std::string mistake(const char* option) {
    AssemblyEdits ignored;
    return read({QString::fromUtf8(option)}, ignored);
}

FieldEdit setting(const char* assignment) {
    AssemblyEdits edits;
    EXPECT_EQ(read({QStringLiteral("--set"), QString::fromUtf8(assignment)}, edits), "");
    return edits.fields.empty() ? FieldEdit() : edits.fields.front();
}

ComponentBody sample() {
    const CTrvAssemblyComponentData root =
        component("S", {leaf("a", "f"), leaf("b", "g"), component("c", {leaf("d", "f")})});
    return ComponentBody::of(root).copy();
}

// Applies the options to the sample.
//
// @return what is wrong with the places, or "changed" or "unchanged"
std::string apply(const QStringList& options, ComponentBody& root) {
    AssemblyEdits edits;
    EXPECT_EQ(read(options, edits), "");
    std::vector<cli::ComponentPlace> places;
    const QString reason = cli::findPlaces(edits, root, places);
    if (!reason.isEmpty()) return reason.toStdString();
    const bool isChange = cli::wouldChange(edits, places, root);
    cli::applyEdits(edits, places, root);
    return isChange ? "changed" : "unchanged";
}

QStringList options(const char* text) {
    return QString::fromUtf8(text).split(QLatin1Char(' '));
}

TEST(AssemblyEdits, ReadsEachKey) {
    FieldEdit edit = setting("S/a[0].name=x=y");
    EXPECT_EQ(edit.path.toStdString(), "S/a[0]");
    EXPECT_EQ(edit.key, FieldEdit::Key::name);
    EXPECT_EQ(edit.text, "x=y");
    edit = setting("S.comment=");
    EXPECT_EQ(edit.key, FieldEdit::Key::comment);
    EXPECT_EQ(edit.text, "");
    edit = setting("S.translation=1,-2,.5");
    EXPECT_EQ(edit.key, FieldEdit::Key::translation);
    EXPECT_EQ(edit.translation, (std::array<double, 3>{1, -2, 0.5}));
    edit = setting("S.enabled=0");
    EXPECT_EQ(edit.key, FieldEdit::Key::enabled);
    EXPECT_FALSE(edit.enabled);
    EXPECT_TRUE(setting("S.enabled=1").enabled);
}

TEST(AssemblyEdits, EndsAPathAtTheFirstKey) {
    EXPECT_EQ(setting("S/a=b.c[0].name=x.name=y").path.toStdString(), "S/a=b.c[0]");
    EXPECT_EQ(setting("S/a=b.c[0].name=x.name=y").text, "x.name=y");
    EXPECT_EQ(setting("S/a\\x2ename=b.name=c").path.toStdString(), "S/a\\x2ename=b");
    EXPECT_EQ(setting(".name=c").path.toStdString(), "");
}

TEST(AssemblyEdits, RejectWhatTheyDoNotKnow) {
    AssemblyEdits ignored;
    EXPECT_EQ(read({}, ignored), "an edit is missing: --rename-file, --set, --enable or --disable");
    const std::string form =
        "--set takes PATH.key=value with the key name, comment, translation or enabled, not ";
    EXPECT_EQ(mistake("--set=S.colour=red"), form + "'S.colour=red'");
    EXPECT_EQ(mistake("--set=S.name"), form + "'S.name'");
    EXPECT_EQ(mistake("--set=name=x"), form + "'name=x'");
    EXPECT_EQ(mistake("--set=S.enabled=yes"), "enabled is 0 or 1, not 'yes'");
    EXPECT_EQ(mistake("--set=S.translation=1,2"),
              "a translation is three numbers, such as 10,0,-2.5, not '1,2'");
    EXPECT_EQ(mistake("--rename-file=f"), "--rename-file takes OLD=NEW, not 'f'");
    EXPECT_EQ(mistake("--rename-file=f="), "--rename-file takes OLD=NEW, not 'f='");
    EXPECT_EQ(mistake("--rename-file==f"), "--rename-file takes OLD=NEW, not '=f'");
    EXPECT_EQ(read(options("--rename-file f=g --rename-file f=h"), ignored),
              "--rename-file has two new names for 'f'");
}

TEST(AssemblyEdits, RejectWhatAFileCannotHold) {
    EXPECT_EQ(mistake("--set=S.name=a\x1B"),
              "--set: a file cannot hold 'a\x1B': XML does not allow one of its characters");
    EXPECT_EQ(mistake("--rename-file=f=\xEF\xBF\xBF"),
              "--rename-file: a file cannot hold '\xEF\xBF\xBF': XML does not allow one of its "
              "characters");
    EXPECT_EQ(mistake("--set=S.comment=\xEF\xBF\xBD"),
              "--set: a file cannot hold '\xEF\xBF\xBD': it holds bytes that are not text");
    EXPECT_EQ(mistake("--set=S.comment=a\tb\n"), "");
}

TEST(AssemblyEdits, SetEachField) {
    ComponentBody root = sample();
    EXPECT_EQ(apply(options("--set S/a.name=A --set S/a.comment=C --set S/a.translation=1,2,3 "
                            "--disable S/a --set S.comment=R"),
                    root),
              "changed");
    EXPECT_EQ(root.components[0].name, "A");
    EXPECT_EQ(root.components[0].comment, "C");
    EXPECT_EQ(root.components[0].translation[2], 3);
    EXPECT_FALSE(root.components[0].enabled);
    EXPECT_EQ(root.comment, "R");
    EXPECT_EQ(apply(options("--enable S/A"), root), "changed");
    EXPECT_TRUE(root.components[0].enabled);
}

TEST(AssemblyEdits, RenameEachFileOnce) {
    ComponentBody root = sample();
    EXPECT_EQ(apply(options("--rename-file f=g --rename-file g=f"), root), "changed");
    EXPECT_EQ(root.components[0].geometryFileName, "g");
    EXPECT_EQ(root.components[1].geometryFileName, "f");
    EXPECT_EQ(root.components[2].components[0].geometryFileName, "g");
    EXPECT_EQ(root.components[2].geometryFileName, "");
    EXPECT_EQ(apply(options("--rename-file f=h=i"), root), "changed");
    EXPECT_EQ(root.components[1].geometryFileName, "h=i");
}

TEST(AssemblyEdits, NoticeThatNothingChanges) {
    ComponentBody root = sample();
    EXPECT_EQ(apply(options("--rename-file F=x --rename-file f=f --enable S --set S/a.name=a "
                            "--set S/a.translation=0,0,0 --set S/a.comment="),
                    root),
              "unchanged");
    EXPECT_EQ(apply(options("--set S/a.translation=-0.0,0,0"), root), "changed");
}

TEST(AssemblyEdits, UseThePathsOfTheUnchangedAssembly) {
    ComponentBody root = sample();
    EXPECT_EQ(apply(options("--set S/a.name=b --set S/b.name=a --set S/a.comment=was-a"), root),
              "changed");
    EXPECT_EQ(root.components[0].name, "b");
    EXPECT_EQ(root.components[0].comment, "was-a");
    EXPECT_EQ(root.components[1].name, "a");
}

TEST(AssemblyEdits, SayWhichPathIsWrong) {
    ComponentBody root = sample();
    EXPECT_EQ(apply(options("--enable S/a --enable S/e"), root),
              "there is no 'e' below 'S'; the first of 3 components is 'a[0]'");
    EXPECT_EQ(apply(options("--enable S/a --set S/a[0].enabled=0"), root),
              "enabled of 'S/a[0]' is set twice");
}

}  // namespace
}  // namespace trv::testing
