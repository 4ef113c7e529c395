#include "CellGrid.h"

#include <algorithm>
#include <cmath>

namespace hazelmark {

namespace {

// From these radii on the error stays within the bound on the hardest content (a full-contrast disc of the same
// radius, anywhere between the pixels); from scale 8 on it depends on the radius in cells alone.
constexpr double kLeastRadius2 = 28.0;
constexpr double kLeastRadius4 = 64.0;
constexpr double kLeastRadius8 = 160.0;
constexpr double kLeastCells = kLeastRadius8 / 8.0;

int scaleFor(double radius)
{
    if (radius < kLeastRadius2)
        return 1;
    if (radius < kLeastRadius4)
        return 2;
    int scale = 4;
    while (radius >= kLeastCells * 2.0 * scale)
        scale *= 2;
    return scale;
}

/// The interpolation that undoes most of what averaging over cells and drawing up again would take from the peak of
/// a blurred disc. Three taps of a place, as polynomials of the place p (-0.5 < p < 0, in cells from the middle of
/// the pixel's cell), were fitted to the least error on that peak; the other three follow from what holds exactly:
/// a constant and a slope come out as they went in, and every place widens the disc by the same variance.
struct Interpolation
{
    double variance;    ///< square cells
    double outer[3][3]; ///< taps 0, 4, 5: constant, linear, quadratic
};
constexpr Interpolation kInterpolation2{0.058455, {{0.081802, 0, 0}, {-0.374837, 0, 0}, {0.10173, 0, 0}}};
constexpr Interpolation kInterpolation4{
    0.107005, {{0.096297, -0.038328, 0.143877}, {-0.345353, 0.84824, 1.239584}, {0.102141, -0.221294, -0.289369}}};
constexpr Interpolation kInterpolation8{
    0.090441, {{0.091921, -0.075981, 0.092331}, {-0.417449, 0.417249, 0.494471}, {0.119394, -0.090804, -0.043066}}};

const Interpolation &interpolationFor(int scale)
{
    return scale == 2 ? kInterpolation2 : scale == 4 ? kInterpolation4 : kInterpolation8;
}

/// For a place p < 0; `taps[i]` belongs to the cell i - 3 from the pixel's own.
kernels::Taps tapsBefore(double p, const Interpolation &interpolation)
{
    constexpr int kFitted[3] = {0, 4, 5};
    constexpr int kFollowing[3] = {1, 2, 3};
    double taps[kernels::kTaps] = {};
    double sum = 1.0, slope = 0.0, square = interpolation.variance;
    for (int i = 0; i < 3; ++i) {
        const double *c = interpolation.outer[i];
        const double tap = c[0] + p * (c[1] + p * c[2]);
        const double distance = kFitted[i] - 3 - p;
        taps[kFitted[i]] = tap;
        sum -= tap;
        slope -= tap * distance;
        square -= tap * distance * distance;
    }
    for (int i = 0; i < 3; ++i) {
        const double a = kFollowing[i] - 3 - p;
        const double b = kFollowing[(i + 1) % 3] - 3 - p;
        const double c = kFollowing[(i + 2) % 3] - 3 - p;
        taps[kFollowing[i]] = (square - slope * (b + c) + sum * b * c) / ((a - b) * (a - c));
    }
    kernels::Taps rounded;
    std::copy_n(taps, kernels::kTaps, rounded.begin());
    return rounded;
}

kernels::Taps tapsAt(double p, const Interpolation &interpolation)
{
    if (p < 0.0)
        return tapsBefore(p, interpolation);
    kernels::Taps mirrored = tapsBefore(-p, interpolation);
    std::reverse(mirrored.begin(), mirrored.end());
    return mirrored;
}

/// For pixel q of a cell.
kernels::Taps tapsAt(int q, int scale)
{
    return tapsAt((double(q) + 0.5) / scale - 0.5, interpolationFor(scale));
}

constexpr int kMostKeptPhases = 64;

} // namespace

CellGrid::CellGrid(const QRect &extent, double radius)
    : m_extent(extent)
{
    radius = std::min(radius, kLargestRadius * std::max(extent.width(), extent.height()));
    m_scale = scaleFor(radius);
    // Second moments add up: of the disc over cells, the cells' own width on the way down, the taps on the way up.
    const double finer = 1.0 - 1.0 / (double(m_scale) * m_scale);
    const double added = m_scale == 1 ? 0.0 : -2.0 / 3.0 * finer - 4.0 * interpolationFor(m_scale).variance;
    m_discRadius = std::sqrt(radius * radius / (double(m_scale) * m_scale) + added);
    if (m_scale <= kMostKeptPhases)
        for (int q = 0; q < m_scale; ++q)
            m_phases.push_back(tapsAt(q, m_scale));
}

CellGrid CellGrid::withScale(int scale) const
{
    CellGrid grid = *this;
    grid.m_scale = scale;
    grid.m_phases.clear();
    return grid;
}

QRect CellGrid::cells() const
{
    return {-1, -1, (m_extent.width() - 1) / m_scale + 3, (m_extent.height() - 1) / m_scale + 3};
}

QRect CellGrid::cellsFor(const QRect &region) const
{
    const QRect fromCorner = region.translated(-m_extent.topLeft());
    return QRect(QPoint(floorDivided(fromCorner.left(), m_scale), floorDivided(fromCorner.top(), m_scale)),
                 QPoint(floorDivided(fromCorner.right(), m_scale), floorDivided(fromCorner.bottom(), m_scale)))
        .adjusted(-kernels::kTaps / 2, -kernels::kTaps / 2, kernels::kTaps / 2, kernels::kTaps / 2);
}

QRect CellGrid::pixelsOf(const QRect &cells) const
{
    return {m_extent.left() + cells.left() * m_scale, m_extent.top() + cells.top() * m_scale, cells.width() * m_scale,
            cells.height() * m_scale};
}

CellGrid::Place CellGrid::place(int pixel) const
{
    const int cell = floorDivided(pixel, m_scale);
    const int q = pixel - cell * m_scale;
    return {2 * q < m_scale ? cell - 3 : cell - 2, m_phases.empty() ? tapsAt(q, m_scale) : m_phases[std::size_t(q)]};
}

CellGrid::Place CellGrid::placeAt(double position) const
{
    const double cells = position / m_scale;
    const int cell = int(std::floor(cells));
    const double p = cells - cell - 0.5;
    // That for the smallest cells knows the places of their two pixels alone.
    return {p < 0.0 ? cell - 3 : cell - 2, tapsAt(p, m_scale == 2 ? kInterpolation8 : interpolationFor(m_scale))};
}

} // namespace hazelmark
