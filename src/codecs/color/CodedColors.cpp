#include "CodedColors.h"

#include "LcmsHandles.h"
#include "ProfileMaking.h"

#include <array>
#include <optional>

namespace hazelmark {

namespace {

struct Gamut
{
    cmsCIExyY white;
    cmsCIExyYTRIPLE primaries;
};

constexpr cmsCIExyY kD65 = {0.3127, 0.3290, 1.0};
constexpr cmsCIExyY kC = {0.310, 0.316, 1.0};
constexpr cmsCIExyY kTheatre = {0.314, 0.351, 1.0};

constexpr cmsCIExyYTRIPLE triple(double rx, double ry, double gx, double gy, double bx, double by)
{
    return {{rx, ry, 1.0}, {gx, gy, 1.0}, {bx, by, 1.0}};
}

constexpr int kUnspecified = 2;
constexpr int kSrgbPrimaries = 1;
constexpr int kSrgbTransfer = 13;

std::optional<Gamut> gamutOf(int primaries)
{
    switch (primaries) {
    case kUnspecified:
    case kSrgbPrimaries:
        return Gamut{kD65, triple(0.640, 0.330, 0.300, 0.600, 0.150, 0.060)};
    case 4:
        return Gamut{kC, triple(0.67, 0.33, 0.21, 0.71, 0.14, 0.08)};
    case 5:
        return Gamut{kD65, triple(0.64, 0.33, 0.29, 0.60, 0.15, 0.06)};
    case 6:
    case 7:
        return Gamut{kD65, triple(0.630, 0.340, 0.310, 0.595, 0.155, 0.070)};
    case 8:
        return Gamut{kC, triple(0.681, 0.319, 0.243, 0.692, 0.145, 0.049)};
    case 9:
        return Gamut{kD65, triple(0.708, 0.292, 0.170, 0.797, 0.131, 0.046)};
    case 11:
        return Gamut{kTheatre, triple(0.680, 0.320, 0.265, 0.690, 0.150, 0.060)};
    case 12:
        return Gamut{kD65, triple(0.680, 0.320, 0.265, 0.690, 0.150, 0.060)};
    case 22:
        return Gamut{kD65, triple(0.630, 0.340, 0.295, 0.605, 0.155, 0.077)};
    default:
        return std::nullopt;
    }
}

/// Of the form ((sample + b) / (1 + b)) ^ gamma above `knee`, and sample / slope below.
cmsToneCurve *kneedCurve(double gamma, double b, double slope, double knee)
{
    const std::array<double, 5> parameters = {gamma, 1.0 / (1.0 + b), b / (1.0 + b), 1.0 / slope, knee};
    return cmsBuildParametricToneCurve(nullptr, 4, parameters.data());
}

ToneCurveHandle curveOf(int transfer)
{
    switch (transfer) {
    case 1: // the television curves
    case 6:
    case 14:
    case 15:
        return ToneCurveHandle(kneedCurve(1.0 / 0.45, 0.099296826809442, 4.5, 0.081242858298635));
    case 4:
        return ToneCurveHandle(cmsBuildGamma(nullptr, 2.2));
    case 5:
        return ToneCurveHandle(cmsBuildGamma(nullptr, 2.8));
    case 7:
        return ToneCurveHandle(kneedCurve(1.0 / 0.45, 0.1115, 4.0, 0.0912));
    case 8:
        return ToneCurveHandle(cmsBuildGamma(nullptr, 1.0));
    case 17:
        return ToneCurveHandle(cmsBuildGamma(nullptr, 2.6));
    case kUnspecified:
    case kSrgbTransfer:
        return ToneCurveHandle(kneedCurve(2.4, 0.055, 12.92, 0.04045));
    default:
        return {};
    }
}

} // namespace

QByteArray profileOfCodes(int primaries, int transfer, bool isGray)
{
    const bool isSrgb = (primaries == kSrgbPrimaries || primaries == kUnspecified || isGray) &&
                        (transfer == kSrgbTransfer || transfer == kUnspecified);
    const std::optional<Gamut> gamut = gamutOf(primaries);
    const ToneCurveHandle curve = isSrgb ? ToneCurveHandle() : curveOf(transfer);
    if (!gamut || !curve)
        return {};
    const std::array<cmsToneCurve *, 3> curves = {curve.get(), curve.get(), curve.get()};
    const ProfileHandle profile(isGray ? cmsCreateGrayProfile(&gamut->white, curve.get())
                                       : cmsCreateRGBProfile(&gamut->white, &gamut->primaries, curves.data()));
    if (!profile)
        return {};
    setDescription(
        profile.get(),
        QByteArray("H.273 " + QByteArray::number(primaries) + '/' + QByteArray::number(transfer)).constData());
    return savedProfile(profile.get());
}

} // namespace hazelmark
