#include <bench/bench_files.h>
#include <bench/comparison.h>
#include <bench/plain_settings.h>
#include <trvfiles/environment/message_file.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/environment/store_writer.h>

#include <KConfig>
#include <KConfigGroup>
#define SI_NO_CONVERSION
#include <SimpleIni.h>
#include <fcntl.h>
#include <glib.h>
#include <unistd.h>

#include <QSettings>

#include <memory>

namespace trv::bench {
namespace {

constexpr int count = 20000;
constexpr double below = 1.0;

struct StoreEnd {
    void operator()(message_store* store) const { destroy_store(store); }
};
using Store = std::unique_ptr<message_store, StoreEnd>;
struct KeyFileEnd {
    void operator()(GKeyFile* file) const { ::g_key_file_free(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, KeyFileEnd>;

std::string nameOf(int i) {
    return "SETTING_" + std::to_string(i * 7919 % count);
}

std::string valueOf(int i) {
    return "C:/shop/tools/" + std::to_string(i) + "/holder";
}

std::string variableFile(const std::string& name, int firstValue) {
    std::string text = "[var]\n";
    for (int i = 0; i < count; ++i)
        text += nameOf(i) + " = " + valueOf(firstValue + i) + "\n";
    const std::string path = workFile(name);
    writeText(path, text);
    return path;
}

Store loadStore(const std::string& path) {
    Store store(load_message_file(nullptr, path.c_str()));
    require(message_count(store.get(), 0) == count, "loading variables");
    return store;
}

KeyFile loadKeyFile(const std::string& path) {
    KeyFile file(::g_key_file_new());
    require(::g_key_file_load_from_file(file.get(), path.c_str(), G_KEY_FILE_NONE, nullptr) != 0,
            "loading with GKeyFile");
    return file;
}

void loadSimpleIni(const std::string& path, CSimpleIniA& file) {
    require(file.LoadFile(path.c_str()) == SI_OK && file.GetSectionSize("var") == count,
            "loading with SimpleIni");
}

void loadKConfig(const std::string& path) {
    const KConfig file(QString::fromStdString(path), KConfig::SimpleConfig);
    require(file.group("var").readEntry("SETTING_0", QString()).isEmpty() == false,
            "loading with KConfig");
}

Comparison loading() {
    const std::string path = variableFile("variables.msg", 0);
    return {"load 20,000 variables",
            [path] { loadStore(path); },
            {{"GKeyFile", [path] { loadKeyFile(path); }, below},
             {"SimpleIni",
              [path] {
                  CSimpleIniA file;
                  loadSimpleIni(path, file);
              },
              below},
             {"KConfig", [path] { loadKConfig(path); }, below},
             {"hand parser, unordered_map",
              [path] {
                  PlainSettings settings;
                  loadByHand(path, settings);
                  require(settings.size() == count, "loading by hand");
              },
              2.0}}};
}

// Only the load of the second file is timed. A peer that cannot merge loads only that file.
Comparison merging() {
    const std::string first = variableFile("variables.msg", 0);
    const std::string second = variableFile("more-variables.msg", 100000);
    const auto store = std::make_shared<Store>();
    const auto simpleIni = std::make_shared<std::unique_ptr<CSimpleIniA>>();
    const auto settings = std::make_shared<PlainSettings>();
    const Workload ours([=] { *store = loadStore(first); },
                        [=] {
                            require(load_message_file(store->get(), second.c_str()) == store->get(),
                                    "merging variables");
                        });
    const Workload withSimpleIni(
        [=] {
            *simpleIni = std::make_unique<CSimpleIniA>();
            loadSimpleIni(first, **simpleIni);
        },
        [=] { loadSimpleIni(second, **simpleIni); });
    const Workload byHand(
        [=] {
            *settings = PlainSettings();
            loadByHand(first, *settings);
        },
        [=] { loadByHand(second, *settings); });
    return {"merge 20,000 over them",
            ours,
            {{"GKeyFile, load", [second] { loadKeyFile(second); }, below},
             {"SimpleIni", withSimpleIni, below},
             {"KConfig, load", [second] { loadKConfig(second); }, below},
             {"hand parser, unordered_map", byHand, 4.0}}};
}

// The library and the map ignore the case of a name, so they get names in another case.
Comparison lookups() {
    const std::string path = variableFile("variables.msg", 0);
    const auto names = std::make_shared<std::vector<std::string>>();
    const auto lowerNames = std::make_shared<std::vector<std::string>>();
    for (int i = 0; i < count; ++i) {
        names->push_back(nameOf(i * 3 % count));
        lowerNames->push_back("setting_" + names->back().substr(8));
    }
    const std::shared_ptr<message_store> store(loadStore(path).release(), StoreEnd());
    const std::shared_ptr<GKeyFile> keyFile(loadKeyFile(path).release(), KeyFileEnd());
    const auto qSettings =
        std::make_shared<QSettings>(QString::fromStdString(path), QSettings::IniFormat);
    const auto settings = std::make_shared<PlainSettings>();
    loadByHand(path, *settings);

    const auto ours = [=] {
        for (const std::string& name : *lowerNames)
            require(find_parameter(store.get(), 0, name.c_str(), false) != nullptr, "a lookup");
    };
    const auto withKeyFile = [=] {
        for (const std::string& name : *names) {
            gchar* value = ::g_key_file_get_value(keyFile.get(), "var", name.c_str(), nullptr);
            require(value != nullptr, "a lookup in a GKeyFile");
            ::g_free(value);
        }
    };
    const auto withQSettings = [=] {
        for (const std::string& name : *names) {
            const QVariant value =
                qSettings->value(QLatin1String("var/") + QLatin1String(name.c_str()));
            require(value.isValid(), "a lookup in QSettings");
        }
    };
    const auto inMap = [=] {
        for (const std::string& name : *lowerNames)
            require(settings->count(foldedName(name)) == 1, "a lookup in a map");
    };
    return {"20,000 lookups by name",
            ours,
            {{"GKeyFile", withKeyFile, below},
             {"QSettings", withQSettings, below},
             {"unordered_map, folded keys", inMap, 2.0}}};
}

Comparison writingBack() {
    const std::string target = diskFile("written-back.msg");
    const std::shared_ptr<message_store> store(create_store(), StoreEnd());
    const int section = add_section(store.get(), "var");
    for (int i = 0; i < count; ++i)
        set_variable(store.get(), section, (nameOf(i) + "=" + valueOf(i)).c_str());
    require(message_count(store.get(), section) == count, "setting variables");

    const auto ours = [=] {
        require(store_parameters(store.get(), target.c_str()) == 0, "writing variables back");
    };
    const auto byHand = [=] {
        std::string text = "[var]\n";
        for (int i = 0; i < count; ++i)
            text.append(nameOf(i)).append("=").append(valueOf(i)).append("\n");
        const int file = ::open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        require(file >= 0 &&
                    ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size()) &&
                    ::fsync(file) == 0 && ::close(file) == 0,
                "writing by hand");
    };
    return {"write back 20,000 parameters, synced",
            ours,
            {{"one buffer, one write, fsync", byHand, 2.0}},
            Clock::wall};
}

}  // namespace

Comparisons storeComparisons() {
    return {loading(), merging(), lookups(), writingBack()};
}

}  // namespace trv::bench
