#include "ReferenceStamps.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace hazelmark {

ReferenceTip::ReferenceTip(const QImage &tip)
    : side(tip.width())
{
    const QImage pixels = tip.convertToFormat(QImage::Format_RGBA8888_Premultiplied);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < 4 * side; ++x)
            samples.push_back(pixels.constScanLine(y)[x] / 255.0);
}

double ReferenceTip::at(int x, int y, int component) const
{
    const int inX = std::clamp(x, 0, side - 1);
    const int inY = std::clamp(y, 0, side - 1);
    return samples[std::size_t((inY * side + inX) * 4 + component)];
}

void stampReference(QImage &buffer, StampPainter::Mode mode, const Color &color, float pointSize, const QImage &tip,
                    const std::vector<StampCentre> &centres)
{
    const ReferenceTip texels(tip);
    const bool erases = mode == StampPainter::Mode::Erase;
    const double modulated[] = {color.red, color.green, color.blue, color.alpha};
    for (const StampCentre &centre : centres) {
        for (int y = 0; y < buffer.height(); ++y) {
            for (int x = 0; x < buffer.width(); ++x) {
                const double s = (x + 0.5 - centre.x) / double(pointSize) + 0.5;
                const double t = (y + 0.5 - centre.y) / double(pointSize) + 0.5;
                if (s < 0 || s >= 1 || t < 0 || t >= 1)
                    continue;
                const double u = s * texels.side - 0.5;
                const double v = t * texels.side - 0.5;
                const int column = int(std::floor(u));
                const int line = int(std::floor(v));
                double sample[4];
                for (int c = 0; c < 4; ++c) {
                    const double across = u - column;
                    const double upper = std::lerp(texels.at(column, line, c), texels.at(column + 1, line, c), across);
                    const double lower =
                        std::lerp(texels.at(column, line + 1, c), texels.at(column + 1, line + 1, c), across);
                    sample[c] = std::lerp(upper, lower, v - line);
                }
                const double keep = 1 - sample[3] * (erases ? 1 : color.alpha);
                uchar *pixel = buffer.scanLine(y) + 4 * x;
                for (int c = 0; c < 4; ++c) {
                    const double added = erases ? 0 : 255 * sample[c] * modulated[c];
                    pixel[c] = uchar(std::min(std::floor(added + pixel[c] * keep + 0.5), 255.0));
                }
            }
        }
    }
}

int largestDifference(const QImage &a, const QImage &b)
{
    int largest = a.size() == b.size() && a.format() == b.format() ? 0 : 256;
    for (int y = 0; y < a.height() && largest < 256; ++y)
        for (int x = 0; x < 4 * a.width(); ++x)
            largest = std::max(largest, std::abs(a.constScanLine(y)[x] - b.constScanLine(y)[x]));
    return largest;
}

} // namespace hazelmark
