#include <cli/vector_argument.h>

#include <QStringList>

#include <cmath>

namespace trv::cli {

bool readVector(const QString& text, double* numbers) {
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 3) return false;
    for (int i = 0; i < 3; ++i) {
        bool isNumber = false;
        numbers[i] = parts.at(i).toDouble(&isNumber);
        if (!isNumber || !std::isfinite(numbers[i])) return false;
    }
    return true;
}

}  // namespace trv::cli
