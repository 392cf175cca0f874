#include <cli/context_plan.h>
#include <cli/context_values.h>
#include <trvfiles/catalogue/context_names.h>
#include <trvfiles/text/text_conversion.h>

namespace trv::cli {
namespace {

ContextPlan planOf(const ContextNames& names) {
    ContextPlan plan;
    plan.axisFile = fromWide(names.axisFile);
    plan.recordName = fromWide(names.context);
    plan.context = fromWide(names.contextFile);
    plan.reference = fromWide(names.referenceFile);
    return plan;
}

}  // namespace

ContextPlan contextPlan(int position) {
    return planOf(defaultContextNames(position));
}

ContextPlan contextPlan(const QString& machine, const QString& axis, const QString& name) {
    const QString suffix = fromWide(std::wstring(contextSuffix));
    const bool isComplete = name.isEmpty() || name.endsWith(suffix);
    ContextPlan plan = planOf(createdContextNames(toWide(machine), toWide(axis),
                                                  toWide(isComplete ? name : name + suffix)));
    plan.machine = machine;
    plan.givenAxis = axis;
    return plan;
}

QString whyPlanFails(const ContextPlan& plan) {
    for (const QString& text : {plan.machine, plan.reference, plan.recordName}) {
        const QString reason = whyTextChanges(text);
        if (!reason.isEmpty()) {
            return QStringLiteral("a context cannot hold '%1': %2").arg(text, reason);
        }
    }
    return {};
}

}  // namespace trv::cli
