#include "DiscShape.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace hazelmark::kernels {

namespace {

/// The area under the quarter circle from 0 to x, 0 <= x.
double areaUnderArc(double x, double radius)
{
    x = std::min(x, radius);
    const double root = std::sqrt(std::max(0.0, radius * radius - x * x));
    return 0.5 * (x * root + radius * radius * std::asin(x / radius));
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

double heightAt(double x, double radius)
{
    return std::sqrt(std::max(0.0, radius * radius - x * x));
}

/// One way to lay a disc out in spans.
struct Layout
{
    int fractions;
    /// A column whose outline crosses this many pixels stands twice, four times, eight times.
    double twice, fourTimes, eightTimes;
};

constexpr double kNever = std::numeric_limits<double>::infinity();
constexpr int kMostStrips = 8;

int stripsFor(double crossed, const Layout &layout)
{
    return crossed >= layout.eightTimes ? 8 : crossed >= layout.fourTimes ? 4 : crossed >= layout.twice ? 2 : 1;
}

/// A part of a column right of the middle (dx >= 0): its weight is 1 / strips.
struct Strip
{
    int dx;
    int strips;
    double wanted; ///< where it ends, in pixels above the upper edge of the middle pixel
    int end = 0;   ///< the same, rounded to fractions
};

std::vector<Strip> stripsOf(double radius, const Layout &layout)
{
    std::vector<Strip> result;
    for (int dx = 0; dx - 0.5 < radius; ++dx) {
        const double inner = std::max(0.0, dx - 0.5), outer = dx + 0.5;
        const int strips = stripsFor(heightAt(inner, radius) - heightAt(outer, radius), layout);
        for (int i = 0; i < strips; ++i) {
            const double from = inner + (outer - inner) * i / strips;
            const double to = inner + (outer - inner) * (i + 1) / strips;
            if (from < radius)
                result.push_back(
                    {dx, strips, (areaUnderArc(to, radius) - areaUnderArc(from, radius)) / (to - from) - 0.5});
        }
    }
    return result;
}

/// Rounds the ends, one strip after the other; what rounding keeps from one goes to the next. `owed`: what the first
/// gets, in pixels.
void roundEnds(std::vector<Strip> &strips, int fractions, bool inwards, double owed)
{
    const auto round = [&](Strip &strip) {
        const double wanted = strip.wanted + owed * strip.strips;
        strip.end = std::max(int(std::lround(wanted * fractions)), -fractions / 2);
        owed = (wanted - double(strip.end) / fractions) / strip.strips;
    };
    if (inwards)
        std::for_each(strips.rbegin(), strips.rend(), round);
    else
        std::for_each(strips.begin(), strips.end(), round);
}

/// A pixel where the weight of a layout is not that of the disc.
struct Deviation
{
    int x, y;
    double weight;
};

std::vector<Deviation> deviationsOf(const std::vector<Strip> &strips, int fractions, double radius)
{
    const int reach = int(std::ceil(radius + 0.5));
    std::vector<double> weights(std::size_t((reach + 1) * (reach + 1)), 0.0);
    for (const Strip &strip : strips) {
        const double top = double(strip.end) / fractions + 0.5;
        for (int y = 0; y <= reach && strip.dx <= reach; ++y)
            weights[std::size_t(strip.dx * (reach + 1) + y)] +=
                std::clamp(y == 0 ? 2.0 * top : top - y + 0.5, 0.0, 1.0) / strip.strips;
    }
    double total = 0.0, area = 0.0;
    std::vector<Deviation> deviations;
    for (int x = 0; x <= reach; ++x) {
        for (int y = 0; y <= reach; ++y) {
            const double weight = weights[std::size_t(x * (reach + 1) + y)];
            const double coverage = discCoverage(radius, x, y);
            total += weight * (x ? 2 : 1) * (y ? 2 : 1);
            area += coverage * (x ? 2 : 1) * (y ? 2 : 1);
            if (std::abs(weight - coverage) > 1e-6)
                deviations.push_back({x, y, weight - coverage});
        }
    }
    // The means are taken over the layout's own total; what that changes in the middle all lies inside the disc.
    deviations.push_back({0, 0, area - total});
    return deviations;
}

/// How far off the means of a layout are on what is hardest for it, of 1.
double errorOf(const std::vector<Deviation> &deviations, double radius)
{
    double worst = 0.0;
    // Near the middle of a full-contrast disc of the same radius, somewhere between the pixels.
    for (const double shiftX : {0.0, 0.25, 0.5, 1.0}) {
        for (const double shiftY : {0.0, 0.25, 0.5, 1.0}) {
            double hard = 0.0, soft = 0.0; // outline
            for (const Deviation &deviation : deviations) {
                for (const int x : {deviation.x, -deviation.x}) {
                    for (const int y : {deviation.y, -deviation.y}) {
                        const double weight = deviation.weight * (deviation.x ? 1.0 : 0.5) * (deviation.y ? 1.0 : 0.5);
                        const double outside =
                            std::sqrt((x - shiftX) * (x - shiftX) + (y - shiftY) * (y - shiftY)) - radius;
                        hard += outside <= 0.0 ? weight : 0.0;
                        soft += std::clamp(0.5 - outside, 0.0, 1.0) * weight;
                    }
                }
            }
            worst = std::max({worst, std::abs(hard), std::abs(soft)});
        }
    }
    // Checkers and lines of one pixel, and noise of black and white pixels.
    double checkers = 0.0, columns = 0.0, rows = 0.0, squares = 0.0;
    for (const Deviation &deviation : deviations) {
        const double copies = (deviation.x ? 2.0 : 1.0) * (deviation.y ? 2.0 : 1.0);
        const double weight = deviation.weight * copies;
        checkers += (deviation.x + deviation.y) % 2 ? -weight : weight;
        columns += deviation.x % 2 ? -weight : weight;
        rows += deviation.y % 2 ? -weight : weight;
        squares += deviation.weight * weight;
    }
    constexpr double kNoisePeak = 1.6; // what counts of noise, in standard deviations: the rarest peaks may be higher
    worst = std::max({worst, std::abs(checkers) / 2.0, std::abs(columns) / 2.0, std::abs(rows) / 2.0,
                      kNoisePeak * std::sqrt(squares) / 2.0});
    return worst / (M_PI * radius * radius);
}

bool fitsAccumulator(const std::vector<Strip> &strips, int fractions, double radius)
{
    int most = 1;
    for (const Strip &strip : strips)
        most = std::max(most, strip.strips);
    constexpr double kRounding = 1.02; // of the ends
    return kRounding * M_PI * radius * radius * most * fractions * 65535.0 < 4294967296.0;
}

DiscSpans spansOf(const std::vector<Strip> &strips, int fractions)
{
    std::vector<DiscSpans::Span> byStrips[kMostStrips + 1];
    DiscSpans disc;
    disc.fractions = fractions;
    int most = 1;
    for (const Strip &strip : strips) {
        if (2 * strip.end <= -fractions)
            continue;
        byStrips[strip.strips].push_back({strip.dx, strip.end});
        if (strip.dx > 0)
            byStrips[strip.strips].push_back({-strip.dx, strip.end});
        disc.reach = std::max({disc.reach, strip.dx, (strip.end + fractions - 1) / fractions});
        most = std::max(most, strip.strips);
    }
    for (int count = 1; count <= most; count *= 2) {
        if (byStrips[count].empty())
            continue;
        const std::uint32_t weight = std::uint32_t(most / count);
        for (const DiscSpans::Span &span : byStrips[count])
            disc.total += weight * std::uint32_t(fractions + 2 * span.end);
        disc.groups.push_back({weight, std::move(byStrips[count])});
    }
    return disc;
}

} // namespace

double discCoverage(double radius, int x, int y)
{
    const double left = x - 0.5, right = x + 0.5, below = y - 0.5, above = y + 0.5;
    const double area = areaOfCorner(right, above, radius) - areaOfCorner(left, above, radius) -
                        areaOfCorner(right, below, radius) + areaOfCorner(left, below, radius);
    return std::clamp(area, 0.0, 1.0);
}

DiscSpans makeDiscSpans(double radius, double goodEnough)
{
    // From cheap to dear.
    constexpr Layout kLayouts[] = {{2, 1.5, kNever, kNever}, {4, 1.5, kNever, kNever}, {4, 1.5, 3.0, kNever},
                                   {4, 0.8, 2.0, kNever},    {8, 0.8, 2.0, kNever},    {8, 0.4, 1.0, 2.0}};
    double least = kNever;
    DiscSpans best;
    for (const Layout &layout : kLayouts) {
        std::vector<Strip> strips = stripsOf(radius, layout);
        if (!fitsAccumulator(strips, layout.fractions, radius))
            break;
        for (const bool inwards : {false, true}) {
            for (const double owed : {0.0, -0.4, -0.2, 0.2, 0.4}) {
                roundEnds(strips, layout.fractions, inwards, owed / layout.fractions);
                const double error = errorOf(deviationsOf(strips, layout.fractions, radius), radius);
                if (error < least) {
                    best = spansOf(strips, layout.fractions);
                    least = error;
                }
            }
        }
        if (least <= goodEnough)
            break;
    }
    return best;
}

} // namespace hazelmark::kernels
