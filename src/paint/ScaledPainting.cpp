#include "ScaledPainting.h"

#include "CanvasPart.h"
#include "LargeMemory.h"
#include "ParallelFor.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

namespace hazelmark {

namespace {

constexpr int kBandLines = 256;
constexpr int kGreen = 1;

} // namespace

double ScaledPainting::largestScale(QSizeF frame, QSizeF photo)
{
    if (frame.isEmpty())
        return 1;
    const double largest = std::min({photo.width() / frame.width(), photo.height() / frame.height(),
                                     kLargestSide / std::max(frame.width(), frame.height()),
                                     std::sqrt(kMostPixels / (frame.width() * frame.height()))});
    return std::max(1.0, largest);
}

QImage ScaledPainting::mask() const
{
    const QSize size = CanvasPart::canvasSize(frame, scale);
    if (size.isEmpty())
        return {};
    QImage mask = makeLargeBitmap(size, QImage::Format_Grayscale8);
    if (mask.isNull())
        throw std::bad_alloc();
    uchar *const bits = mask.bits(); // here, on one thread: it may detach
    const int bands = (size.height() + kBandLines - 1) / kBandLines;
    parallelFor(bands, defaultThreadCount(), [&](int band) {
        CanvasPart part(frame, scale, QRect(0, band * kBandLines, size.width(), kBandLines));
        part.drawOn(*steps, 1);
        for (int y = 0; y < part.rect().height(); ++y) {
            uchar *to = bits + (part.rect().y() + y) * mask.bytesPerLine();
            if (part.pixels().isNull()) {
                std::memset(to, 0, std::size_t(size.width()));
                continue;
            }
            const uchar *from = part.pixels().constScanLine(y) + kGreen;
            for (int x = 0; x < size.width(); ++x)
                to[x] = from[4 * x];
        }
    });
    return mask;
}

} // namespace hazelmark
