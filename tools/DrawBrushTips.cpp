// Draws the brush tips: draw_brush_tips FOLDER writes Brush_hardness_0.png to Brush_hardness_100.png into it.

#include <QDir>
#include <QImage>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace {

/// Stamps are up to a few hundred pixels wide and mostly less than a hundred, and sample the tip as it is: a larger
/// one would give the edge of a small hard brush steps, a smaller one blur that of a large one.
constexpr int kSide = 128;
constexpr int kHardestLevel = 100;
/// The hardest brush gets stamps 1.02 times its diameter, so a disc this large has exactly that diameter.
constexpr double kRadius = kSide / 2.0 / 1.02;

/// The integral from 0 to `radius` (texels, of either sign) of the tip's profile: 1 up to the inner radius, from there
/// down to 0 at kRadius along half a cosine. It has no kink at either end, where the eye would see a ring.
double coverageUpTo(double radius, double inner)
{
    if (radius < 0)
        return -coverageUpTo(-radius, inner);
    const double width = kRadius - inner;
    if (radius <= inner || width <= 0)
        return std::min(radius, kRadius);
    const double t = std::min((radius - inner) / width, 1.0);
    return inner + width * (t + std::sin(std::numbers::pi * t) / std::numbers::pi) / 2;
}

/// The mean of the profile over one texel along the radius: the hard edge becomes a ramp one texel wide.
double coverageAt(double radius, double inner)
{
    return coverageUpTo(radius + 0.5, inner) - coverageUpTo(radius - 0.5, inner);
}

QImage drawTip(int level)
{
    const double inner = kRadius * level / kHardestLevel;
    QImage tip(kSide, kSide, QImage::Format_ARGB32);
    for (int y = 0; y < kSide; ++y) {
        auto *row = reinterpret_cast<QRgb *>(tip.scanLine(y));
        for (int x = 0; x < kSide; ++x) {
            const double radius = std::hypot(x + 0.5 - kSide / 2.0, y + 0.5 - kSide / 2.0);
            row[x] = qRgba(255, 255, 255, int(std::lround(255 * coverageAt(radius, inner))));
        }
    }
    return tip;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: draw_brush_tips FOLDER\n");
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    if (!folder.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "draw_brush_tips: cannot make the folder %s\n", argv[1]);
        return 1;
    }
    for (int level = 0; level <= kHardestLevel; ++level) {
        const QString path = folder.filePath(QStringLiteral("Brush_hardness_%1.png").arg(level));
        if (!drawTip(level).save(path, "PNG")) {
            std::fprintf(stderr, "draw_brush_tips: cannot write %s\n", qPrintable(path));
            return 1;
        }
    }
    return 0;
}
