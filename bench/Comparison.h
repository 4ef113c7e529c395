#pragma once

#include <functional>
#include <string>

namespace hazelmark::bench {

/// One row of the table: what ours takes against what a yardstick takes, both measured in this run, by turns, so that
/// whatever else the machine does meanwhile hits both. The least of all repetitions counts.
struct Comparison
{
    std::string what;
    std::string against;
    double wanted; ///< largest ratio, or 0 when there is no aim
    int repetitions;
    std::function<void()> ours;
    std::function<void()> yardstick;
};
void add(Comparison comparison);

/// A row whose figure is not a time.
struct Figure
{
    std::string what;
    std::string against;
    double wanted;
    std::function<double()> measure;
};
void add(Figure figure);

/// Parses the command line, measures, prints the table. The program's exit status.
int run(int argc, char **argv);

} // namespace hazelmark::bench
