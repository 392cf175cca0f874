// Runs the comparisons and prints their ratios as a table or as JSON. Ends with 1 if a ratio is
// above its bound.

#include <bench/comparison.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>

namespace trv::bench {

void require(bool done, const char* what) {
    if (done) return;
    std::fprintf(stderr, "trvfiles_bench: %s failed\n", what);
    std::exit(2);
}

namespace {

constexpr char ours[] = "trvfiles";

using Runs = std::map<std::string, std::vector<double>>;

struct Row {
    std::string work;
    std::string peer;
    double ours;
    double other;
    double bound;
    bool isTime;

    double ratio() const { return ours / other; }
    bool isMissed() const { return !(ratio() <= bound); }
};

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

class Collector : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& reports) override {
        for (const Run& run : reports) {
            if (run.run_type != Run::RT_Iteration) continue;
            runs_[run.run_name.function_name].push_back(run.real_accumulated_time /
                                                        static_cast<double>(run.iterations));
        }
    }

    const Runs& runs() const { return runs_; }

private:
    Runs runs_;
};

std::vector<std::pair<std::string, Workload>> workloadsOf(const Comparison& comparison) {
    std::vector<std::pair<std::string, Workload>> workloads = {{ours, comparison.ours}};
    for (const Peer& peer : comparison.peers)
        workloads.emplace_back(peer.name, peer.work);
    return workloads;
}

void runOnce(const Workload& work) {
    if (work.prepare != nullptr) work.prepare();
    work.run();
}

Runs timed(const Comparison& comparison, int repetitions) {
    for (const auto& [name, work] : workloadsOf(comparison)) {
        // The first run may create a sample. If it were timed, the number of iterations would be
        // too small.
        runOnce(work);
        const auto loop = [work = work](benchmark::State& state) {
            for (auto _ : state) {
                if (work.prepare != nullptr) {
                    state.PauseTiming();
                    work.prepare();
                    state.ResumeTiming();
                }
                work.run();
            }
        };
        benchmark::RegisterBenchmark(name.c_str(), loop)
            ->Repetitions(repetitions)
            ->MinTime(0.05)
            ->UseRealTime();
    }
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    benchmark::ClearRegisteredBenchmarks();
    return collector.runs();
}

Runs figured(const Comparison& comparison, int repetitions) {
    Runs runs;
    for (int run = 0; run < repetitions; ++run) {
        for (const auto& [name, work] : workloadsOf(comparison))
            runs[name].push_back(comparison.figure(work));
    }
    return runs;
}

std::vector<Row> rowsOf(const Comparison& comparison, int repetitions) {
    const bool isTime = comparison.figure == nullptr;
    const Runs runs = isTime ? timed(comparison, repetitions) : figured(comparison, repetitions);
    std::vector<Row> rows;
    for (const Peer& peer : comparison.peers) {
        rows.push_back({comparison.name, peer.name, median(runs.at(ours)),
                        median(runs.at(peer.name)), peer.bound, isTime});
    }
    return rows;
}

std::string figureText(const Row& row, double figure) {
    const double scaled = row.isTime ? figure * 1e6 : figure / (1 << 20);
    char text[40];
    std::snprintf(text, sizeof text, "%.*f %s", scaled < 100 ? 2 : 0, scaled,
                  row.isTime ? "us" : "MiB");
    return text;
}

std::string boundText(const Row& row) {
    if (row.bound == noBound) return "-";
    char text[20];
    std::snprintf(text, sizeof text, "%.2f", row.bound);
    return text;
}

void printHeader() {
    std::printf("%-36s %-36s %14s %14s %7s %7s\n", "name", "other", "trvfiles", "other", "ratio",
                "bound");
}

void print(const Row& row) {
    std::printf("%-36s %-36s %14s %14s %7.2f %7s%s\n", row.work.c_str(), row.peer.c_str(),
                figureText(row, row.ours).c_str(), figureText(row, row.other).c_str(), row.ratio(),
                boundText(row).c_str(), row.isMissed() ? "  MISSED" : "");
    std::fflush(stdout);
}

QJsonObject json(const Row& row) {
    return {
        {QStringLiteral("name"), QString::fromStdString(row.work)},
        {QStringLiteral("other"), QString::fromStdString(row.peer)},
        {QStringLiteral("unit"), row.isTime ? QStringLiteral("seconds") : QStringLiteral("bytes")},
        {QStringLiteral("trvfilesMedian"), row.ours},
        {QStringLiteral("otherMedian"), row.other},
        {QStringLiteral("ratio"), row.ratio()},
        {QStringLiteral("bound"), row.bound == noBound ? QJsonValue() : QJsonValue(row.bound)},
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

int run(const QString& filter, int repetitions, const QString& jsonFile) {
    QJsonArray rows;
    int bounds = 0;
    int missed = 0;
    printHeader();
    for (const Comparison& comparison : allComparisons()) {
        if (!QString::fromStdString(comparison.name).contains(filter)) continue;
        for (const Row& row : rowsOf(comparison, repetitions)) {
            print(row);
            rows.append(json(row));
            if (row.bound != noBound) ++bounds;
            if (row.isMissed()) ++missed;
        }
    }
    std::printf("%d of %d bounds missed\n", missed, bounds);
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
    const QCommandLineOption repetitions(QStringLiteral("runs"), QStringLiteral("Runs of each"),
                                         QStringLiteral("number"), QStringLiteral("7"));
    const QCommandLineOption json(QStringLiteral("json"),
                                  QStringLiteral("Also write JSON to <file>"),
                                  QStringLiteral("file"));
    options.addOptions({filter, repetitions, json});
    options.addHelpOption();
    options.process(application);

    char program[] = "trvfiles_bench";
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    char* arguments[] = {program, interleave, nullptr};
    int count = 2;
    benchmark::Initialize(&count, arguments);
    return trv::bench::run(options.value(filter), options.value(repetitions).toInt(),
                           options.value(json));
}
