#include "TestPicture.h"

#include "LargeMemory.h"
#include "ParallelFor.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace hazelmark::bench {

namespace {

float hashed(int x, int y, int layer)
{
    std::uint32_t h = std::uint32_t(x) * 0x9E3779B1u ^ std::uint32_t(y) * 0x85EBCA77u ^ std::uint32_t(layer) << 20;
    h = (h ^ h >> 15) * 0x2C1B3C6Du;
    h = (h ^ h >> 12) * 0x297A2D39u;
    return float((h ^ h >> 15) >> 8) / float(1 << 24);
}

/// Noise with blobs `cell` pixels wide.
float smoothNoise(float x, float y, float cell, int layer)
{
    const float u = x / cell, v = y / cell;
    const int i = int(u), j = int(v);
    const auto eased = [](float t) { return t * t * (3.0f - 2.0f * t); };
    const float s = eased(u - float(i)), t = eased(v - float(j));
    const float below = std::lerp(hashed(i, j, layer), hashed(i + 1, j, layer), s);
    const float above = std::lerp(hashed(i, j + 1, layer), hashed(i + 1, j + 1, layer), s);
    return std::lerp(below, above, t);
}

/// A plain disc somewhere in every square of 700 pixels: something with an edge.
float thing(int x, int y)
{
    constexpr int kSquare = 700;
    const int i = x / kSquare, j = y / kSquare;
    const float radius = 60.0f + 180.0f * hashed(i, j, 90);
    const float dx = float(x % kSquare) - 350.0f, dy = float(y % kSquare) - 350.0f;
    const float inside = std::clamp(radius - std::hypot(dx, dy) + 0.5f, 0.0f, 1.0f);
    return inside * (hashed(i, j, 91) - 0.5f);
}

} // namespace

QImage testPicture(QSize size)
{
    QImage picture = makeLargeBitmap(size, QImage::Format_RGBX8888); // as the decoders hand theirs out
    uchar *const bits = picture.bits();
    parallelFor(size.height(), defaultThreadCount(), [&](int y) {
        uchar *line = bits + y * picture.bytesPerLine();
        for (int x = 0; x < size.width(); ++x) {
            float clouds = 0.0f, weight = 0.3f;
            int layer = 0;
            for (float cell = 900.0f; cell > 3.0f; cell /= 2.3f, weight *= 0.6f)
                clouds += weight * (smoothNoise(float(x), float(y), cell, layer++) - 0.5f);
            const float sky = 0.65f - 0.35f * float(y) / float(size.height());
            const float light = sky + clouds + 0.7f * thing(x, y);
            for (int c = 0; c < 3; ++c) {
                const float tint = 0.06f * float(c) * (smoothNoise(float(x), float(y), 400.0f, 50) - 0.3f);
                const float grain = 0.03f * (hashed(x, y, 60 + c) - 0.5f);
                line[4 * x + c] = uchar(std::lround(255.0f * std::clamp(light + tint + grain, 0.0f, 1.0f)));
            }
            line[4 * x + 3] = 255;
        }
    });
    return picture;
}

} // namespace hazelmark::bench
