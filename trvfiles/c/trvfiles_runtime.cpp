// The functions of trvfiles.h for the runtime and its channels.

#include <trvfiles/c/fatal_watch.h>
#include <trvfiles/c/guarded_call.h>
#include <trvfiles/c/handle_objects.h>
#include <trvfiles/c/text_arguments.h>
#include <trvfiles/c/trvfiles.h>
#include <trvfiles/environment/configuration_loader.h>
#include <trvfiles/environment/definitions.h>
#include <trvfiles/environment/environment_start.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/support/blanks.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/support/platform.h>

#include <utility>

namespace c = trv::c;

namespace {

// Holds every origin: the name of a configuration file fits a path buffer of 512 bytes.
constexpr std::size_t originSize = 1024;
// From a search: no memory for splitting a list.
constexpr int outOfMemory = -41;

std::int32_t statusOfExpansion(int code) {
    if (code == trv::EXP_OK) return TRVFILES_SUCCESS;
    return code == outOfMemory ? TRVFILES_OUT_OF_MEMORY : std::int32_t{code};
}

bool isPathKind(std::int32_t kind) {
    c::require(kind == TRVFILES_VARIABLE || kind == TRVFILES_PATH_VARIABLE,
               "the kind of variables does not exist");
    return kind == TRVFILES_PATH_VARIABLE;
}

std::string originOf(bool isPath, const std::string& name, const char* value) {
    const auto describe = isPath ? trv::describe_path_origin : trv::describe_variable_origin;
    char origin[originSize];
    describe(origin, sizeof origin, name.c_str(), value);
    return origin;
}

int addDefinition(const trv::definition& definition, void* context) {
    auto& texts = *static_cast<std::vector<std::string>*>(context);
    texts.push_back(c::utf8FromNarrow(std::string(trv::trim(definition.text))));
    texts.push_back(definition.file == nullptr ? "" : c::utf8FromNarrow(definition.file));
    texts.push_back(std::to_string(definition.line));
    return 0;
}

int addVariable(const char* name, const char* value, void* context) {
    auto& pairs = *static_cast<std::vector<std::string>*>(context);
    pairs.push_back(c::utf8FromNarrow(name));
    pairs.push_back(c::utf8FromNarrow(value));
    return 0;
}

}  // namespace

int32_t trvfiles_install_root(int32_t publish, trvfiles_texts root, trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const auto result = c::objectOf<c::TextsObject>(root);
        const char* found = trv::install_root(publish != 0);
        if (found == nullptr) return TRVFILES_NOT_FOUND;
        result->texts = {c::utf8FromNarrow(found)};
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_process_variable_set(const char* name, const char* value, trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const std::string narrow = c::narrowArgument(name);
        const bool isSet =
            trv::platform::set_environment(narrow.c_str(), c::narrowArgument(value).c_str());
        return isSet ? TRVFILES_SUCCESS : TRVFILES_FAILED;
    });
}

int32_t trvfiles_variable_get(int32_t kind, const char* name, trvfiles_texts result,
                              trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const auto texts = c::objectOf<c::TextsObject>(result);
        const bool isPath = isPathKind(kind);
        const std::string narrow = c::narrowArgument(name);
        const char* value = (isPath ? trv::get_path_variable : trv::get_variable)(narrow.c_str());
        if (value == nullptr) return TRVFILES_UNDEFINED;
        texts->texts = {c::utf8FromNarrow(value),
                        c::utf8FromNarrow(originOf(isPath, narrow, value))};
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_variable_definitions(int32_t kind, const char* name, trvfiles_texts result,
                                      trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const auto texts = c::objectOf<c::TextsObject>(result);
        const bool isPath = isPathKind(kind);
        const std::string narrow = c::narrowArgument(name);
        trv::load_environment();
        const trv::message_store* store = trv::environment_store();
        const int section = trv::find_section(store, isPath ? "path" : "var");
        std::vector<std::string> found;
        if (trv::for_each_definition(store, section, narrow.c_str(), false, addDefinition,
                                     &found) != 0) {
            return TRVFILES_UNDEFINED;
        }
        texts->texts = std::move(found);
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_variable_list(trvfiles_texts result, trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const auto texts = c::objectOf<c::TextsObject>(result);
        std::vector<std::string> pairs;
        if (trv::for_each_variable(addVariable, &pairs) != 0) return TRVFILES_NOT_FOUND;
        texts->texts = std::move(pairs);
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_expand(const char* text, int32_t as_path, trvfiles_texts result,
                        trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const auto texts = c::objectOf<c::TextsObject>(result);
        const std::string source = c::narrowArgument(text);
        std::string expanded;
        const int code = as_path != 0 ? trv::expand_path(source, &expanded)
                                      : trv::expand_variables(source, &expanded);
        if (!trv::is_expand_error(code)) texts->texts = {c::utf8FromNarrow(expanded)};
        return statusOfExpansion(code);
    });
}

int32_t trvfiles_search(const char* directory, const char* name, trvfiles_texts result,
                        trvfiles_fault fault) {
    return c::guardedRuntime(fault, [=](CFileFault*) {
        const auto texts = c::objectOf<c::TextsObject>(result);
        const std::string where =
            directory == nullptr ? std::string() : c::narrowArgument(directory) + '/';
        std::string found;
        const int code = trv::expand_and_search(where + c::narrowArgument(name), &found);
        if (code == trv::EXP_OK || code == trv::EXP_NOT_FOUND) {
            texts->texts = {c::utf8FromNarrow(found)};
        }
        return statusOfExpansion(code);
    });
}

int32_t trvfiles_channel_set(int32_t channel, trvfiles_message_handler handler, void* context,
                             trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        c::require(channel >= TRVFILES_CHANNEL_ERROR && channel <= TRVFILES_CHANNEL_TRACE,
                   "the channel does not exist");
        c::setChannelHandler(channel, {handler, context});
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_channel_set_output(int32_t quiet, int32_t echo, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        trv::set_quiet_errors(quiet);
        trv::set_echo_output(echo);
        return TRVFILES_SUCCESS;
    });
}
