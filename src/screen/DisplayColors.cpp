#include "DisplayColors.h"

#include "ColorProfile.h"
#include "ParallelFor.h"

#include <algorithm>
#include <utility>

namespace hazelmark {

namespace {

constexpr int kRowsAtOnce = 64;

std::shared_ptr<const ColorTransform> transformBetween(const QByteArray &photo, const QByteArray &screen,
                                                       QImage::Format format)
{
    if (photo == screen)
        return nullptr;
    // A broken profile on one side must not cost the conversion that the other side asks for.
    for (const auto &[from, to] :
         {std::pair(photo, screen), std::pair(photo, QByteArray()), std::pair(QByteArray(), screen)}) {
        if (auto transform = ColorTransform::between(from, to, format))
            return transform->isIdentity() ? nullptr : transform;
    }
    return nullptr;
}

/// In the pixels' own memory where nobody else holds them.
QImage inPaintingFormat(QImage pixels)
{
    switch (pixels.format()) {
    case QImage::Format_RGBX8888:
        if constexpr (Q_BYTE_ORDER == Q_LITTLE_ENDIAN) {
            pixels.rgbSwap();
            pixels.reinterpretAsFormat(QImage::Format_RGB32);
            return pixels;
        }
        [[fallthrough]];
    default:
        return std::move(pixels).convertToFormat(pixels.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                                          : QImage::Format_RGB32);
    }
}

} // namespace

QImage DisplayColors::shown(QImage pixels, const QByteArray &profile) const
{
    const auto transform = transformBetween(profile, m_screenProfile, pixels.format());
    if (!transform)
        return inPaintingFormat(std::move(pixels));

    QImage converted = pixels.isDetached() ? std::move(pixels) : QImage(pixels.size(), pixels.format());
    if (converted.isNull())
        return inPaintingFormat(std::move(pixels));
    const QImage &source = pixels.isNull() ? converted : pixels;
    uchar *const target = converted.bits(); // here, on one thread: it may detach
    const int bands = (converted.height() + kRowsAtOnce - 1) / kRowsAtOnce;
    parallelFor(bands, defaultThreadCount(), [&](int band) {
        const int first = band * kRowsAtOnce;
        const int rows = std::min(kRowsAtOnce, converted.height() - first);
        transform->convertRows(source.constScanLine(first), source.bytesPerLine(),
                               target + first * converted.bytesPerLine(), converted.bytesPerLine(), converted.width(),
                               rows);
    });
    return inPaintingFormat(std::move(converted));
}

} // namespace hazelmark
