#include "LabToSrgb.h"

namespace hazelmark {

LabToSrgb::LabToSrgb()
{
    const ProfileHandle source(cmsCreateLab4Profile(nullptr));
    const ProfileHandle target(cmsCreate_sRGBProfile());
    if (!source || !target)
        return;
    // Not optimised: a table of the whole Lab cube would be several levels off between its nodes.
    constexpr cmsUInt32Number kFlags = cmsFLAGS_NOCACHE | cmsFLAGS_NOOPTIMIZE;
    m_bits8.reset(
        cmsCreateTransform(source.get(), TYPE_Lab_16, target.get(), TYPE_RGBA_8, INTENT_RELATIVE_COLORIMETRIC, kFlags));
    m_bits16.reset(cmsCreateTransform(source.get(), TYPE_Lab_16, target.get(), TYPE_RGBA_16,
                                      INTENT_RELATIVE_COLORIMETRIC, kFlags));
}

void LabToSrgb::convertRow(const uint16_t *lab, uint8_t *rgbx, int pixelCount) const
{
    transformToRgbx(m_bits8, lab, rgbx, pixelCount);
}

void LabToSrgb::convertRow(const uint16_t *lab, uint16_t *rgbx, int pixelCount) const
{
    transformToRgbx(m_bits16, lab, rgbx, pixelCount);
}

} // namespace hazelmark
