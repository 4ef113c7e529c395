#pragma once

#include <QByteArray>

#include <memory>
#include <type_traits>

#include <lcms2.h>

namespace hazelmark {

struct CloseProfile
{
    void operator()(void *profile) const { cmsCloseProfile(profile); }
};
using ProfileHandle = std::unique_ptr<void, CloseProfile>;

struct DeleteTransform
{
    void operator()(void *transform) const { cmsDeleteTransform(transform); }
};
using TransformHandle = std::unique_ptr<void, DeleteTransform>;

struct FreeToneCurve
{
    void operator()(cmsToneCurve *curve) const { cmsFreeToneCurve(curve); }
};
using ToneCurveHandle = std::unique_ptr<cmsToneCurve, FreeToneCurve>;

/// Null when the bytes are no profile.
inline ProfileHandle openProfile(const QByteArray &iccProfile)
{
    if (iccProfile.isEmpty())
        return {};
    return ProfileHandle(cmsOpenProfileFromMem(iccProfile.constData(), cmsUInt32Number(iccProfile.size())));
}

/// Runs a row through a transform to RGBA and fills the fourth samples, which the library leaves alone.
template <typename From, typename Sample>
void transformToRgbx(const TransformHandle &transform, const From *source, Sample *rgbx, int pixelCount)
{
    cmsDoTransform(transform.get(), source, rgbx, cmsUInt32Number(pixelCount));
    for (int x = 0; x < pixelCount; ++x)
        rgbx[4 * x + 3] = Sample(~Sample(0));
}

} // namespace hazelmark
