// The functions of trvfiles.h for the catalogue of machine contexts.

#include <trvfiles/c/guarded_call.h>
#include <trvfiles/c/handle_objects.h>
#include <trvfiles/c/text_arguments.h>
#include <trvfiles/c/trvfiles.h>
#include <trvfiles/catalogue/CMachineContextUtils.h>

#include <algorithm>
#include <iterator>

namespace c = trv::c;

namespace {

std::vector<std::string> allUtf8(const std::vector<std::wstring>& texts) {
    std::vector<std::string> converted;
    std::transform(texts.begin(), texts.end(), std::back_inserter(converted), c::utf8FromWide);
    return converted;
}

std::vector<std::wstring> namesOf(const char* const* names, std::size_t count) {
    c::require(names != nullptr || count == 0, "the names are NULL");
    std::vector<std::wstring> converted;
    for (std::size_t i = 0; i < count; ++i)
        converted.push_back(c::wideArgument(names[i]));
    return converted;
}

// @param create  takes the places for the two names, and returns whether the files are there
template <class Create>
std::int32_t createFiles(trvfiles_texts created, Create create) {
    const auto result = c::objectOf<c::TextsObject>(created);
    std::vector<std::wstring> names(2);
    if (!create(names.data(), names.data() + 1)) return TRVFILES_FAILED;
    result->texts = allUtf8(names);
    return TRVFILES_SUCCESS;
}

}  // namespace

int32_t trvfiles_catalogue_directory(trvfiles_texts directory, trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const auto result = c::objectOf<c::TextsObject>(directory);
        const std::wstring found = CMachineContextUtils::sGetFavoriteMachineContextDirectoryW();
        if (found.empty()) return TRVFILES_UNDEFINED;
        result->texts = {c::utf8FromWide(found)};
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_catalogue_list(const char* directory, trvfiles_texts paths, trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const auto result = c::objectOf<c::TextsObject>(paths);
        result->texts =
            allUtf8(CMachineContextUtils::sGetFavoriteMachineContext(c::wideArgument(directory)));
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_catalogue_choose_default(const char* const* names, size_t count, size_t* index,
                                          int32_t* position, trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        c::require(index);
        c::require(position);
        int chosen = -1;
        int at = -1;
        if (!CMachineContextUtils::sGetDefaultMachineContext(namesOf(names, count), chosen, at)) {
            return TRVFILES_NOT_FOUND;
        }
        *index = static_cast<std::size_t>(chosen);
        *position = at;
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_catalogue_create_default(const char* directory, int32_t position,
                                          trvfiles_texts created, trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const std::wstring where = c::wideArgument(directory);
        c::require(position >= 1, "the machine position is below 1");
        return createFiles(created, [&](std::wstring* context, std::wstring* reference) {
            return CMachineContextUtils::sCreateDefaultMachineContext(where, position, context,
                                                                      reference);
        });
    });
}

int32_t trvfiles_catalogue_create(const char* directory, const char* machine, const char* axis_file,
                                  const char* context_file, trvfiles_texts created,
                                  trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const std::wstring where = c::wideArgument(directory);
        const std::wstring machineName = c::wideArgument(machine);
        const std::wstring axis = c::wideArgument(axis_file);
        const std::wstring name = c::wideArgument(context_file);
        return createFiles(created, [&](std::wstring* context, std::wstring* reference) {
            return CMachineContextUtils::sCreateMachineContext(where, machineName, axis, name,
                                                               context, reference);
        });
    });
}
