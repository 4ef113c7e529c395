#pragma once

#include "Pictures.h"
#include "StampPainter.h"

#include <QImage>

#include <algorithm>
#include <cmath>
#include <vector>

namespace hazelmark {

inline QImage blankBuffer(QSize size)
{
    QImage buffer(size, QImage::Format_RGBA8888_Premultiplied);
    buffer.fill(0);
    return buffer;
}

/// Stamps a square tip pixel by pixel in double precision, with one rounding a stamp: what StampPainter must agree
/// with.
inline void stampReference(QImage &buffer, StampPainter::Mode mode, const Color &color, float pointSize,
                           const QImage &tip, const StampCentres &centres)
{
    const QImage texels = tip.convertToFormat(QImage::Format_RGBA8888_Premultiplied);
    const int last = texels.width() - 1;
    const auto texel = [&](int column, int line, int c) {
        return texels.constScanLine(std::clamp(line, 0, last))[4 * std::clamp(column, 0, last) + c] / 255.0;
    };
    const bool erases = mode == StampPainter::Mode::Erase;
    const double modulated[] = {color.red, color.green, color.blue, color.alpha};
    const auto blend = [&](uchar *pixel, double u, double v) {
        const int column = int(std::floor(u)), line = int(std::floor(v));
        double sample[4];
        for (int c = 0; c < 4; ++c)
            sample[c] =
                std::lerp(std::lerp(texel(column, line, c), texel(column + 1, line, c), u - column),
                          std::lerp(texel(column, line + 1, c), texel(column + 1, line + 1, c), u - column), v - line);
        const double keep = 1 - sample[3] * (erases ? 1 : color.alpha);
        for (int c = 0; c < 4; ++c) {
            const double added = erases ? 0 : 255 * sample[c] * modulated[c];
            pixel[c] = uchar(std::min(std::nearbyint(added + pixel[c] * keep), 255.0));
        }
    };
    for (const StampCentre &centre : centres.places) {
        const double reach = double(pointSize) / 2 + 1;
        const QRect near = QRectF(centre.x - reach, centre.y - reach, 2 * reach, 2 * reach).toRect() & buffer.rect();
        for (int i = 0; i < centres.times * near.width() * near.height(); ++i) {
            const int x = near.x() + i % near.width(), y = near.y() + i / near.width() % near.height();
            const double s = (x + 0.5 - centre.x) / double(pointSize) + 0.5;
            const double t = (y + 0.5 - centre.y) / double(pointSize) + 0.5;
            if (s >= 0 && s < 1 && t >= 0 && t < 1)
                blend(buffer.scanLine(y) + 4 * x, s * texels.width() - 0.5, t * texels.width() - 0.5);
        }
    }
}

} // namespace hazelmark
