#include "ScaleAxis.h"

#include <algorithm>
#include <cmath>

namespace hazelmark {

namespace {

double keysCubic(double x)
{
    x = std::abs(x);
    if (x < 1.0)
        return (1.5 * x - 2.5) * x * x + 1.0;
    if (x < 2.0)
        return ((-0.5 * x + 2.5) * x - 4.0) * x + 2.0;
    return 0.0;
}

constexpr double kKernelReach = 2.0;

} // namespace

ScaleAxis::ScaleAxis(int begin, int count, int taps, bool shrinks)
    : m_begin(begin)
    , m_count(count)
    , m_taps(taps)
    , m_shrinks(shrinks)
    , m_first(std::size_t(count + kPadding))
    , m_weights(m_first.size() * std::size_t(taps), 0.0F)
{
}

/// Repeats the last one.
void ScaleAxis::pad()
{
    const std::size_t taps = std::size_t(m_taps);
    for (std::size_t i = std::size_t(m_count); i < m_first.size(); ++i) {
        m_first[i] = m_first[i - 1];
        std::copy_n(m_weights.begin() + std::ptrdiff_t((i - 1) * taps), m_taps,
                    m_weights.begin() + std::ptrdiff_t(i * taps));
    }
}

ScaleAxis ScaleAxis::cubic(double sourceStart, double sourceLength, int outputLength, int inputFirst, int inputLast,
                           int begin, int count)
{
    const double step = sourceLength / outputLength;
    const double stretch = std::max(1.0, step);
    const int inputLength = inputLast - inputFirst + 1;
    const int spread = int(std::ceil(2.0 * kKernelReach * stretch)) + 1;
    ScaleAxis axis(begin, count, std::min(spread, inputLength), step > 1.0);
    std::vector<double> exact(static_cast<std::size_t>(axis.m_taps));
    for (int i = begin; i < begin + count; ++i) {
        // Pixel i covers i .. i + 1; its centre lies in the middle.
        const double centre = sourceStart + (i + 0.5) * step - 0.5;
        const int from = int(std::ceil(centre - kKernelReach * stretch));
        const int start = std::clamp(from, inputFirst, inputLast - axis.m_taps + 1);
        axis.m_first[axis.index(i)] = start;
        std::fill(exact.begin(), exact.end(), 0.0);
        double sum = 0.0;
        for (int t = from; t < from + spread; ++t) {
            const double weight = keysCubic((t - centre) / stretch);
            exact[std::size_t(std::clamp(t, inputFirst, inputLast) - start)] += weight;
            sum += weight;
        }
        for (std::size_t t = 0; t < exact.size(); ++t)
            axis.m_weights[axis.index(i) * exact.size() + t] = float(exact[t] / sum);
    }
    axis.pad();
    return axis;
}

ScaleAxis ScaleAxis::cubic(int sourceLength, int outputLength, int begin, int count)
{
    if (sourceLength == outputLength)
        return plain(0, begin, count);
    return cubic(0, sourceLength, outputLength, 0, sourceLength - 1, begin, count);
}

template <typename PlaceOf>
ScaleAxis ScaleAxis::ofCells(int begin, int count, const PlaceOf &placeOf)
{
    ScaleAxis axis(begin, count, kernels::kTaps, false);
    for (int i = begin; i < begin + count; ++i) {
        const CellGrid::Place place = placeOf(i);
        axis.m_first[axis.index(i)] = place.cell;
        std::copy(place.taps.begin(), place.taps.end(),
                  axis.m_weights.begin() + std::ptrdiff_t(axis.index(i) * kernels::kTaps));
    }
    axis.pad();
    return axis;
}

ScaleAxis ScaleAxis::columnsOfCells(const CellGrid &grid, int sourceLength, int outputLength, int begin, int count)
{
    if (sourceLength == outputLength)
        return ofCells(begin, count, [&](int i) { return grid.placeOfColumn(i); });
    return ofCells(begin, count, [&](int i) { return grid.placeAt((i + 0.5) * sourceLength / outputLength); });
}

ScaleAxis ScaleAxis::linesOfCells(const CellGrid &grid, int sourceLength, int outputLength, int begin, int count)
{
    if (sourceLength == outputLength)
        return ofCells(begin, count, [&](int i) { return grid.placeOfRow(outputLength - 1 - i); });
    return ofCells(begin, count,
                   [&](int i) { return grid.placeAt((outputLength - i - 0.5) * sourceLength / outputLength); });
}

ScaleAxis ScaleAxis::plain(int offset, int begin, int count)
{
    ScaleAxis axis(begin, count, 1, false);
    axis.m_isPlain = true;
    for (int i = begin; i < begin + count; ++i) {
        axis.m_first[axis.index(i)] = i - offset;
        axis.m_weights[axis.index(i)] = 1.0F;
    }
    axis.pad();
    return axis;
}

} // namespace hazelmark
