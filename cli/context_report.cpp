#include <cli/context_report.h>
#include <cli/text_output.h>
#include <trvfiles/text/text_conversion.h>

#include <QJsonArray>

namespace trv::cli {
namespace {

QString line(const char* label, const QString& value) {
    constexpr int labelWidth = 20;
    const QString text = value.isEmpty() ? QStringLiteral("-") : shown(value);
    return QString::fromLatin1(label).leftJustified(labelWidth) + text + QLatin1Char('\n');
}

QString line(const char* label, const std::wstring& value) {
    return line(label, fromWide(value));
}

// "machine MILL5", or "no machine"
QString described(const QString& what, const std::wstring& value) {
    return value.empty() ? QStringLiteral("no ") + what
                         : what + QLatin1Char(' ') + shown(fromWide(value));
}

}  // namespace

QString contextText(const QString& name, const ContextFile& context) {
    const CMachineContextData& data = context.data;
    double origin[3] = {};
    data.getOriginProgram(origin[0], origin[1], origin[2]);
    QString text = headingText(QStringLiteral("Machine context file"), name);
    text += line("Name", data.getNameW());
    text += line("Comment", data.getCommentW());
    text += line("Machine", data.getMachineNameW());
    text += line("Position", data.getMachinePositionW());
    text += line("Machine proximity", roundedText(data.getMachineProximity()));
    text += line("Program origin", roundedVectorText(origin));
    text += line("Reference axis", data.getReferenceAxisForOriginProgramW());
    text += line("Surface group", data.getSurfaceGroupW());
    text += line("Clamping system", data.getClampingSystemW());
    text += line("Clamping proximity", roundedText(data.getClampingProximity()));
    if (!context.missingSections.isEmpty()) {
        text += line("Missing sections", context.missingSections.join(QStringLiteral(", ")));
    }
    return text;
}

QJsonObject contextJson(const QString& name, const ContextFile& context) {
    const CMachineContextData& data = context.data;
    double origin[3] = {};
    data.getOriginProgram(origin[0], origin[1], origin[2]);
    return {
        {QStringLiteral("kind"), QStringLiteral("machineContext")},
        {QStringLiteral("file"), name},
        {QStringLiteral("name"), fromWide(data.getNameW())},
        {QStringLiteral("comment"), fromWide(data.getCommentW())},
        {QStringLiteral("machineName"), fromWide(data.getMachineNameW())},
        {QStringLiteral("machinePosition"), fromWide(data.getMachinePositionW())},
        {QStringLiteral("machineProximity"), jsonNumber(data.getMachineProximity())},
        {QStringLiteral("originProgram"), jsonNumbers(origin, 3)},
        {QStringLiteral("referenceAxis"), fromWide(data.getReferenceAxisForOriginProgramW())},
        {QStringLiteral("surfaceGroup"), fromWide(data.getSurfaceGroupW())},
        {QStringLiteral("clampingSystem"), fromWide(data.getClampingSystemW())},
        {QStringLiteral("clampingProximity"), jsonNumber(data.getClampingProximity())},
        {QStringLiteral("missingSections"), QJsonArray::fromStringList(context.missingSections)},
    };
}

QString contextSummary(const ContextFile& context) {
    const CMachineContextData& data = context.data;
    return QStringLiteral("machine context \"%1\", %2, %3")
        .arg(shown(fromWide(data.getNameW())),
             described(QStringLiteral("machine"), data.getMachineNameW()),
             described(QStringLiteral("position"), data.getMachinePositionW()));
}

}  // namespace trv::cli
