#include "BrushTexture.h"

#include <algorithm>
#include <cmath>

namespace hazelmark {

namespace {

/// Averages `count` samples, `stride` apart, into `count / 2` (at least one): each gets the mean of the stretch that
/// it covers, so an odd count is not shifted.
void halve(const float *from, float *to, int count, std::ptrdiff_t stride)
{
    const int halved = std::max(1, count / 2);
    for (int i = 0; i < halved; ++i) {
        const double begin = double(i) * count / halved;
        const double end = double(i + 1) * count / halved;
        double sum = 0;
        for (int j = int(begin); j < std::min(count, int(std::ceil(end))); ++j)
            sum += from[j * stride] * (std::min(end, j + 1.0) - std::max(begin, double(j)));
        to[i * stride] = float(sum / (end - begin));
    }
}

void findCoveredTexels(BrushTexture::Level &level)
{
    level.covered.assign(std::size_t(level.height), {level.width, -1});
    for (int y = 0; y < level.height; ++y) {
        auto &[first, last] = level.covered[std::size_t(y)];
        const float *alpha = level.row(level.planes - 1, y);
        for (int x = 0; x < level.width; ++x) {
            if (alpha[x] > 0) {
                first = std::min(first, x);
                last = x;
            }
        }
    }
}

BrushTexture::Level emptyLevel(int width, int height, int planes)
{
    BrushTexture::Level level;
    level.width = width;
    level.height = height;
    level.planes = planes;
    level.samples.resize(std::size_t(width) * std::size_t(height) * std::size_t(planes));
    return level;
}

BrushTexture::Level halved(const BrushTexture::Level &level)
{
    BrushTexture::Level narrow = emptyLevel(std::max(1, level.width / 2), level.height, level.planes);
    BrushTexture::Level small = emptyLevel(narrow.width, std::max(1, level.height / 2), level.planes);
    for (int plane = 0; plane < level.planes; ++plane) {
        for (int y = 0; y < level.height; ++y)
            halve(level.row(plane, y), narrow.row(plane, y), level.width, 1);
        for (int x = 0; x < narrow.width; ++x)
            halve(narrow.row(plane, 0) + x, small.row(plane, 0) + x, level.height, narrow.width);
    }
    findCoveredTexels(small);
    return small;
}

} // namespace

BrushTexture::BrushTexture(const QImage &tip)
    : m_tipKey(tip.cacheKey())
{
    if (tip.isNull())
        return;
    const QImage pixels = tip.convertToFormat(QImage::Format_RGBA8888_Premultiplied);
    bool white = true;
    for (int y = 0; y < pixels.height() && white; ++y) {
        const uchar *row = pixels.constScanLine(y);
        for (int x = 0; x < pixels.width() && white; ++x, row += 4)
            white = row[0] == row[3] && row[1] == row[3] && row[2] == row[3];
    }

    Level level = emptyLevel(pixels.width(), pixels.height(), white ? 1 : 4);
    for (int plane = 0; plane < level.planes; ++plane) {
        const int component = 4 - level.planes + plane;
        for (int y = 0; y < level.height; ++y) {
            const uchar *from = pixels.constScanLine(y);
            float *to = level.row(plane, y);
            for (int x = 0; x < level.width; ++x)
                to[x] = float(from[4 * x + component]) / 255.0F;
        }
    }
    findCoveredTexels(level);
    m_levels.push_back(std::make_shared<const Level>(std::move(level)));
}

std::shared_ptr<const BrushTexture::Level> BrushTexture::levelFor(float pointSize)
{
    if (isEmpty())
        return nullptr;
    std::size_t wanted = 0;
    const auto side = [&](std::size_t index) { return std::max(m_levels[index]->width, m_levels[index]->height); };
    while (side(wanted) > 1 && float(side(wanted)) >= 2 * pointSize) {
        ++wanted;
        if (wanted == m_levels.size())
            m_levels.push_back(std::make_shared<const Level>(halved(*m_levels.back())));
    }
    return m_levels[wanted];
}

} // namespace hazelmark
