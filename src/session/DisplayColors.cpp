#include "DisplayColors.h"

#include "ColorProfile.h"
#include "ParallelFor.h"

#include <algorithm>
#include <utility>

namespace hazelmark {

namespace {

constexpr int kRowsAtOnce = 64;

/// `convert` is given the first row and the number of rows of each band.
template <typename Convert>
void inBands(int height, const Convert &convert)
{
    parallelFor((height + kRowsAtOnce - 1) / kRowsAtOnce, defaultThreadCount(), [&](int band) {
        const int first = band * kRowsAtOnce;
        convert(first, std::min(kRowsAtOnce, height - first));
    });
}

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

/// Exchanges red and blue, on all processors: every preview comes through here.
void swapRedAndBlue(QImage &pixels)
{
    uchar *const data = pixels.bits(); // here, on one thread: it may detach
    inBands(pixels.height(), [&](int first, int rows) {
        for (int y = first; y < first + rows; ++y) {
            auto *row = reinterpret_cast<quint32 *>(data + y * pixels.bytesPerLine());
            std::transform(row, row + pixels.width(), row, [](quint32 pixel) {
                return (pixel & 0xff00ff00U) | (pixel >> 16 & 0xffU) | (pixel & 0xffU) << 16;
            });
        }
    });
}

/// In the pixels' own memory where nobody else holds them.
QImage inPaintingFormat(QImage pixels)
{
    if (Q_BYTE_ORDER == Q_LITTLE_ENDIAN && pixels.format() == QImage::Format_RGBX8888) {
        swapRedAndBlue(pixels);
        pixels.reinterpretAsFormat(QImage::Format_RGB32);
        return pixels;
    }
    return std::move(pixels).convertToFormat(pixels.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                                      : QImage::Format_RGB32);
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
    inBands(converted.height(), [&](int first, int rows) {
        transform->convertRows(source.constScanLine(first), source.bytesPerLine(),
                               target + first * converted.bytesPerLine(), converted.bytesPerLine(), converted.width(),
                               rows);
    });
    return inPaintingFormat(std::move(converted));
}

} // namespace hazelmark
