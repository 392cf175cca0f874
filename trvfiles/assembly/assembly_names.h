#pragma once

/// @file
/// The element and attribute names of assembly files, as the format spells them.

#include <QString>

namespace trv::names {

inline QString root() {
    return QStringLiteral("ComponentInfo");
}
inline QString version() {
    return QStringLiteral("version");
}
inline QString attributes() {
    return QStringLiteral("Attributs");
}
inline QString dimension() {
    return QStringLiteral("Dimension");
}
inline QString component() {
    return QStringLiteral("Component");
}
inline QString name() {
    return QStringLiteral("name");
}
inline QString comment() {
    return QStringLiteral("comment");
}
inline QString enabled() {
    return QStringLiteral("enabled");
}
inline QString translation() {
    return QStringLiteral("Translation");
}
inline QString orientation() {
    return QStringLiteral("Orientation");
}
inline QString vec1() {
    return QStringLiteral("vec1");
}
inline QString vec2() {
    return QStringLiteral("vec2");
}
inline QString vec3() {
    return QStringLiteral("vec3");
}
inline QString x() {
    return QStringLiteral("x");
}
inline QString y() {
    return QStringLiteral("y");
}
inline QString z() {
    return QStringLiteral("z");
}
inline QString data() {
    return QStringLiteral("Data");
}
inline QString number() {
    return QStringLiteral("number");
}
inline QString file() {
    return QStringLiteral("File");
}

}  // namespace trv::names
