#include "DisplayColors.h"

#include "ColorProfile.h"
#include "ParallelFor.h"

#include <algorithm>

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

} // namespace

QImage DisplayColors::shown(const QImage &pixels, const QByteArray &profile) const
{
    const QImage::Format format = pixels.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    const auto transform = transformBetween(profile, m_screenProfile, pixels.format());
    if (!transform)
        return pixels.convertToFormat(format);

    QImage converted(pixels.size(), pixels.format());
    if (converted.isNull())
        return pixels.convertToFormat(format);
    const int bands = (pixels.height() + kRowsAtOnce - 1) / kRowsAtOnce;
    uchar *const target = converted.bits(); // here, on one thread: it detaches
    parallelFor(bands, defaultThreadCount(), [&](int band) {
        const int first = band * kRowsAtOnce;
        const int rows = std::min(kRowsAtOnce, pixels.height() - first);
        transform->convertRows(pixels.constScanLine(first), pixels.bytesPerLine(),
                               target + first * converted.bytesPerLine(), converted.bytesPerLine(), pixels.width(),
                               rows);
    });
    return std::move(converted).convertToFormat(format);
}

} // namespace hazelmark
