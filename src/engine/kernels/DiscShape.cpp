#include "DiscShape.h"

#include <algorithm>
#include <cmath>

namespace hazelmark::kernels {

namespace {

/// The area under the quarter circle from 0 to x, 0 <= x <= radius.
double areaUnderArc(double x, double radius)
{
    const double root = std::sqrt(std::max(0.0, radius * radius - x * x));
    return 0.5 * (x * root + radius * radius * std::asin(std::min(1.0, x / radius)));
}

/// The area of the disc within 0..x, 0..y; odd in both.
double areaOfCorner(double x, double y, double radius)
{
    const double sign = (x < 0.0) != (y < 0.0) ? -1.0 : 1.0;
    x = std::min(std::abs(x), radius);
    y = std::min(std::abs(y), radius);
    const double flat = std::min(x, std::sqrt(std::max(0.0, radius * radius - y * y)));
    return sign * (flat * y + areaUnderArc(x, radius) - areaUnderArc(flat, radius));
}

struct Fineness
{
    int fractions;
    /// A column whose outline crosses this many pixels stands twice, four times, eight times.
    double twice, fourTimes, eightTimes;
};

Fineness finenessFor(double radius)
{
    constexpr double kNever = 1e9;
    if (radius < 8.0)
        return {8, 0.4, 1.0, 2.0};
    if (radius < 12.0)
        return {8, 0.8, 2.0, kNever};
    if (radius < 24.0)
        return {4, 0.8, 2.0, kNever};
    return {2, 1.5, 3.0, kNever};
}

int stripsFor(double crossed, const Fineness &fineness)
{
    return crossed >= fineness.eightTimes ? 8 : crossed >= fineness.fourTimes ? 4 : crossed >= fineness.twice ? 2 : 1;
}

} // namespace

double discCoverage(double radius, int x, int y)
{
    const double left = x - 0.5, right = x + 0.5, below = y - 0.5, above = y + 0.5;
    const double area = areaOfCorner(right, above, radius) - areaOfCorner(left, above, radius) -
                        areaOfCorner(right, below, radius) + areaOfCorner(left, below, radius);
    return std::clamp(area, 0.0, 1.0);
}

DiscSpans makeDiscSpans(double radius)
{
    const Fineness fineness = finenessFor(radius);
    constexpr int kFinest = 8;
    std::vector<DiscSpans::Span> byStrips[kFinest + 1];
    DiscSpans disc;
    disc.fractions = fineness.fractions;
    double owed = 0.0; // area that rounding has kept from the columns so far, in pixels
    for (int dx = 0; dx - 0.5 < radius; ++dx) {
        const double inner = std::max(0.0, dx - 0.5), outer = dx + 0.5;
        const auto height = [&](double x) { return std::sqrt(std::max(0.0, radius * radius - x * x)); };
        const int strips = stripsFor(height(inner) - height(outer), fineness);
        for (int strip = 0; strip < strips; ++strip) {
            const double from = inner + (outer - inner) * strip / strips;
            const double to = inner + (outer - inner) * (strip + 1) / strips;
            if (from >= radius)
                break;
            const double mean = (areaUnderArc(std::min(to, radius), radius) - areaUnderArc(from, radius)) / (to - from);
            const double wanted = mean - 0.5 + owed * strips;
            const int end = std::max(int(std::lround(wanted * fineness.fractions)), -fineness.fractions / 2);
            owed = (wanted - double(end) / fineness.fractions) / strips;
            if (2 * end == -fineness.fractions)
                continue;
            byStrips[strips].push_back({dx, end});
            if (dx > 0)
                byStrips[strips].push_back({-dx, end});
            disc.reach = std::max({disc.reach, dx, (end + fineness.fractions - 1) / fineness.fractions});
        }
    }
    int most = kFinest;
    while (most > 1 && byStrips[most].empty())
        most /= 2;
    for (int strips = 1; strips <= most; strips *= 2) {
        if (byStrips[strips].empty())
            continue;
        const std::uint32_t weight = std::uint32_t(most / strips);
        for (const DiscSpans::Span &span : byStrips[strips])
            disc.total += weight * std::uint32_t(disc.fractions + 2 * span.end);
        disc.groups.push_back({weight, std::move(byStrips[strips])});
    }
    return disc;
}

} // namespace hazelmark::kernels
