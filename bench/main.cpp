// Runs the comparisons and prints their ratios as a table or as JSON. Ends with 1 if a ratio is
// above its bound.

#include <bench/comparison.h>
#include <bench/measurement.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace trv::bench {

void require(bool done, const char* what) {
    if (done) return;
    std::fprintf(stderr, "trvfiles_bench: %s failed\n", what);
    std::exit(2);
}

namespace {

enum class Unit { seconds, bytes, times };

struct Row {
    std::string work;
    std::string peer;
    double ours;
    double other;
    double ratio;
    double bound;
    Unit unit;

    bool isMissed() const { return !(ratio <= bound); }
};

Unit unitOf(const Comparison& comparison) {
    if (comparison.bytes != nullptr) return Unit::bytes;
    return comparison.ours.smaller == nullptr ? Unit::seconds : Unit::times;
}

std::vector<Row> rowsOf(const Comparison& comparison, int runs) {
    const std::vector<Figures> figures = measured(comparison, runs);
    const Figures& ours = figures.front();
    std::vector<Row> rows;
    for (std::size_t i = 0; i < comparison.peers.size(); ++i) {
        const Peer& peer = comparison.peers[i];
        const Figures& other = figures[i + 1];
        rows.push_back({comparison.name, peer.name, median(ours), median(other),
                        medianRatio(ours, other), peer.bound, unitOf(comparison)});
    }
    return rows;
}

std::string figureText(Unit unit, double figure) {
    static constexpr struct {
        double factor;
        const char* name;
    } shown[] = {{1e6, "us"}, {1.0 / (1 << 20), "MiB"}, {1, "times"}};
    const auto& [factor, name] = shown[static_cast<std::size_t>(unit)];
    const double scaled = figure * factor;
    const int decimals = scaled < 1 ? 3 : scaled < 100 ? 2 : 0;
    char text[40];
    std::snprintf(text, sizeof text, "%.*f %s", decimals, scaled, name);
    return text;
}

std::string twoDecimals(double value) {
    char text[20];
    std::snprintf(text, sizeof text, "%.2f", value);
    return text;
}

// Prints a table whose first two columns have the width of the longest name.
class Table {
public:
    explicit Table(const Comparisons& comparisons) {
        for (const Comparison& comparison : comparisons) {
            widen(nameWidth_, comparison.name);
            for (const Peer& peer : comparison.peers)
                widen(otherWidth_, peer.name);
        }
        print("name", "other", "trvfiles", "other", "ratio", "bound", "");
    }

    void print(const Row& row) const {
        print(row.work.c_str(), row.peer.c_str(), figureText(row.unit, row.ours).c_str(),
              figureText(row.unit, row.other).c_str(), twoDecimals(row.ratio).c_str(),
              twoDecimals(row.bound).c_str(), row.isMissed() ? "  MISSED" : "");
    }

private:
    static void widen(int& width, const std::string& name) {
        width = std::max(width, static_cast<int>(name.size()));
    }

    void print(const char* name, const char* other, const char* ourFigure, const char* otherFigure,
               const char* ratio, const char* bound, const char* miss) const {
        std::printf("%-*s  %-*s %11s %11s %6s %6s%s\n", nameWidth_, name, otherWidth_, other,
                    ourFigure, otherFigure, ratio, bound, miss);
        std::fflush(stdout);
    }

    int nameWidth_ = 0;
    int otherWidth_ = 0;
};

QJsonObject json(const Row& row) {
    static constexpr const char* names[] = {"seconds", "bytes", "times"};
    return {{QStringLiteral("name"), QString::fromStdString(row.work)},
            {QStringLiteral("other"), QString::fromStdString(row.peer)},
            {QStringLiteral("unit"), QLatin1String(names[static_cast<std::size_t>(row.unit)])},
            {QStringLiteral("trvfilesMedian"), row.ours},
            {QStringLiteral("otherMedian"), row.other},
            {QStringLiteral("ratio"), row.ratio},
            {QStringLiteral("bound"), row.bound},
            {QStringLiteral("missed"), row.isMissed()}};
}

Comparisons allComparisons() {
    Comparisons all;
    for (Comparisons group :
         {assemblyComparisons(), axisComparisons(), contextComparisons(), storeComparisons(),
          storeGrowthComparisons(), expansionComparisons(), supportComparisons()}) {
        std::move(group.begin(), group.end(), std::back_inserter(all));
    }
    return all;
}

int run(const QString& filter, int runs, const QString& jsonFile) {
    QJsonArray rows;
    int missed = 0;
    const Comparisons comparisons = allComparisons();
    const Table table(comparisons);
    for (const Comparison& comparison : comparisons) {
        if (!QString::fromStdString(comparison.name).contains(filter)) continue;
        for (const Row& row : rowsOf(comparison, runs)) {
            table.print(row);
            rows.append(json(row));
            if (row.isMissed()) ++missed;
        }
    }
    std::printf("%d of %d bounds missed\n", missed, rows.size());
    if (!jsonFile.isEmpty()) {
        QFile file(jsonFile);
        const QByteArray text = QJsonDocument(rows).toJson();
        require(file.open(QIODevice::WriteOnly) && file.write(text) == text.size(),
                "writing the JSON file");
    }
    return missed == 0 && !rows.isEmpty() ? 0 : 1;
}

}  // namespace
}  // namespace trv::bench

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QCommandLineParser options;
    const QCommandLineOption filter(QStringLiteral("filter"),
                                    QStringLiteral("Only workloads whose names contain <text>"),
                                    QStringLiteral("text"));
    const QCommandLineOption runs(QStringLiteral("runs"), QStringLiteral("Turns at least"),
                                  QStringLiteral("number"), QStringLiteral("7"));
    const QCommandLineOption json(QStringLiteral("json"),
                                  QStringLiteral("Also write JSON to <file>"),
                                  QStringLiteral("file"));
    options.addOptions({filter, runs, json});
    options.addHelpOption();
    options.process(application);

    return trv::bench::run(options.value(filter), options.value(runs).toInt(), options.value(json));
}
