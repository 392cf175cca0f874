#include <cli/context_plan.h>

#include <gtest/gtest.h>

namespace trv::cli {
namespace {

ContextPlan plan(const char* machine, const char* axis = "", const char* name = "") {
    return contextPlan(QString::fromUtf8(machine), QString::fromUtf8(axis),
                       QString::fromUtf8(name));
}

TEST(ContextPlan, NamesTheFilesOfAMachinePosition) {
    const ContextPlan made = contextPlan(3);
    EXPECT_EQ(made.context.toStdString(), "[MACHINE_POSITION_3].mctx");
    EXPECT_EQ(made.reference.toStdString(), "[stockposition@[MACHINE_POSITION_3]]MACHINE.ref");
    EXPECT_EQ(made.axisFile.toStdString(), "transfo.dat");
}

TEST(ContextPlan, NamesTheFilesOfAMachine) {
    const ContextPlan made = plan("mill5.mac");
    EXPECT_EQ(made.machine.toStdString(), "mill5.mac");
    EXPECT_EQ(made.context.toStdString(), "mill5[MACHINE].mctx");
    EXPECT_EQ(made.reference.toStdString(), "[stockposition@mill5[MACHINE]]MACHINE.ref");
    EXPECT_EQ(made.axisFile.toStdString(), "transfo.dat");
    EXPECT_EQ(made.givenAxis.toStdString(), "");
}

TEST(ContextPlan, UsesTheAxisFileInTheNames) {
    const ContextPlan made = plan("a.mac.b", "head.ref");
    EXPECT_EQ(made.context.toStdString(), "a.b[head].mctx");
    EXPECT_EQ(made.reference.toStdString(), "[stockposition@a.b[head]]head.ref");
    EXPECT_EQ(made.axisFile.toStdString(), "head.ref");
    EXPECT_EQ(made.givenAxis.toStdString(), "head.ref");
    EXPECT_EQ(plan("m", "transfo.dat").context.toStdString(), "m[transfo.dat].mctx");
}

TEST(ContextPlan, AcceptsANameWithOrWithoutItsEnding) {
    for (const char* name : {"job", "job.mctx"}) {
        const ContextPlan made = plan("m", "", name);
        EXPECT_EQ(made.context.toStdString(), "job.mctx");
        EXPECT_EQ(made.reference.toStdString(), "[stockposition@job]MACHINE.ref");
    }
    EXPECT_EQ(plan("%1", "%2", "%n").context.toStdString(), "%n.mctx");
    EXPECT_EQ(plan("%2", "%1").reference.toStdString(), "[stockposition@%2[%1]]%1.ref");
}

TEST(ContextPlan, ReportsWhichNameARecordCannotHold) {
    EXPECT_EQ(whyPlanFails(plan("m")).toStdString(), "");
    EXPECT_EQ(whyPlanFails(plan("a+", "b)", "c")).toStdString(), "");
    EXPECT_EQ(whyPlanFails(plan("m ", "", "x")).toStdString(),
              "A context cannot hold 'm ': blanks at its ends are lost.");
    EXPECT_EQ(whyPlanFails(plan("a+", "b)")).toStdString(),
              "A context cannot hold '[stockposition@a+[b)]]b).ref': what is between a \"+\" "
              "and a later \")\" is lost.");
    EXPECT_EQ(whyPlanFails(plan("m", "", " x")).toStdString(),
              "A context cannot hold ' x': blanks at its ends are lost.");
    EXPECT_EQ(whyPlanFails(plan("a\nb")).toStdString(),
              "A context cannot hold 'a\nb': a line end becomes a blank.");
}

}  // namespace
}  // namespace trv::cli
