#include "HdrToSrgb.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace hazelmark::glass {

namespace {

constexpr uint8_t kPq = 16;
constexpr uint8_t kHlg = 18;
constexpr double kWhite = 203.0;        // cd/m²
constexpr double kPqPeak = 10000.0;     // cd/m²
constexpr double kHlgPeak = 1000.0;     // cd/m²
constexpr double kHlgSystemGamma = 1.2; // of a screen with that peak
constexpr float kShoulder = 0.75f;      // of white, where it begins
constexpr size_t kLevels = 65536;

double pqToLight(double sample)
{
    constexpr double m1 = 2610.0 / 16384, m2 = 2523.0 / 4096 * 128;
    constexpr double c1 = 3424.0 / 4096, c2 = 2413.0 / 4096 * 32, c3 = 2392.0 / 4096 * 32;
    const double power = std::pow(sample, 1.0 / m2);
    return kPqPeak / kWhite * std::pow(std::max(power - c1, 0.0) / (c2 - c3 * power), 1.0 / m1);
}

/// Light of the scene, 0 to 1.
double hlgToLight(double sample)
{
    constexpr double a = 0.17883277, b = 1 - 4 * a;
    const double c = 0.5 - a * std::log(4 * a);
    return sample <= 0.5 ? sample * sample / 3 : (std::exp((sample - c) / a) + b) / 12;
}

double toSrgbCurve(double light)
{
    return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

using Matrix = std::array<float, 9>;

/// Light in the primaries of sRGB.
Matrix matrixOf(uint8_t primaries)
{
    if (primaries == 9) // BT.2020
        return {1.660491f,  -0.587641f, -0.072850f, -0.124550f, 1.132900f,
                -0.008349f, -0.018151f, -0.100579f, 1.118730f};
    if (primaries == 12) // Display P3
        return {1.224940f, -0.224940f, 0.0f, -0.042057f, 1.042057f, 0.0f, -0.019638f, -0.078636f, 1.098274f};
    return {1, 0, 0, 0, 1, 0, 0, 0, 1};
}

float shouldered(float light)
{
    if (light <= kShoulder)
        return light;
    const float above = (light - kShoulder) / (1 - kShoulder);
    return kShoulder + (1 - kShoulder) * above / (1 + above);
}

} // namespace

struct HdrToSrgb::Tables
{
    std::vector<float> light = std::vector<float>(kLevels);
    std::vector<uint16_t> curve = std::vector<uint16_t>(kLevels); ///< by the root of the light
    Matrix matrix{};
    bool isHlg = false;

    uint16_t encoded(float value) const
    {
        return curve[size_t(std::sqrt(std::clamp(value, 0.0f, 1.0f)) * (kLevels - 1) + 0.5f)];
    }
};

bool isHighDynamicRange(const ColorCodes &colors)
{
    return colors.transfer == kPq || colors.transfer == kHlg;
}

HdrToSrgb::HdrToSrgb(const ColorCodes &colors)
    : m_tables(new Tables)
{
    m_tables->isHlg = colors.transfer == kHlg;
    m_tables->matrix = matrixOf(colors.primaries);
    for (size_t level = 0; level < kLevels; ++level) {
        const double sample = double(level) / (kLevels - 1);
        m_tables->light[level] = float(m_tables->isHlg ? hlgToLight(sample) : pqToLight(sample));
        m_tables->curve[level] = uint16_t(std::lround(toSrgbCurve(sample * sample) * (kLevels - 1)));
    }
}

HdrToSrgb::~HdrToSrgb()
{
    delete m_tables;
}

void HdrToSrgb::convert(uint16_t *rgba, size_t pixels) const
{
    const Matrix &m = m_tables->matrix;
    for (uint16_t *end = rgba + 4 * pixels; rgba != end; rgba += 4) {
        std::array<float, 3> light{};
        for (size_t channel = 0; channel < 3; ++channel)
            light[channel] = m_tables->light[rgba[channel]];
        if (m_tables->isHlg) {
            const float luminance = 0.2627f * light[0] + 0.6780f * light[1] + 0.0593f * light[2];
            const float gain =
                float(kHlgPeak / kWhite) * std::pow(std::max(luminance, 1e-6f), float(kHlgSystemGamma - 1));
            for (float &value : light)
                value *= gain;
        }
        std::array<float, 3> target{};
        for (size_t channel = 0; channel < 3; ++channel) {
            target[channel] = std::max(0.0f, m[3 * channel] * light[0] + m[3 * channel + 1] * light[1] +
                                                 m[3 * channel + 2] * light[2]);
        }
        const float most = std::max({target[0], target[1], target[2]});
        const float scale = most > kShoulder ? shouldered(most) / most : 1.0f;
        for (size_t channel = 0; channel < 3; ++channel)
            rgba[channel] = m_tables->encoded(target[channel] * scale);
    }
}

} // namespace hazelmark::glass
