#include "ToSrgb.h"

#include "Log.h"

namespace hazelmark {

namespace {

/// Runs a row through a transform to RGBA and fills the fourth samples, which the library leaves alone.
template <typename From, typename Sample>
void transformRow(const TransformHandle &transform, const From *source, Sample *rgbx, int pixelCount)
{
    cmsDoTransform(transform.get(), source, rgbx, cmsUInt32Number(pixelCount));
    for (int x = 0; x < pixelCount; ++x)
        rgbx[4 * x + 3] = Sample(~Sample(0));
}

/// (1 - ink)(1 - black), rounded to nearest.
template <typename Sample>
void convertRowPlainly(const Sample *cmyk, Sample *rgbx, int pixelCount)
{
    constexpr uint64_t kMax = Sample(~Sample(0));
    for (int x = 0; x < pixelCount; ++x, cmyk += 4, rgbx += 4) {
        const uint64_t light = kMax - cmyk[3];
        for (int channel = 0; channel < 3; ++channel)
            rgbx[channel] = Sample(((kMax - cmyk[channel]) * light + kMax / 2) / kMax);
        rgbx[3] = Sample(kMax);
    }
}

TransformHandle transformToSrgb(const ProfileHandle &source, cmsUInt32Number sourceLayout, cmsUInt32Number layout,
                                cmsUInt32Number intent, cmsUInt32Number flags)
{
    const ProfileHandle target(cmsCreate_sRGBProfile());
    return TransformHandle(cmsCreateTransform(source.get(), sourceLayout, target.get(), layout, intent, flags));
}

} // namespace

ToSrgb ToSrgb::fromCmyk(const QByteArray &iccProfile)
{
    ToSrgb made;
    if (iccProfile.isEmpty())
        return made;
    const ProfileHandle source = openProfile(iccProfile);
    if (!source || cmsGetColorSpace(source.get()) != cmsSigCmykData) {
        qCWarning(lcCodecs) << "The embedded profile is no CMYK profile; a plain conversion is used.";
        return made;
    }
    constexpr cmsUInt32Number kFlags = cmsFLAGS_NOCACHE | cmsFLAGS_HIGHRESPRECALC;
    made.m_bits8 = transformToSrgb(source, TYPE_CMYK_8, TYPE_RGBA_8, INTENT_PERCEPTUAL, kFlags);
    made.m_bits16 = transformToSrgb(source, TYPE_CMYK_16, TYPE_RGBA_16, INTENT_PERCEPTUAL, kFlags);
    if (!made.isValid())
        qCWarning(lcCodecs) << "The embedded CMYK profile cannot be used; a plain conversion is.";
    return made;
}

void ToSrgb::convertRow(const uint8_t *cmyk, uint8_t *rgbx, int pixelCount) const
{
    isValid() ? transformRow(m_bits8, cmyk, rgbx, pixelCount) : convertRowPlainly(cmyk, rgbx, pixelCount);
}

void ToSrgb::convertRow(const uint16_t *cmyk, uint16_t *rgbx, int pixelCount) const
{
    isValid() ? transformRow(m_bits16, cmyk, rgbx, pixelCount) : convertRowPlainly(cmyk, rgbx, pixelCount);
}

ToSrgb ToSrgb::fromLab()
{
    // Not optimised: a table of the whole Lab cube would be several levels off between its nodes.
    constexpr cmsUInt32Number kFlags = cmsFLAGS_NOCACHE | cmsFLAGS_NOOPTIMIZE;
    const ProfileHandle source(cmsCreateLab4Profile(nullptr));
    ToSrgb made;
    made.m_bits8 = transformToSrgb(source, TYPE_Lab_16, TYPE_RGBA_8, INTENT_RELATIVE_COLORIMETRIC, kFlags);
    made.m_bits16 = transformToSrgb(source, TYPE_Lab_16, TYPE_RGBA_16, INTENT_RELATIVE_COLORIMETRIC, kFlags);
    return made;
}

void ToSrgb::convertLabRow(const uint16_t *lab, uint8_t *rgbx, int pixelCount) const
{
    transformRow(m_bits8, lab, rgbx, pixelCount);
}

void ToSrgb::convertLabRow(const uint16_t *lab, uint16_t *rgbx, int pixelCount) const
{
    transformRow(m_bits16, lab, rgbx, pixelCount);
}

} // namespace hazelmark
