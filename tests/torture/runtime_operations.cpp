#include <tests/common/file_bytes.h>
#include <tests/environment/store_access.h>
#include <tests/torture/operations.h>
#include <trvfiles/environment/configuration_loader.h>
#include <trvfiles/environment/path_search.h>
#include <trvfiles/environment/store_writer.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/environment/work_zone.h>
#include <trvfiles/machine_context/TrvIniFile.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/support/platform.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <memory>

namespace trv::testing {
namespace {

std::string textOf(const message_store* store) {
    std::string text;
    for (int section = 0; section < section_count(store); ++section) {
        text += std::string("[") + section_name(store, section) + "]\n";
        for (const std::string& message : messagesOf(store, section))
            text += message + '\n';
    }
    return text;
}

Outcome loadNewStore(Workshop& at, const char* name) {
    const std::string path = at.text(name);
    Store store;
    const int status = at.under([&] {
        store.reset(load_message_file(nullptr, path.c_str()));
        return store == nullptr ? 0 : 1;
    });
    return {status, textOf(store)};
}

Outcome mergeIntoAStore(Workshop& at) {
    const std::string path = at.text("two/x.cfg");
    const Store store;
    set_variable(store, add_section(store, "var"), "X2 = 1");
    message_store* loaded = nullptr;
    const int status = at.under([&] {
        loaded = load_message_file(store, path.c_str());
        return loaded == nullptr ? 0 : 1;
    });
    EXPECT_TRUE(loaded == nullptr || loaded == store);
    EXPECT_EQ(section_count(store), 1);
    return {status, textOf(store)};
}

using save_operation = int (*)(message_store* store, const char* file_name);

Outcome save(Workshop& at, save_operation operation) {
    const std::string path = at.text("old");
    const Store store;
    set_variable(store, add_section(store, "var"), "A = 1");
    set_variable(store, add_section(store, "more"), "B = 2");
    const std::string before = textOf(store);
    const int status = at.under([&] { return operation(store, path.c_str()); });
    EXPECT_EQ(textOf(store), before);
    if (status != 0) {
        EXPECT_EQ(originOf(store, get_message(store, 0, 0)), "set by program");
    }
    return {status, ""};
}

Outcome overload(Workshop& at) {
    Store store;
    const int status = at.under([&] {
        store.reset(overload_files(nullptr, "?CFG", "x.cfg"));
        return store == nullptr ? 0 : 1;
    });
    return {status, textOf(store)};
}

Outcome overloadAStore(Workshop& at) {
    const Store store;
    const int status = at.under([&] { return load_config_list(store, "x.cfg", nullptr); });
    return {status, textOf(store)};
}

Outcome loadApplication(Workshop& at) {
    const int status = at.under([] { return load_application_files("x.cfg", "?CFG"); });
    return {status, textOf(application_store())};
}

Outcome loadCatalogue(Workshop& at) {
    const std::string path = at.text("a.cfg");
    const int status = at.under([&] { return load_catalogue_file(path.c_str()); });
    return {status, textOf(catalogue_store())};
}

Outcome loadFoundMessages(Workshop& at) {
    const int status = at.under([] { return load_found_messages("x.cfg", "?CFG"); });
    return {status, textOf(catalogue_store())};
}

// The status is the number of files that have defined their part of the value.
Outcome startEnvironment(Workshop& at) {
    Workshop::forgetEnvironment();
    std::string value;
    const int status = at.under([&] {
        const char* found = get_variable("N");
        if (found == nullptr) return 0;
        value = found;
        return 1;
    });
    return {status, value};
}

int countVariables(const char*, const char*, void* context) {
    ++*static_cast<int*>(context);
    return 0;
}

Outcome walkVariables(Workshop& at) {
    int count = 0;
    const int status = at.under([&] { return for_each_variable(countVariables, &count); });
    return {status, std::to_string(count)};
}

Outcome askForTemporaryDirectory(Workshop& at, const char* zone) {
    platform::set_environment("TRVZONE", at.text(zone).c_str());
    const char* directory = nullptr;
    const int status = at.under([&] {
        directory = get_temporary_directory();
        return directory == nullptr ? 0 : 1;
    });
    return {status, directory == nullptr ? "" : directory};
}

Outcome searchWithExpansion(Workshop& at) {
    std::string found;
    const int status = at.under([&] { return expand_and_search("?CFG/x.cfg", &found); });
    return {status, found};
}

Outcome resolve(Workshop& at, const char* source) {
    char text[600];
    std::strcpy(text, source);
    const int status = at.under([&] { return resolve_path(text, sizeof text); });
    return {status, text};
}

Outcome resolveField(Workshop& at) {
    const char source[] = "?CFG\\x.cfg";
    char result[600];
    std::int32_t code = 0;
    const int status = at.under([&] {
        resolve_path_fixed(source, sizeof source - 1, result, sizeof result, &code);
        return code;
    });
    return {status, ""};
}

Outcome expandExisting(Workshop& at) {
    const char source[] = "$ROOT/one/x.cfg";
    std::int32_t code = 0;
    const int status = at.under([&] {
        expand_existing(source, sizeof source - 1, &code);
        return code;
    });
    return {status, ""};
}

Outcome findDirectory(Workshop& at) {
    const char* directory = nullptr;
    const int status = at.under([&] {
        directory = first_existing_directory("$ROOT/missing;$ROOT/two");
        return directory == nullptr ? 0 : 1;
    });
    return {status, directory == nullptr ? "" : directory};
}

using listing_owner = std::unique_ptr<file_listing, decltype(&listing_free)>;

Outcome listDirectory(Workshop& at) {
    const std::string pattern = at.text("*.cfg");
    listing_owner listing(nullptr, listing_free);
    const int status = at.under([&] {
        listing.reset(list_matching(pattern.c_str()));
        return listing == nullptr ? -1 : listing_count(listing.get());
    });
    const char* name = listing_next(listing.get());
    return {status, name == nullptr ? "" : name};
}

Outcome testPattern(Workshop& at) {
    const std::string pattern = at.text("a.*");
    return {at.under([&] { return fileExists(pattern.c_str()); }), ""};
}

int countFiles(const char*, void* context) {
    ++*static_cast<int*>(context);
    return 0;
}

Outcome walkZoneFiles(Workshop& at) {
    const std::string directory = at.text("");
    int count = 0;
    const TrvIniFile file;
    const int status = at.under([&] {
        return const_cast<TrvIniFile&>(file).forEachZoneFile(directory.c_str(), ".cfg", countFiles,
                                                             &count);
    });
    return {status == 0 ? count : status, ""};
}

Outcome makePath(Workshop& at) {
    const std::string path = at.text("d/e/f");
    return {at.under([&] { return make_path(path.c_str()); }), ""};
}

// The line of the log contains the time, so it is checked here.
Outcome expandWatched(Workshop& at) {
    platform::set_environment("TRV_EXPAND_MIN_BUFFER_SIZE", "1000");
    platform::set_environment("TRV_EXPAND_LOGFILE_NAME", at.text("expansions").c_str());
    char text[600];
    const int status = at.under([&] { return _Expand("$LIB/$ROOT", text, sizeof text); });
    const std::string log = bytesOf(at.path("expansions"));
    if (!log.empty()) {
        EXPECT_THAT(log, ::testing::EndsWith("expanding '$LIB/$ROOT'\n"));
    }
    std::filesystem::remove(at.path("expansions"));
    return {status, status == 0 ? text : ""};
}

Outcome editAnIniFile(Workshop& at) {
    const std::string path = at.text("a.cfg");
    TrvIniFile file;
    const int loaded = at.under([&] { return file.load(path.c_str()); });
    if (loaded != 0) return {loaded, ""};
    const int set = at.under([&] {
        const int header = file.setHeaderValue("version", "3");
        return header != 0 ? header : file.setValue(0, "A", "+;and more");
    });
    if (set != 0) return {set, ""};
    return {at.under([&] { return file.save(path.c_str()); }), ""};
}

template <class... Arguments>
auto bound(Outcome (*run)(Workshop&, Arguments...), Arguments... arguments) {
    return [=](Workshop& at) { return run(at, arguments...); };
}

}  // namespace

std::vector<Operation> runtimeOperations() {
    return {
        {"LoadAMessageFile", 1, {0}, bound(loadNewStore, "a.cfg")},
        {"MergeAMessageFile", 1, {0}, mergeIntoAStore},
        {"SaveParameters", 0, {-1, -ENOMEM}, bound(save, store_parameters), {}, true},
        {"SaveMessages", 0, {-1, -ENOMEM}, bound(save, store_messages), {}, true},
        {"EditAnIniFile", 0, {-1, -ENOMEM}, editAnIniFile, {}, true},
        {"OverloadFiles", 1, {0}, overload, {}, false, true},
        {"OverloadFilesOfAStore", 0, {-1}, overloadAStore, {}, false, true},
        {"LoadApplicationFiles", 0, {-1}, loadApplication, {}, false, true},
        {"LoadACatalogue", 0, {-1}, loadCatalogue},
        {"LoadFoundMessages", 0, {-1}, loadFoundMessages},
        {"StartTheEnvironment", 1, {0}, startEnvironment, {}, false, true},
        {"WalkTheVariables", 0, {}, walkVariables},
        {"DrawAZoneNumber",
         1,
         {0},
         bound(askForTemporaryDirectory, "zone"),
         {"conf/workzone.num"},
         false,
         true,
         false,
         false,
         true},
        {"UseTheZoneNumber",
         1,
         {0},
         bound(askForTemporaryDirectory, "used"),
         {},
         false,
         true,
         false,
         false,
         true},
        {"SearchWithExpansion", EXP_OK, {EXP_NOT_FOUND, -41}, searchWithExpansion},
        {"ResolveASearch", EXP_OK, {EXP_NOT_FOUND, -41}, bound(resolve, "?CFG\\x.cfg")},
        {"ResolveAPath", EXP_OK, {EXP_NOT_FOUND}, bound(resolve, "$ROOT/one/x.cfg")},
        {"ResolveAField", EXP_OK, {EXP_NOT_FOUND, -41}, resolveField},
        {"TestAnExpandedPath", EXP_OK, {EXP_NOT_FOUND}, expandExisting},
        {"FindADirectory", 1, {0}, findDirectory},
        {"ListADirectory", 1, {-1, 0}, listDirectory},
        {"TestAPattern", 1, {0}, testPattern},
        {"WalkZoneFiles", 1, {-1, 0}, walkZoneFiles},
        {"MakeAPath", 0, {-1}, makePath, {}, false, true},
        {"ExpandUnderWatch", EXP_OK, {}, expandWatched},
    };
}

}  // namespace trv::testing
