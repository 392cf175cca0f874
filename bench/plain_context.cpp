#include <bench/comparison.h>
#include <bench/plain_context.h>

#include <KConfig>
#include <KConfigGroup>
#define SI_NO_CONVERSION
#include <SimpleIni.h>
#include <fcntl.h>
#include <glib.h>
#include <ini.h>
#include <unistd.h>

#include <QSettings>
#include <QString>

#include <cstring>

namespace trv::bench {
namespace {

// Each field with its section and key in the file.
template <class Visit>
void visitFields(Visit visit) {
    visit("header", "comment", &PlainContext::comment);
    visit("header", "name", &PlainContext::name);
    visit("machine", "name", &PlainContext::machineName);
    visit("machine", "position", &PlainContext::machinePosition);
    visit("machine", "proximity", &PlainContext::machineProximity);
    visit("postpro", "origin_program", &PlainContext::origin);
    visit("postpro", "reference_axis", &PlainContext::referenceAxis);
    visit("part", "surface_group", &PlainContext::surfaceGroup);
    visit("clamping_system", "name", &PlainContext::clampingSystem);
    visit("clamping_system", "proximity", &PlainContext::clampingProximity);
}

using Field = std::string PlainContext::*;

int takeInih(void* context, const char* section, const char* key, const char* value) {
    visitFields([&](const char* fieldSection, const char* fieldKey, Field field) {
        if (std::strcmp(section, fieldSection) == 0 && std::strcmp(key, fieldKey) == 0)
            static_cast<PlainContext*>(context)->*field = value;
    });
    return 1;
}

// Syncs a file by its name, because the library that wrote it has closed it.
void syncFile(const std::string& path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    require(file >= 0 && ::fsync(file) == 0 && ::close(file) == 0, "syncing a file");
}

}  // namespace

PlainContext sampleContext(const std::string& comment) {
    return {
        "Setup A",     comment,    "MILL5", "POS1",    "10.000000", "12.500000 0.000000 -3.000000",
        "transfo.dat", "roughing", "VISE",  "2.500000"};
}

PlainContext readWithQSettings(const std::string& path) {
    const QSettings settings(QString::fromStdString(path), QSettings::IniFormat);
    PlainContext context;
    visitFields([&](const char* section, const char* key, Field field) {
        const QString name = QLatin1String(section) + QLatin1Char('/') + QLatin1String(key);
        context.*field = settings.value(name).toString().toStdString();
    });
    return context;
}

PlainContext readWithGKeyFile(const std::string& path) {
    GKeyFile* file = ::g_key_file_new();
    require(::g_key_file_load_from_file(file, path.c_str(), G_KEY_FILE_NONE, nullptr) != 0,
            "reading with GKeyFile");
    PlainContext context;
    visitFields([&](const char* section, const char* key, Field field) {
        gchar* value = ::g_key_file_get_string(file, section, key, nullptr);
        if (value != nullptr) context.*field = value;
        ::g_free(value);
    });
    ::g_key_file_free(file);
    return context;
}

PlainContext readWithSimpleIni(const std::string& path) {
    CSimpleIniA file;
    require(file.LoadFile(path.c_str()) == SI_OK, "reading with SimpleIni");
    PlainContext context;
    visitFields([&](const char* section, const char* key, Field field) {
        context.*field = file.GetValue(section, key, "");
    });
    return context;
}

PlainContext readWithInih(const std::string& path) {
    PlainContext context;
    require(::ini_parse(path.c_str(), takeInih, &context) == 0, "reading with inih");
    return context;
}

PlainContext readWithKConfig(const std::string& path) {
    const KConfig file(QString::fromStdString(path), KConfig::SimpleConfig);
    PlainContext context;
    visitFields([&](const char* section, const char* key, Field field) {
        context.*field = file.group(QLatin1String(section)).readEntry(key, QString()).toStdString();
    });
    return context;
}

void saveWithQSettings(const std::string& path, const PlainContext& context) {
    {
        QSettings settings(QString::fromStdString(path), QSettings::IniFormat);
        visitFields([&](const char* section, const char* key, Field field) {
            settings.setValue(QLatin1String(section) + QLatin1Char('/') + QLatin1String(key),
                              QString::fromStdString(context.*field));
        });
        settings.sync();
        require(settings.status() == QSettings::NoError, "saving with QSettings");
    }
    syncFile(path);
}

void saveWithGKeyFile(const std::string& path, const PlainContext& context) {
    GKeyFile* file = ::g_key_file_new();
    visitFields([&](const char* section, const char* key, Field field) {
        ::g_key_file_set_string(file, section, key, (context.*field).c_str());
    });
    require(::g_key_file_save_to_file(file, path.c_str(), nullptr) != 0, "saving with GKeyFile");
    ::g_key_file_free(file);
    syncFile(path);
}

void saveWithKConfig(const std::string& path, const PlainContext& context) {
    {
        KConfig file(QString::fromStdString(path), KConfig::SimpleConfig);
        visitFields([&](const char* section, const char* key, Field field) {
            file.group(QLatin1String(section))
                .writeEntry(key, QString::fromStdString(context.*field));
        });
        require(file.sync(), "saving with KConfig");
    }
    syncFile(path);
}

void saveByHand(const std::string& path, const PlainContext& context) {
    std::string text;
    const char* open = "";
    visitFields([&](const char* section, const char* key, Field field) {
        if (std::strcmp(open, section) != 0) text.append("[").append(section).append("]\n");
        open = section;
        text.append(key).append("=").append(context.*field).append("\n");
    });
    const std::string temporary = path + ".tmp";
    const int file = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    require(file >= 0 &&
                ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size()) &&
                ::fsync(file) == 0 && ::close(file) == 0 &&
                ::rename(temporary.c_str(), path.c_str()) == 0,
            "saving by hand");
}

}  // namespace trv::bench
