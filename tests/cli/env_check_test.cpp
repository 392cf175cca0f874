#include <tests/cli/env_sample.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace trv::testing {
namespace {

using EnvCheck = EnvCommand;

TEST_F(EnvCheck, SaysWhatASoundFileHolds) {
    write("a.msg", "");
    write("b.msg", "[one]\nfirst\n");
    EXPECT_EQ(
        run({"check", "shop/texts/messages.msg", "shop/config/environ.cfg", "a.msg", "b.msg"}), 0);
    EXPECT_EQ(out(),
              "shop/texts/messages.msg: ok (2 sections, 5 entries)\n"
              "shop/config/environ.cfg: ok (2 sections, 13 entries)\n"
              "a.msg: ok (0 sections, 0 entries)\n"
              "b.msg: ok (1 section, 1 entry)\n");
    EXPECT_EQ(err(), "");
}

TEST_F(EnvCheck, NamesEveryFaultOnceWithItsLine) {
    write("a.msg",
          "[one]\n"
          "/if NOBODY == 1\n"
          "/endif\n"
          "/if CELL = 3\n"
          "/endif\n"
          "/endif\n"
          "/else\n"
          "/frob\n"
          "first\n");
    EXPECT_EQ(run({"check", "a.msg", "shop/cell/environ.cfg"}), 1);
    EXPECT_EQ(err(), "");
    EXPECT_EQ(out(),
              "a.msg: line 2: unknown variable : '/if NOBODY == 1'\n"
              "a.msg: line 4: invalid condition: /if CELL = 3\n"
              "a.msg: line 6: '/endif' without '/if'\n"
              "a.msg: line 7: '/else' without '/if'\n"
              "a.msg: line 8: Unknown keyword : '/frob'\n"
              "a.msg: Error loading file.\n"
              "shop/cell/environ.cfg: ok (1 section, 4 entries)\n");
}

TEST_F(EnvCheck, PrintsJson) {
    write("a.msg", "[one]\nfirst\n/frob \x1b\n");
    EXPECT_EQ(run({"check", "--json", "a.msg", "none.msg", "shop/cell/environ.cfg"}), 1);
    EXPECT_EQ(err(), "");
    EXPECT_EQ(out(),
              "{\"files\":["
              "{\"entries\":1,\"file\":\"a.msg\",\"findings\":["
              "{\"code\":\"keyword-unknown\",\"line\":3,\"subject\":\"frob\"},"
              "{\"code\":\"file-not-loaded\",\"line\":null}],\"ok\":false,\"sections\":1},"
              "{\"entries\":null,\"file\":\"none.msg\",\"findings\":["
              "{\"code\":\"file-missing\",\"line\":null,\"systemError\":2}],\"ok\":false,"
              "\"sections\":null},"
              "{\"entries\":4,\"file\":\"shop/cell/environ.cfg\",\"findings\":[],\"ok\":true,"
              "\"sections\":1}]}\n");
}

TEST_F(EnvCheck, HasACodeForEachFaultInItsJson) {
    write("a.msg", "[one]\n/if NOBODY == 1\n/endif\n/if CELL = 3\n/endif\n/endif\n/else\n" +
                       std::string(1023, 'x') + "\n/if NOBODY\nlast");
    EXPECT_EQ(run({"check", "--json", "a.msg", "shop"}), 1);
    EXPECT_EQ(out(),
              "{\"files\":[{\"entries\":1,\"file\":\"a.msg\",\"findings\":["
              "{\"code\":\"variable-unknown\",\"line\":2,\"subject\":\"/if NOBODY == 1\"},"
              "{\"code\":\"condition-invalid\",\"line\":4,\"subject\":\"/if CELL = 3\"},"
              "{\"code\":\"endif-without-if\",\"line\":6},"
              "{\"code\":\"else-without-if\",\"line\":7},"
              "{\"code\":\"line-too-long\",\"line\":8},"
              "{\"code\":\"if-without-endif\",\"line\":10},"
              "{\"code\":\"if-without-endif\",\"line\":null}],\"ok\":false,\"sections\":1},"
              "{\"entries\":null,\"file\":\"shop\",\"findings\":["
              "{\"code\":\"not-a-regular-file\",\"line\":null}],\"ok\":false,"
              "\"sections\":null}]}\n");
}

TEST_F(EnvCheck, HasACodeForAMissingInstallationInItsJson) {
    process_.setVariable("TRVHOME", nullptr);
    write("a.msg", "/if CELL\n/endif\n");
    EXPECT_EQ(run({"check", "--json", "a.msg"}), 1);
    EXPECT_NE(out().find("[{\"code\":\"installation-missing\",\"line\":null}]"), std::string::npos);
}

TEST_F(EnvCheck, ReportsWhatIsOpenAtTheEnd) {
    write("it's 4, or 5.msg", "[one]\n/if NOBODY\nfirst");
    EXPECT_EQ(run({"check", "it's 4, or 5.msg", "it's 4, or 5.msg"}), 1);
    const std::string faults =
        "it's 4, or 5.msg: line 3: '/if' without '/endif'\n"
        "it's 4, or 5.msg: '/if' without '/endif' at end of file.\n";
    EXPECT_EQ(out(), faults + faults);
}

TEST_F(EnvCheck, ReportsWarningsToo) {
    write("a.msg", "[one]\n" + std::string(1022, 'x') + "\n" + std::string(1023, 'x') + "\n");
    EXPECT_EQ(run({"check", "a.msg"}), 1);
    EXPECT_EQ(out(), "a.msg: line 3: Input line too long\n");
}

TEST_F(EnvCheck, ReportsFilesThatCannotBeRead) {
    EXPECT_EQ(run({"check", "none.msg", "shop"}), 1);
    EXPECT_EQ(out(),
              "none.msg: No such file or directory\n"
              "shop: not a regular file\n");
}

TEST_F(EnvCheck, RefusesDevices) {
    if (!std::filesystem::exists("/dev/zero")) GTEST_SKIP() << "there are no device files here";
    EXPECT_EQ(run({"check", "/dev/zero", "shop/texts/messages.msg"}), 1);
    EXPECT_EQ(out(),
              "/dev/zero: not a regular file\n"
              "shop/texts/messages.msg: ok (2 sections, 5 entries)\n");
}

TEST_F(EnvCheck, NeedsTheInstallationForAConditionAlone) {
    process_.setVariable("TRVHOME", nullptr);
    write("a.msg", "[one]\n/if CELL\n/endif\n/if CELL\n/endif\n");
    EXPECT_EQ(run({"check", "a.msg", "shop/texts/messages.msg"}), 1);
    EXPECT_EQ(out(),
              "a.msg: there is no installation: TRVHOME is not set; set it or give --root DIR\n"
              "shop/texts/messages.msg: ok (2 sections, 5 entries)\n");
    EXPECT_EQ(run({"check", "--root", "shop", "a.msg"}), 0);
    EXPECT_EQ(out(), "a.msg: ok (1 section, 0 entries)\n");
}

TEST_F(EnvCheck, KeepsTheStartApartFromTheFiles) {
    write("shop/cell/environ.cfg", "[var]\nno entry\n");
    EXPECT_EQ(run({"check", "shop/texts/messages.msg"}), 0);
    EXPECT_EQ(out(), "shop/texts/messages.msg: ok (2 sections, 5 entries)\n");
    EXPECT_NE(err().find("trvfiles: warning: "), std::string::npos);
    write("shop/config/environ.cfg", "/frob\n");
    EXPECT_EQ(run({"check", "shop/texts/messages.msg"}), 2);
    EXPECT_EQ(out(), "");
}

}  // namespace
}  // namespace trv::testing
