#include <trvfiles/machine_context/context_fields.h>

#include <gtest/gtest.h>

#include <string>

namespace trv {
namespace {

const ContextField& field(const std::string& name) {
    for (const ContextField& each : contextFields()) {
        if (each.name() == name) return each;
    }
    ADD_FAILURE() << name;
    return contextFields()[0];
}

std::string origin(const CMachineContextData& data) {
    double numbers[3] = {};
    data.getOriginProgram(numbers[0], numbers[1], numbers[2]);
    return originText(numbers);
}

TEST(ContextFields, AreThoseOfAFileInItsOrder) {
    std::string names;
    for (const ContextField& each : contextFields())
        names += each.name() + (each.isRequired ? "! " : each.isWrittenEmpty ? " " : "? ");
    EXPECT_EQ(names,
              "header.comment header.name machine.name! machine.position! machine.proximity "
              "postpro.origin_program! postpro.reference_axis part.surface_group? "
              "clamping_system.name? clamping_system.proximity ");
}

TEST(ContextFields, BelongToSectionsThatAreAlwaysWrittenButForOne) {
    for (const char* section : {"header", "machine", "postpro", "clamping_system"})
        EXPECT_TRUE(isAlwaysWritten(section)) << section;
    for (const char* section : {"part", "Header", "other", ""})
        EXPECT_FALSE(isAlwaysWritten(section)) << section;
}

TEST(ContextFields, PrintNumbersAsAFileHasThem) {
    EXPECT_EQ(proximityText(0.1), "0.100000");
    EXPECT_EQ(proximityText(1234.5678), "1234.567749");
    EXPECT_EQ(proximityText(1e20), "1000000020040877342");
    EXPECT_EQ(proximityText(-2), "-2.000000");
    const double numbers[3] = {12.5, 0, -3.0000004};
    EXPECT_EQ(originText(numbers), "12.500000 0.000000 -3.000000");
}

TEST(ContextFields, GiveTheStoredTextOfEachKind) {
    CMachineContextData data;
    data.setMachineName("m");
    data.setClampingProximity(2.5);
    data.setOriginProgram(1, 2.5, -3);
    EXPECT_EQ(storedText(field("machine.name"), data), "m");
    EXPECT_EQ(storedText(field("header.name"), data), "");
    EXPECT_EQ(storedText(field("clamping_system.proximity"), data), "2.500000");
    EXPECT_EQ(storedText(field("postpro.origin_program"), data), "1.000000 2.500000 -3.000000");
}

TEST(ContextFields, AreSetToWhatAFileHas) {
    CMachineContextData data;
    EXPECT_EQ(setFromFile(field("header.comment"), "1 2", data), NumberReading::whole);
    EXPECT_EQ(data.getComment(), "1 2");

    const ContextField& proximity = field("machine.proximity");
    EXPECT_EQ(setFromFile(proximity, "1.5", data), NumberReading::whole);
    EXPECT_EQ(data.getMachineProximity(), 1.5);
    EXPECT_EQ(setFromFile(proximity, "2,5", data), NumberReading::beginning);
    EXPECT_EQ(data.getMachineProximity(), 2);
    EXPECT_EQ(setFromFile(proximity, "x", data), NumberReading::none);
    EXPECT_EQ(data.getMachineProximity(), 0);

    const ContextField& program = field("postpro.origin_program");
    EXPECT_EQ(setFromFile(program, "1 2 3", data), NumberReading::whole);
    EXPECT_EQ(origin(data), "1.000000 2.000000 3.000000");
    EXPECT_EQ(setFromFile(program, "4 5 6 7", data), NumberReading::beginning);
    EXPECT_EQ(origin(data), "4.000000 5.000000 6.000000");
    EXPECT_EQ(setFromFile(program, "7 8", data), NumberReading::none);
    EXPECT_EQ(origin(data), "4.000000 5.000000 6.000000");
}

}  // namespace
}  // namespace trv
