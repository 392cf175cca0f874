#include <trvfiles/axis/axis_file.h>
#include <trvfiles/catalogue/context_names.h>

namespace trv {
namespace {

constexpr std::wstring_view machineSuffix = L".mac";
constexpr std::wstring_view referenceSuffix = L".ref";
constexpr std::wstring_view machineAxis = L"MACHINE";

// The text without the last occurrence of a part, which need not be at the end.
std::wstring withoutLast(std::wstring text, std::wstring_view part) {
    const std::size_t place = text.rfind(part);
    return place == std::wstring::npos ? text : text.erase(place, part.size());
}

std::wstring referenceFileName(const std::wstring& context, std::wstring_view axis) {
    std::wstring name = L"[stockposition@" + context + L"]";
    return name.append(axis).append(referenceSuffix);
}

}  // namespace

ContextNames defaultContextNames(int position) {
    ContextNames names;
    names.context.append(defaultContextPrefix).append(std::to_wstring(position)).append(L"]");
    names.contextFile.append(names.context).append(contextSuffix);
    names.axisFile = defaultAxisFileName;
    names.referenceFile = referenceFileName(names.context, machineAxis);
    return names;
}

ContextNames createdContextNames(const std::wstring& machine, const std::wstring& axisFile,
                                 const std::wstring& contextFile) {
    ContextNames names;
    names.axisFile = axisFile.empty() ? defaultAxisFileName : axisFile;
    const std::wstring axis =
        axisFile.empty() ? std::wstring(machineAxis) : withoutLast(axisFile, referenceSuffix);
    names.contextFile = contextFile;
    if (contextFile.empty()) {
        names.contextFile = withoutLast(machine, machineSuffix) + L"[" + axis + L"]";
        names.contextFile.append(contextSuffix);
    }
    names.context = withoutLast(names.contextFile, contextSuffix);
    names.referenceFile = referenceFileName(names.context, axis);
    return names;
}

}  // namespace trv
