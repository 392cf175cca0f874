#include <trvfiles/axis/axis_file.h>
#include <trvfiles/catalogue/CMachineContextUtils.h>
#include <trvfiles/catalogue/context_creation.h>
#include <trvfiles/catalogue/context_graph.h>
#include <trvfiles/catalogue/context_names.h>
#include <trvfiles/catalogue/context_search.h>
#include <trvfiles/environment/file_replacement.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/machine_context/CMachineContextData.h>
#include <trvfiles/support/number_text.h>
#include <trvfiles/text/path_resolution.h>
#include <trvfiles/text/text_conversion.h>

#include <QDir>
#include <QFileInfo>

#include <cstdint>
#include <string_view>
#include <utility>

namespace {

// The next lookup overwrites what get_variable() returns, so it is not kept.
bool hasValue(const char* variable) {
    const char* value = trv::get_variable(variable);
    return value != nullptr && *value != '\0';
}

// A text that begins with a variable, expanded; empty if the variable is not defined or the result
// is not available in full.
//
// The text is expanded before the variable is checked, so that the trace shows an undefined
// variable as well. The status cannot replace the check: it may be about another undefined variable
// inside of the value.
std::string expanded(const char* variable, const char* text) {
    constexpr std::int32_t bufferSize = 400;
    std::string buffer = text;
    buffer.resize(bufferSize);
    const int status = trv::_ExpandInPlace(buffer.data(), bufferSize);
    if (trv::is_expand_error(status) || !hasValue(variable)) return {};
    buffer.resize(std::char_traits<char>::length(buffer.c_str()));
    return buffer;
}

bool isAscii(wchar_t unit) {
    // wchar_t may have a sign, and a unit that is not a character may be negative.
    return static_cast<std::uint32_t>(unit) < 128;
}

// The number in the name of a default context.
bool scanPosition(const std::wstring& file, int& position) {
    if (file.compare(0, trv::defaultContextPrefix.size(), trv::defaultContextPrefix) != 0)
        return false;
    // Any other character ends the number.
    std::string number;
    for (std::size_t i = trv::defaultContextPrefix.size(); i < file.size() && isAscii(file[i]); ++i)
        number += static_cast<char>(file[i]);
    std::string_view text(number);
    return trv::scan_decimal(text, position);
}

using Existing = trv::ContextCreation::existing;

Existing replacedIf(bool isThere) {
    return isThere ? Existing::replaced : Existing::refused;
}

// Empty if the conversion changes the name or the directory: no file has an empty path.
QString absolutePath(const std::wstring& directory, const std::wstring& name) {
    return trv::absolutePath(trv::pathFromWide(directory), trv::pathFromWide(name)).openable();
}

// The path that CQvFilesIO::writeMachineContext() uses.
QString contextPath(const std::wstring& directory, const std::wstring& name) {
    return trv::resolvedPath(trv::pathFromWide(directory), trv::pathFromWide(name));
}

QString barePath(const std::wstring& name) {
    return trv::pathFromWide(name).openable();
}

// Creates the directory's own axis file if nothing has its name. The file is complete from the
// moment when it appears, because another caller copies it at once.
bool provideAxis(CQvFilesIO& files, const std::wstring& directory, const std::wstring& name) {
    if (files.isfileExists(name)) return true;
    constexpr int noTag = -1;
    const QString path = absolutePath(directory, name);
    std::string target;
    if (!trv::runtimePath(path, target)) {
        // No context can be saved here either, so no other caller copies the file.
        return trv::isOpenable(path) && !QFileInfo::exists(path) &&
               files.writeAxis(name, trv::identityAxis.data(), noTag, noTag, noTag) ==
                   eFileIOSuccess;
    }
    trv::file_replacement axis(target, trv::own_temporary_name, Existing::refused);
    const int failure =
        axis.write_and_replace(trv::axisFileText(trv::identityAxis, noTag, noTag, noTag));
    return failure == 0 || files.isfileExists(name);
}

void setIfRequested(std::wstring* destination, std::wstring&& text) {
    if (destination != nullptr) *destination = std::move(text);
}

// Where a wide form stores a name that a narrow form has been asked for.
class RequestedName {
public:
    explicit RequestedName(std::string* destination) : destination_(destination) {}

    std::wstring* wide() { return destination_ == nullptr ? nullptr : &wide_; }
    void store() const {
        if (destination_ != nullptr) *destination_ = trv::narrowText(wide_);
    }

private:
    std::string* destination_;
    std::wstring wide_;
};

}  // namespace

CMachineContextUtils& CMachineContextUtils::operator=(const CMachineContextUtils&) = default;
CMachineContextUtils& CMachineContextUtils::operator=(CMachineContextUtils&&) noexcept = default;

std::wstring CMachineContextUtils::sGetFavoriteMachineContextDirectoryW() {
    std::string directory = expanded("TRV_MCTX_DEF", "$TRV_MCTX_DEF");
    if (directory.empty()) directory = expanded("TRVHOME", "$TRVHOME\\standard\\machine_context");
    if (directory.empty()) return {};
    return trv::toWide(trv::absolutePath(trv::pathFromNarrow(directory), {}).text);
}

std::vector<std::wstring> CMachineContextUtils::sGetFavoriteMachineContext(std::wstring directory) {
    if (directory.empty()) directory = sGetFavoriteMachineContextDirectoryW();
    const QString path = trv::nativePath(barePath(directory));
    // An empty path would be walked as the current directory, a resource as a directory in it.
    if (!trv::isOpenable(path) || trv::isResource(path)) return {};
    std::vector<std::wstring> contexts;
    for (const QString& context : trv::findContexts(trv::listContextDirectories(QDir(path))))
        contexts.push_back(trv::toWide(context));
    return contexts;
}

bool CMachineContextUtils::sGetDefaultMachineContext(std::vector<std::wstring> files, int& index,
                                                     int& position) {
    index = -1;
    position = -1;
    for (std::size_t i = 0; i < files.size(); ++i) {
        int number = -1;
        if (!scanPosition(files[i], number) || number <= position) continue;
        position = number;
        index = static_cast<int>(i);
    }
    return index >= 0;
}

bool CMachineContextUtils::sCreateDefaultMachineContext(const std::wstring& directory, int position,
                                                        std::wstring* contextFile,
                                                        std::wstring* referenceFile) {
    if (position < 1) return false;
    trv::ContextNames names = trv::defaultContextNames(position);
    CQvFilesIO files(directory);
    const bool hasContext = files.isfileExists(names.contextFile);
    if (hasContext && files.isfileExists(names.referenceFile)) return false;
    if (!provideAxis(files, directory, names.axisFile)) return false;

    trv::ContextCreation creation(contextPath(directory, names.contextFile),
                                  replacedIf(hasContext));
    // Another caller may have created the missing files in the meantime.
    const bool hasReference = files.isfileExists(names.referenceFile);
    if (hasReference && files.isfileExists(names.contextFile)) return false;
    if (!creation.copyAxis(absolutePath(directory, names.axisFile),
                           absolutePath(directory, names.referenceFile),
                           replacedIf(hasReference))) {
        return false;
    }
    CMachineContextData record;
    record.setMachinePositionW(names.referenceFile);
    record.setNameW(names.context);
    if (!creation.write(record)) return false;
    setIfRequested(contextFile, std::move(names.contextFile));
    setIfRequested(referenceFile, std::move(names.referenceFile));
    return true;
}

bool CMachineContextUtils::sCreateMachineContext(const std::wstring& directory,
                                                 const std::wstring& machine,
                                                 const std::wstring& referenceAxisFile,
                                                 const std::wstring& contextFile,
                                                 std::wstring* createdContextFile,
                                                 std::wstring* createdReferenceFile) {
    trv::ContextNames names = trv::createdContextNames(machine, referenceAxisFile, contextFile);
    CQvFilesIO files(directory);
    if (!files.isfileExists(names.axisFile)) return false;
    const auto hasOne = [&] {
        return files.isfileExists(names.contextFile) || files.isfileExists(names.referenceFile);
    };
    if (hasOne()) return false;

    trv::ContextCreation creation(contextPath(directory, names.contextFile), Existing::refused);
    // Bare names: unlike the checks, copying and deleting use the current directory, which the host
    // makes the same one.
    const bool hasReference = CQvFilesIO(std::wstring()).isfileExists(names.referenceFile);
    // Another caller may have created the context in the meantime.
    if (hasOne()) return false;
    if (!creation.copyAxis(barePath(names.axisFile), barePath(names.referenceFile),
                           replacedIf(hasReference))) {
        return false;
    }
    CMachineContextData record;
    record.setMachineNameW(machine);
    record.setMachinePositionW(names.referenceFile);
    record.setNameW(names.context);
    if (!creation.write(record)) return false;
    setIfRequested(createdContextFile, std::move(names.contextFile));
    setIfRequested(createdReferenceFile, std::move(names.referenceFile));
    return true;
}

std::string CMachineContextUtils::sGetFavoriteMachineContextDirectory() {
    return trv::narrowText(sGetFavoriteMachineContextDirectoryW());
}

std::vector<std::string> CMachineContextUtils::sGetFavoriteMachineContextNarrow(
    const std::string& directory) {
    std::vector<std::string> contexts;
    for (const std::wstring& context : sGetFavoriteMachineContext(trv::widePath(directory)))
        contexts.push_back(trv::narrowText(context));
    return contexts;
}

bool CMachineContextUtils::sGetDefaultMachineContextNarrow(const std::vector<std::string>& files,
                                                           int& index, int& position) {
    std::vector<std::wstring> wide;
    wide.reserve(files.size());
    for (const std::string& file : files)
        wide.push_back(trv::widePath(file));
    return sGetDefaultMachineContext(std::move(wide), index, position);
}

bool CMachineContextUtils::sCreateDefaultMachineContextNarrow(const std::string& directory,
                                                              int position,
                                                              std::string* contextFile,
                                                              std::string* referenceFile) {
    RequestedName context(contextFile);
    RequestedName reference(referenceFile);
    if (!sCreateDefaultMachineContext(trv::widePath(directory), position, context.wide(),
                                      reference.wide())) {
        return false;
    }
    context.store();
    reference.store();
    return true;
}

bool CMachineContextUtils::sCreateMachineContextNarrow(const std::string& directory,
                                                       const std::string& machine,
                                                       const std::string& referenceAxisFile,
                                                       const std::string& contextFile,
                                                       std::string* createdContextFile,
                                                       std::string* createdReferenceFile) {
    RequestedName context(createdContextFile);
    RequestedName reference(createdReferenceFile);
    if (!sCreateMachineContext(trv::widePath(directory), trv::widePath(machine),
                               trv::widePath(referenceAxisFile), trv::widePath(contextFile),
                               context.wide(), reference.wide())) {
        return false;
    }
    context.store();
    reference.store();
    return true;
}
