#include <bench/measurement.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <ctime>

namespace trv::bench {
namespace {

double secondsOn(Clock clock) {
    if (clock == Clock::processor) return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

double secondsOf(const Workload& work, Clock clock, std::int64_t repetitions) {
    double seconds = 0;
    if (work.prepare == nullptr) {
        const double start = secondsOn(clock);
        for (std::int64_t i = 0; i < repetitions; ++i)
            work.run();
        return secondsOn(clock) - start;
    }
    for (std::int64_t i = 0; i < repetitions; ++i) {
        work.prepare();
        const double start = secondsOn(clock);
        work.run();
        seconds += secondsOn(clock) - start;
    }
    return seconds;
}

// A workload with the number of repetitions that one turn needs.
class TimedWorkload {
public:
    TimedWorkload(const Workload& work, Clock clock)
        : work_(work), clock_(clock), repetitions_(sufficientRepetitions()) {}

    double seconds() const {
        return secondsOf(work_, clock_, repetitions_) / static_cast<double>(repetitions_);
    }

private:
    std::int64_t sufficientRepetitions() const {
        // The processor's clock has steps of a microsecond.
        constexpr double minSeconds = 0.01;
        // The first run may create a sample.
        secondsOf(work_, clock_, 1);
        std::int64_t repetitions = 1;
        while (secondsOf(work_, clock_, repetitions) < minSeconds)
            repetitions *= 2;
        return repetitions;
    }

    const Workload& work_;
    const Clock clock_;
    const std::int64_t repetitions_;
};

using Measure = std::function<double()>;

Measure measureOf(const Comparison& comparison, const Workload& work) {
    if (comparison.bytes != nullptr) return [&] { return comparison.bytes(work); };
    const TimedWorkload whole(work, comparison.clock);
    if (work.smaller == nullptr) return [whole] { return whole.seconds(); };
    const TimedWorkload smaller(*work.smaller, comparison.clock);
    return [whole, smaller] { return whole.seconds() / smaller.seconds(); };
}

}  // namespace

std::vector<Figures> measured(const Comparison& comparison, int minTurns) {
    std::vector<Measure> measures = {measureOf(comparison, comparison.ours)};
    for (const Peer& peer : comparison.peers)
        measures.push_back(measureOf(comparison, peer.work));
    std::vector<Figures> figures(measures.size());
    // Figures in bytes hardly vary.
    const double minSeconds = comparison.bytes == nullptr ? 2 : 0;
    const double start = secondsOn(comparison.clock);
    for (int turn = 0; turn < minTurns || secondsOn(comparison.clock) - start < minSeconds;
         ++turn) {
        for (std::size_t i = 0; i < measures.size(); ++i) {
            const std::size_t next = turn % 2 == 0 ? i : measures.size() - 1 - i;
            figures[next].push_back(measures[next]());
        }
    }
    return figures;
}

double median(Figures figures) {
    const auto middle = figures.begin() + static_cast<std::ptrdiff_t>(figures.size() / 2);
    std::nth_element(figures.begin(), middle, figures.end());
    return *middle;
}

double medianRatio(const Figures& figures, const Figures& other) {
    Figures ratios;
    for (std::size_t turn = 0; turn < figures.size(); ++turn)
        ratios.push_back(figures[turn] / other[turn]);
    return median(std::move(ratios));
}

}  // namespace trv::bench
