#include "CmykToSrgb.h"

#include "LcmsHandles.h"
#include "Log.h"

namespace hazelmark {

struct CmykToSrgb::Transforms
{
    TransformHandle bits8;
    TransformHandle bits16;
};

namespace {

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

} // namespace

CmykToSrgb::CmykToSrgb(const QByteArray &iccProfile)
{
    if (iccProfile.isEmpty())
        return;
    const ProfileHandle source = openProfile(iccProfile);
    if (!source || cmsGetColorSpace(source.get()) != cmsSigCmykData) {
        qCWarning(lcCodecs) << "The embedded profile is no CMYK profile; a plain conversion is used.";
        return;
    }
    const ProfileHandle target(cmsCreate_sRGBProfile());
    auto transforms = std::make_unique<Transforms>();
    transforms->bits8.reset(cmsCreateTransform(source.get(), TYPE_CMYK_8, target.get(), TYPE_RGBA_8, INTENT_PERCEPTUAL,
                                               cmsFLAGS_NOCACHE | cmsFLAGS_HIGHRESPRECALC));
    transforms->bits16.reset(cmsCreateTransform(source.get(), TYPE_CMYK_16, target.get(), TYPE_RGBA_16,
                                                INTENT_PERCEPTUAL, cmsFLAGS_NOCACHE | cmsFLAGS_HIGHRESPRECALC));
    if (transforms->bits8 && transforms->bits16)
        m_transforms = std::move(transforms);
    else
        qCWarning(lcCodecs) << "The embedded CMYK profile cannot be used; a plain conversion is.";
}

CmykToSrgb::~CmykToSrgb() = default;

void CmykToSrgb::convertRow(const uint8_t *cmyk, uint8_t *rgbx, int pixelCount) const
{
    if (!m_transforms)
        return convertRowPlainly(cmyk, rgbx, pixelCount);
    transformToRgbx(m_transforms->bits8, cmyk, rgbx, pixelCount);
}

void CmykToSrgb::convertRow(const uint16_t *cmyk, uint16_t *rgbx, int pixelCount) const
{
    if (!m_transforms)
        return convertRowPlainly(cmyk, rgbx, pixelCount);
    transformToRgbx(m_transforms->bits16, cmyk, rgbx, pixelCount);
}

} // namespace hazelmark
