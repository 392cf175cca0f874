#include <cli/env_origin.h>
#include <cli/text_output.h>
#include <trvfiles/environment/message_store_data.h>
#include <trvfiles/environment/path_text.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/text/text_conversion.h>

namespace trv::cli {
namespace {

QString kindName(Origin::Kind kind) {
    switch (kind) {
        case Origin::Kind::file:
            return QStringLiteral("file");
        case Origin::Kind::program:
            return QStringLiteral("program");
        case Origin::Kind::environment:
            return QStringLiteral("environment");
        case Origin::Kind::workZone:
            break;
    }
    return QStringLiteral("workZone");
}

bool isNetworkPath(const std::string& path) {
    return platform::backslash_separates() && path.size() > 1 && is_path_separator(path[0]) &&
           is_path_separator(path[1]);
}

}  // namespace

Origin originOf(const message_store& store, std::int32_t text) {
    const text_record& record = store.texts.record(text);
    Origin origin;
    if (record.file == text_pool::none) return origin;
    origin.kind = Origin::Kind::file;
    origin.file = store.texts.at(record.file);
    origin.line = record.line;
    return origin;
}

QString nativeSpelling(const std::string& path) {
    // The result has "\" for every separator, and one where a network path has two.
    const std::string normal = normalize_separators(path);
    const std::string whole = isNetworkPath(path) ? '\\' + normal : normal;
    return fromNarrow(native_path(whole.c_str()));
}

QString originText(const Origin& origin) {
    switch (origin.kind) {
        case Origin::Kind::file:
            return QStringLiteral("%1:%2").arg(shown(nativeSpelling(origin.file)),
                                               QString::number(origin.line));
        case Origin::Kind::program:
            return QStringLiteral("set by program");
        case Origin::Kind::environment:
            return QStringLiteral("environment variable %1").arg(shown(origin.variable));
        case Origin::Kind::workZone:
            break;
    }
    return QStringLiteral("work zone");
}

void addOrigin(const Origin& origin, QJsonObject& object) {
    const bool isFile = origin.kind == Origin::Kind::file;
    object.insert(QStringLiteral("origin"), kindName(origin.kind));
    object.insert(QStringLiteral("file"),
                  isFile ? QJsonValue(nativeSpelling(origin.file)) : QJsonValue());
    object.insert(QStringLiteral("line"), isFile ? QJsonValue(origin.line) : QJsonValue());
}

}  // namespace trv::cli
