#include <cli/context_report.h>
#include <cli/text_output.h>

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace trv::cli {
namespace {

ContextFile setup() {
    ContextFile context;
    context.data.setName("Setup A");
    context.data.setComment("first\nop");
    context.data.setMachineName("MILL5");
    context.data.setMachinePosition("POS1");
    context.data.setMachineProximity(1234.567749);
    context.data.setOriginProgram(12.5, 1.0 / 3, -3);
    context.data.setReferenceAxisForOriginProgram("transfo.dat");
    context.data.setSurfaceGroup("TOP");
    context.data.setClampingSystem("VISE");
    context.data.setClampingProximity(std::nan(""));
    return context;
}

std::string json(const ContextFile& context) {
    std::ostringstream out;
    printJson(contextJson(QStringLiteral("a.mctx"), context), out);
    return out.str();
}

TEST(ContextReport, ShowsEveryField) {
    EXPECT_EQ(contextText(QStringLiteral("a.mctx"), setup()).toStdString(),
              "Machine context file a.mctx\n"
              "\n"
              "Name                Setup A\n"
              "Comment             first\\x0aop\n"
              "Machine             MILL5\n"
              "Position            POS1\n"
              "Machine proximity   1234.567749\n"
              "Program origin      12.5 0.333333 -3\n"
              "Reference axis      transfo.dat\n"
              "Surface group       TOP\n"
              "Clamping system     VISE\n"
              "Clamping proximity  nan\n");
}

TEST(ContextReport, ShowsWhatIsMissing) {
    ContextFile context;
    context.missingSections = QStringList{QStringLiteral("machine"), QStringLiteral("postpro")};
    EXPECT_EQ(contextText(QStringLiteral("a\tb"), context).toStdString(),
              "Machine context file a\\x09b\n"
              "\n"
              "Name                -\n"
              "Comment             -\n"
              "Machine             -\n"
              "Position            -\n"
              "Machine proximity   0\n"
              "Program origin      0 0 0\n"
              "Reference axis      -\n"
              "Surface group       -\n"
              "Clamping system     -\n"
              "Clamping proximity  0\n"
              "Missing sections    machine, postpro\n");
}

TEST(ContextReport, PrintsEveryFieldAsJson) {
    EXPECT_EQ(json(setup()),
              "{\"clampingProximity\":\"nan\",\"clampingSystem\":\"VISE\","
              "\"comment\":\"first\\nop\",\"file\":\"a.mctx\",\"kind\":\"machineContext\","
              "\"machineName\":\"MILL5\",\"machinePosition\":\"POS1\","
              "\"machineProximity\":1234.567749,\"missingSections\":[],\"name\":\"Setup A\","
              "\"originProgram\":[12.5,0.3333333333333333,-3],"
              "\"referenceAxis\":\"transfo.dat\",\"surfaceGroup\":\"TOP\"}\n");
    ContextFile context;
    context.missingSections = QStringList(QStringLiteral("header"));
    EXPECT_NE(json(context).find("\"missingSections\":[\"header\"],\"name\":\"\""),
              std::string::npos);
}

TEST(ContextReport, PrintsAShortSummary) {
    EXPECT_EQ(contextSummary(setup()).toStdString(),
              "machine context \"Setup A\", machine MILL5, position POS1");
    ContextFile context;
    context.data.setName("a\nb");
    EXPECT_EQ(contextSummary(context).toStdString(),
              "machine context \"a\\x0ab\", no machine, no position");
}

}  // namespace
}  // namespace trv::cli
