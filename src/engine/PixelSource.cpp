#include "PixelSource.h"

#include "kernels/InterleavedRows.h"
#include "kernels/PixelRows.h"

namespace hazelmark {

namespace {

template <typename Sample>
void loadSamples(const uchar *line, int column, int count, float *pixels)
{
    const auto *samples = reinterpret_cast<const Sample *>(line) + 4 * qsizetype(column);
    kernels::pixelRows().of<Sample>().unpackGray(samples, pixels, 4 * std::size_t(count));
}

} // namespace

void BitmapPixels::load(int line, int column, int count, float *pixels) const
{
    const uchar *bits = m_bitmap.constScanLine(line - m_corner.y());
    if (m_bitmap.depth() == 64)
        loadSamples<std::uint16_t>(bits, column - m_corner.x(), count, pixels);
    else
        loadSamples<std::uint8_t>(bits, column - m_corner.x(), count, pixels);
    if (m_bitmap.hasAlphaChannel())
        kernels::premultiplyPixels(pixels, std::size_t(count));
}

void GrayPixels::load(int line, int column, int count, float *pixels) const
{
    kernels::pixelRows().eight.unpackGray(m_bitmap.constScanLine(line - m_corner.y()) + (column - m_corner.x()), pixels,
                                          std::size_t(count));
}

void CellPixels::load(int line, int column, int count, float *pixels) const
{
    const std::uint16_t *planes[4] = {};
    for (int c = 0; c < m_cells.channels(); ++c)
        planes[c] = m_cells.at(c, column, line);
    kernels::interleaveSamples(planes, m_cells.channels(), pixels, std::size_t(count));
}

} // namespace hazelmark
