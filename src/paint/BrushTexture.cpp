#include "BrushTexture.h"

#include <algorithm>

namespace hazelmark {

namespace {

void findCoveredTexels(BrushTexture::Texels &texels)
{
    texels.covered.assign(std::size_t(texels.height), {texels.width, -1});
    for (int y = 0; y < texels.height; ++y) {
        auto &[first, last] = texels.covered[std::size_t(y)];
        const float *alpha = texels.row(texels.planes - 1, y);
        for (int x = 0; x < texels.width; ++x) {
            if (alpha[x] > 0) {
                first = std::min(first, x);
                last = x;
            }
        }
    }
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

    Texels texels;
    texels.width = pixels.width();
    texels.height = pixels.height();
    texels.planes = white ? 1 : 4;
    texels.samples.resize(std::size_t(texels.width) * std::size_t(texels.height) * std::size_t(texels.planes));
    for (int plane = 0; plane < texels.planes; ++plane) {
        const int component = 4 - texels.planes + plane;
        for (int y = 0; y < texels.height; ++y) {
            const uchar *from = pixels.constScanLine(y);
            float *to = texels.row(plane, y);
            for (int x = 0; x < texels.width; ++x)
                to[x] = float(from[4 * x + component]) / 255.0F;
        }
    }
    findCoveredTexels(texels);
    m_texels = std::make_shared<const Texels>(std::move(texels));
}

} // namespace hazelmark
