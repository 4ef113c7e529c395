#include "Comparison.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <limits>
#include <string>
#include <thread>

namespace hazelmark::bench {

namespace {

double secondsOf(const std::function<void()> &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::string processor()
{
    std::ifstream info("/proc/cpuinfo");
    for (std::string line; std::getline(info, line);)
        if (line.rfind("model name", 0) == 0)
            return line.substr(line.find(':') + 2);
    return "unknown processor";
}

/// The library appends how often it ran what.
std::string nameOf(const benchmark::BenchmarkReporter::Run &run)
{
    const std::string name = run.benchmark_name();
    return name.substr(0, name.find("/iterations:"));
}

std::string timeText(double seconds)
{
    char text[32];
    std::snprintf(text, sizeof text, seconds < 0.1 ? "%.2f ms" : "%.3f s", seconds < 0.1 ? 1e3 * seconds : seconds);
    return text;
}

class TableReporter : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context &) override
    {
        std::printf("%s, %u threads. OpenCV's filter2D takes large kernels through a path that runs on one thread "
                    "whatever it is given.\n\n",
                    processor().c_str(), std::thread::hardware_concurrency());
        std::printf("| what | against | ours | yardstick | ratio | wanted |\n|---|---|---|---|---|---|\n");
        return true;
    }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            const auto counter = [&](const char *name) {
                const auto found = run.counters.find(name);
                return found == run.counters.end() ? 0.0 : double(found->second);
            };
            std::printf("| %s | %s |", nameOf(run).c_str(), run.report_label.c_str());
            if (counter("yardstick") > 0.0)
                std::printf(" %s | %s |", timeText(counter("ours")).c_str(), timeText(counter("yardstick")).c_str());
            else
                std::printf(" | |");
            std::printf(" %.3f |", counter("ratio"));
            if (counter("wanted") > 0.0)
                std::printf(" at most %g%s |\n", counter("wanted"),
                            counter("ratio") <= counter("wanted") ? "" : " (missed)");
            else
                std::printf(" |\n");
            std::fflush(stdout);
        }
    }
};

} // namespace

void add(Comparison comparison)
{
    const std::string name = comparison.what;
    const int repetitions = comparison.repetitions;
    benchmark::RegisterBenchmark(name.c_str(),
                                 [comparison = std::move(comparison)](benchmark::State &state) {
                                     double ours = std::numeric_limits<double>::max(), yardstick = ours;
                                     for (auto unused : state) {
                                         (void)unused;
                                         yardstick = std::min(yardstick, secondsOf(comparison.yardstick));
                                         const double seconds = secondsOf(comparison.ours);
                                         ours = std::min(ours, seconds);
                                         state.SetIterationTime(seconds);
                                     }
                                     state.SetLabel(comparison.against);
                                     state.counters["ours"] = ours;
                                     state.counters["yardstick"] = yardstick;
                                     state.counters["ratio"] = ours / yardstick;
                                     state.counters["wanted"] = comparison.wanted;
                                 })
        ->Iterations(repetitions)
        ->UseManualTime();
}

void add(Figure figure)
{
    const std::string name = figure.what;
    benchmark::RegisterBenchmark(name.c_str(), [figure = std::move(figure)](benchmark::State &state) {
        double value = 0.0;
        for (auto unused : state) {
            (void)unused;
            value = figure.measure();
        }
        state.SetLabel(figure.against);
        state.counters["ratio"] = value;
        state.counters["wanted"] = figure.wanted;
    })->Iterations(1);
}

int run(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    TableReporter table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return 0;
}

} // namespace hazelmark::bench
