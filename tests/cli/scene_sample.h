#pragma once

/// @file
/// The data of a page for the tests of `trvfiles view`.

#include <tests/cli/project_directory.h>

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace trv::testing {

inline const char* const emptyStl = "solid\nendsolid\n";

/// The bytes of setupXml's numbers in base64: the axes and the translation.
inline const char* const atTen =
    "AAAAAAAA8D8AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAADwPwAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA"
    "APA/AAAAAAAAJEAAAAAAAAAAAAAAAAAAAAAA";
inline const char* const atFive =
    "AAAAAAAA8D8AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAADwPwAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA"
    "APA/AAAAAAAAAAAAAAAAAAAUQJqZmZmZmbk/";
inline const char* const turned =
    "AAAAAAAAAAAAAAAAAADwPwAAAAAAAAAAAAAAAAAA8L8AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA"
    "APA/AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA";
inline const char* const atTenAndFive =
    "AAAAAAAA8D8AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAADwPwAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA"
    "APA/AAAAAAAAJEAAAAAAAAAUQJqZmZmZmbk/";
inline const char* const turnedAtTen =
    "AAAAAAAAAAAAAAAAAADwPwAAAAAAAAAAAAAAAAAA8L8AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA"
    "APA/AAAAAAAAJEAAAAAAAAAAAAAAAAAAAAAA";

inline std::vector<double> numbersOf(const QJsonValue& base64) {
    const QByteArray bytes = QByteArray::fromBase64(base64.toString().toLatin1());
    std::vector<double> numbers(static_cast<std::size_t>(bytes.size()) / sizeof(double));
    if (!numbers.empty()) std::memcpy(numbers.data(), bytes.constData(), 8 * numbers.size());
    return numbers;
}

inline std::vector<int> integersOf(const QJsonValue& array) {
    std::vector<int> integers;
    for (const QJsonValue& value : array.toArray())
        integers.push_back(value.toInt(-100));
    return integers;
}

/// Calls "view --json" for files of a project.
class ViewedProject : public ProjectDirectory {
protected:
    static Answer viewed(const QStringList& arguments) {
        return answerTo(words("view --json") + arguments);
    }

    static QJsonObject dataOf(const QStringList& arguments) {
        const Answer answer = viewed(arguments);
        EXPECT_EQ(answer.status, 0) << answer.err;
        return QJsonDocument::fromJson(QByteArray::fromStdString(answer.out)).object();
    }

    static QJsonObject assemblyIn(const QJsonObject& data, int index = 0) {
        return data.value(QLatin1String("assemblies")).toArray().at(index).toObject();
    }

    static QJsonValue column(const QJsonObject& assembly, const char* table, const char* name) {
        return assembly.value(QLatin1String(table)).toObject().value(QLatin1String(name));
    }
};

}  // namespace trv::testing
