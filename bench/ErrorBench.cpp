#include "Benches.h"
#include "Comparison.h"
#include "PictureReference.h"
#include "TestPicture.h"

#include <cmath>
#include <string>

namespace hazelmark::bench {

namespace {

using namespace hazelmark::testing;

struct Steps
{
    double largest = 0.0;
    double mean = 0.0;
};

/// Differences between a blurred 8-bit picture and the sums in double precision, rounded alike, at every `step`th
/// pixel of a part.
Steps stepsOff(const QImage &picture, double radius, const QRect &part, int step)
{
    const QImage result = blurred(picture, float(radius));
    const DiscBlurReference reference(picture, double(float(radius)));
    Steps steps;
    int count = 0;
    for (int y = part.top(); y <= part.bottom(); y += step) {
        for (int x = part.left(); x <= part.right(); x += step) {
            const Colour wanted = reference(x, y);
            for (std::size_t c = 0; c < 3; ++c) {
                const int got = result.constScanLine(y)[4 * std::size_t(x) + c];
                const double off = std::abs(got - std::nearbyint(wanted[c] * 255.0));
                steps.largest = std::max(steps.largest, off);
                steps.mean += off;
                ++count;
            }
        }
    }
    steps.mean /= count;
    return steps;
}

const QImage &photo()
{
    static const QImage picture = testPicture(QSize(1800, 1200));
    return picture;
}

constexpr double kRadii[] = {3.6, 6.0, 12.0, 20.5, 28.0, 36.0, 72.0, 120.0, 152.0, 480.0};

Steps onPhoto()
{
    Steps worst;
    for (const double radius : kRadii) {
        const Steps steps = stepsOff(photo(), radius, photo().rect(), radius > 100.0 ? 97 : 29);
        worst = {std::max(worst.largest, steps.largest), std::max(worst.mean, steps.mean)};
    }
    return worst;
}

/// A full-contrast disc of the blur's radius, in three places between the pixels, one a channel.
QImage ownDisc(double radius, QPoint middle)
{
    return paint(QSize(2 * middle.x(), 2 * middle.y()), QImage::Format_RGBX8888, [&](int x, int y, int channel) {
        const double dx = x - middle.x() - 0.37 * channel, dy = y - middle.y() - 1.6 * channel;
        return std::hypot(dx, dy) <= radius ? 1.0 : 0.0;
    });
}

QImage noiseAndLines(int side)
{
    return paint(QSize(side, side), QImage::Format_RGBX8888, [&](int x, int y, int channel) {
        return channel == 0 ? double(noise(x, y, 0) < 0.5) : channel == 1 ? double((x + y) & 1) : double(x == side / 2);
    });
}

double onHardest()
{
    double worst = 0.0;
    for (const double radius : kRadii) {
        const QPoint middle(int(2 * radius) + 24, int(2 * radius) + 24);
        const QRect peak(middle - QPoint(8, 8), QSize(20, 20));
        worst = std::max(worst, stepsOff(ownDisc(radius, middle), radius, peak, radius > 100.0 ? 3 : 1).largest);
        const QImage lines = noiseAndLines(2 * middle.x());
        worst = std::max(worst, stepsOff(lines, radius, lines.rect(), lines.width() / 12).largest);
    }
    return worst;
}

} // namespace

void addErrorRows()
{
    const char *const kSum = "sum in double precision, rounded alike";
    add(Figure{"error on a photo, largest, steps of 255", kSum, 1.0, [] { return onPhoto().largest; }});
    add(Figure{"error on a photo, mean at the worst radius", kSum, 0.1, [] { return onPhoto().mean; }});
    add(Figure{"error on the hardest content, largest", kSum, 2.0, onHardest});
}

} // namespace hazelmark::bench
