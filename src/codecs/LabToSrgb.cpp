#include "LabToSrgb.h"

namespace hazelmark {

namespace {

template <typename Sample>
void convert(void *transform, const uint16_t *lab, Sample *rgbx, int pixelCount)
{
    cmsDoTransform(transform, lab, rgbx, cmsUInt32Number(pixelCount));
    for (int x = 0; x < pixelCount; ++x)
        rgbx[4 * x + 3] = Sample(~Sample(0));
}

} // namespace

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
    convert(m_bits8.get(), lab, rgbx, pixelCount);
}

void LabToSrgb::convertRow(const uint16_t *lab, uint16_t *rgbx, int pixelCount) const
{
    convert(m_bits16.get(), lab, rgbx, pixelCount);
}

} // namespace hazelmark
