#include "PixelSource.h"

#include "PixelFormats.h"
#include "kernels/InterleavedRows.h"
#include "kernels/PixelRows.h"

namespace hazelmark {

namespace {

template <typename Sample>
void loadSamples(const uchar *line, bool gray, int column, int count, float *pixels)
{
    const auto &rows = kernels::pixelRows().of<Sample>();
    const auto *samples = reinterpret_cast<const Sample *>(line);
    if (!gray) {
        rows.unpackGray(samples + 4 * qsizetype(column), pixels, 4 * std::size_t(count));
        return;
    }
    rows.unpackGray(samples + column, pixels, std::size_t(count));
    for (int i = count - 1; i >= 0; --i) {
        const float value = pixels[i];
        std::fill_n(pixels + 4 * qsizetype(i), 3, value);
        pixels[4 * qsizetype(i) + 3] = 1.0F;
    }
}

} // namespace

void BitmapPixels::load(int line, int column, int count, float *pixels) const
{
    const uchar *bits = m_bitmap.constScanLine(line - m_corner.y());
    const bool gray = isGray(m_bitmap);
    const bool isDeep = m_bitmap.format() == QImage::Format_Grayscale16 || m_bitmap.depth() == 64;
    if (isDeep)
        loadSamples<std::uint16_t>(bits, gray, column - m_corner.x(), count, pixels);
    else
        loadSamples<std::uint8_t>(bits, gray, column - m_corner.x(), count, pixels);
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
