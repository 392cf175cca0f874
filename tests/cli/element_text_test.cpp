#include <cli/element_text.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace trv::cli {
namespace {

TEST(ElementText, EscapesWhatCouldEndTheElement) {
    std::ostringstream page;
    ElementText element(page);
    std::ostream out(&element);
    out << R"({"name":"</script><!-- <b>","<":"<<"})";
    EXPECT_EQ(page.str(), R"({"name":"\u003c/script>\u003c!-- \u003cb>","\u003c":"\u003c\u003c"})");
}

TEST(ElementText, PassesOnEverythingElse) {
    const std::string text("\0>&'\"\xC3\xA9\n", 8);
    std::ostringstream page;
    ElementText element(page);
    std::ostream out(&element);
    out.put('<');
    out << text;
    out.put('x');
    EXPECT_EQ(page.str(), "\\u003c" + text + "x");
    EXPECT_TRUE(out.good());
}

}  // namespace
}  // namespace trv::cli
