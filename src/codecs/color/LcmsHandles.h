#pragma once

#include <QByteArray>

#include <memory>

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

} // namespace hazelmark
