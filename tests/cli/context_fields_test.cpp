#include <cli/context_fields.h>

#include <QJsonArray>
#include <gtest/gtest.h>

namespace trv::cli {
namespace {

const ContextField& field(const char* name) {
    const ContextField* found = findContextField(QString::fromLatin1(name));
    EXPECT_NE(found, nullptr) << name;
    return *found;
}

std::string set(const char* name, const char* text, CMachineContextData& data) {
    return setContextField(field(name), QString::fromUtf8(text), data).toStdString();
}

TEST(ContextFields, AreFoundByTheirSectionAndKey) {
    QString names;
    for (const ContextField& each : contextFields())
        names += nameOf(each) + QLatin1Char(' ');
    EXPECT_EQ(names.toStdString(),
              "header.comment header.name machine.name machine.position machine.proximity "
              "postpro.origin_program postpro.reference_axis part.surface_group "
              "clamping_system.name clamping_system.proximity ");
    for (const char* name : {"", "name", "header.version", "Header.name", "header.Name", "header"})
        EXPECT_EQ(findContextField(QString::fromLatin1(name)), nullptr) << name;
}

TEST(ContextFields, SetTheirOwnFieldOfTheRecord) {
    CMachineContextData data;
    EXPECT_EQ(set("header.comment", "a", data), "");
    EXPECT_EQ(set("header.name", "b", data), "");
    EXPECT_EQ(set("machine.name", "c", data), "");
    EXPECT_EQ(set("machine.position", "d", data), "");
    EXPECT_EQ(set("machine.proximity", "1.5", data), "");
    EXPECT_EQ(set("postpro.origin_program", "1 2.5 -3", data), "");
    EXPECT_EQ(set("postpro.reference_axis", "e", data), "");
    EXPECT_EQ(set("part.surface_group", "f", data), "");
    EXPECT_EQ(set("clamping_system.name", "\xC3\xB6", data), "");
    EXPECT_EQ(set("clamping_system.proximity", "0.1", data), "");
    EXPECT_EQ(data.getComment(), "a");
    EXPECT_EQ(data.getName(), "b");
    EXPECT_EQ(data.getMachineName(), "c");
    EXPECT_EQ(data.getMachinePosition(), "d");
    EXPECT_EQ(data.getMachineProximity(), 1.5);
    double x = 0;
    double y = 0;
    double z = 0;
    data.getOriginProgram(x, y, z);
    EXPECT_EQ(x, 1);
    EXPECT_EQ(y, 2.5);
    EXPECT_EQ(z, -3);
    EXPECT_EQ(data.getReferenceAxisForOriginProgram(), "e");
    EXPECT_EQ(data.getSurfaceGroup(), "f");
    EXPECT_EQ(data.getClampingSystemW(), L"\u00F6");
    EXPECT_EQ(data.getClampingProximity(), 0.1);

    EXPECT_EQ(storedValue(field("clamping_system.name"), data).toStdString(), "\xC3\xB6");
    EXPECT_EQ(storedValue(field("clamping_system.proximity"), data).toStdString(), "0.100000");
    EXPECT_EQ(storedValue(field("postpro.origin_program"), data).toStdString(),
              "1.000000 2.500000 -3.000000");
}

TEST(ContextFields, AreTextsAndNumbersInJson) {
    CMachineContextData data;
    set("machine.name", "c", data);
    set("machine.proximity", "1.5", data);
    set("postpro.origin_program", "1 2.5 -3", data);
    const ContextFieldList fields = {&field("postpro.origin_program"), &field("machine.name"),
                                     &field("machine.proximity")};
    const QJsonObject values = {{QStringLiteral("machine.name"), QStringLiteral("c")},
                                {QStringLiteral("machine.proximity"), 1.5},
                                {QStringLiteral("postpro.origin_program"), QJsonArray{1, 2.5, -3}}};
    const QJsonObject expected = {{QStringLiteral("file"), QStringLiteral("f")},
                                  {QStringLiteral("fields"), values}};
    EXPECT_EQ(contextJson(QStringLiteral("f"), fields, data), expected);
}

TEST(ContextFields, RejectWhatDoesNotComeBack) {
    CMachineContextData data;
    EXPECT_EQ(set("machine.name", "A+B(1)", data),
              "machine.name cannot hold 'A+B(1)': the text between a \"+\" and a later \")\" is "
              "lost");
    EXPECT_EQ(set("machine.name", "%1\n", data),
              "machine.name cannot hold '%1\n': a line end becomes a blank");
    for (const char* text : {"", "abc", "nan", "inf", "-inf", "1,5", "1 2", "1e400"})
        EXPECT_EQ(set("machine.proximity", text, data),
                  "machine.proximity takes a number, such as 2.5, not '" + std::string(text) + "'");
    for (const char* text : {"1e20", "1e39", "-1e19"})
        EXPECT_EQ(set("clamping_system.proximity", text, data),
                  "clamping_system.proximity cannot hold '" + std::string(text) +
                      "': the number is too large for a file");
    for (const char* text : {"", "1 2", "1 2 3 4", "1 2 nan", "1 inf 3", "1,2,3", "1 2 3mm"})
        EXPECT_EQ(set("postpro.origin_program", text, data),
                  "postpro.origin_program takes three numbers, such as '12.5 0 -3', not '" +
                      std::string(text) + "'");
    EXPECT_TRUE(data.isNull());
}

}  // namespace
}  // namespace trv::cli
