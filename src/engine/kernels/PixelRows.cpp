#include "PixelRows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/PixelRows.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace hazelmark::kernels {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using DF = hn::ScalableTag<float>;
using VF = hn::Vec<DF>;
template <typename Sample>
using SampleTag = hn::Rebind<Sample, DF>;
template <typename Sample>
using Samples = hn::Vec<SampleTag<Sample>>;

template <typename Sample>
constexpr float kFull = float(Sample(~Sample(0)));

/// The product with the rounded reciprocal is within two units in the last place of the quotient, far less than what
/// would change the sample on the way back.
template <typename Sample>
HWY_INLINE VF toUnit(Samples<Sample> samples)
{
    const DF df;
    const hn::RebindToSigned<DF> di;
    return hn::Mul(hn::ConvertTo(df, hn::PromoteTo(di, samples)), hn::Set(df, 1.0f / kFull<Sample>));
}

template <typename Sample>
HWY_INLINE Samples<Sample> toSample(VF unit)
{
    const DF df;
    const VF positive = hn::IfThenElseZero(hn::Gt(unit, hn::Zero(df)), unit); // false for NaN, which becomes 0
    const VF scaled = hn::Mul(hn::Min(positive, hn::Set(df, 1.0f)), hn::Set(df, kFull<Sample>));
    return hn::DemoteTo(SampleTag<Sample>(), hn::NearestInt(scaled));
}

template <typename Sample>
float unitOf(Sample sample)
{
    return float(sample) * (1.0f / kFull<Sample>);
}

template <typename Sample>
Sample sampleOf(float unit)
{
    const float positive = unit > 0.0f ? unit : 0.0f;
    return Sample(__builtin_lrintf((positive < 1.0f ? positive : 1.0f) * kFull<Sample>));
}

/// Calls step(offset) for every full vector of the row and scalar(i) for the pixels of a last incomplete one.
template <typename Step, typename Scalar>
HWY_INLINE void forRow(std::size_t width, Step step, Scalar scalar)
{
    const std::size_t lanes = hn::Lanes(DF());
    std::size_t i = 0;
    for (; i + lanes <= width; i += lanes)
        step(i);
    for (; i < width; ++i)
        scalar(i);
}

template <typename Sample>
void unpackRgb(const Sample *pixels, float *const *planes, int channels, std::size_t width)
{
    const DF df;
    const SampleTag<Sample> ds;
    forRow(
        width,
        [&](std::size_t i) {
            Samples<Sample> r, g, b, a;
            hn::LoadInterleaved4(ds, pixels + 4 * i, r, g, b, a);
            hn::StoreU(toUnit<Sample>(r), df, planes[0] + i);
            hn::StoreU(toUnit<Sample>(g), df, planes[1] + i);
            hn::StoreU(toUnit<Sample>(b), df, planes[2] + i);
            if (channels == 4)
                hn::StoreU(toUnit<Sample>(a), df, planes[3] + i);
        },
        [&](std::size_t i) {
            for (int c = 0; c < channels; ++c)
                planes[c][i] = unitOf(pixels[4 * i + std::size_t(c)]);
        });
}

template <typename Sample>
void unpackGray(const Sample *pixels, float *plane, std::size_t width)
{
    const DF df;
    const SampleTag<Sample> ds;
    forRow(
        width, [&](std::size_t i) { hn::StoreU(toUnit<Sample>(hn::LoadU(ds, pixels + i)), df, plane + i); },
        [&](std::size_t i) { plane[i] = unitOf(pixels[i]); });
}

template <typename Sample>
void unpackChannel(const Sample *pixels, int channel, float *plane, std::size_t width)
{
    const DF df;
    const SampleTag<Sample> ds;
    forRow(
        width,
        [&](std::size_t i) {
            Samples<Sample> r, g, b, a;
            hn::LoadInterleaved4(ds, pixels + 4 * i, r, g, b, a);
            const auto wanted = channel == 0 ? r : channel == 1 ? g : channel == 2 ? b : a;
            hn::StoreU(toUnit<Sample>(wanted), df, plane + i);
        },
        [&](std::size_t i) { plane[i] = unitOf(pixels[4 * i + std::size_t(channel)]); });
}

template <typename Sample>
void packRgb(const float *const *planes, int channels, Sample *pixels, std::size_t width)
{
    const DF df;
    const SampleTag<Sample> ds;
    const Sample full = Sample(~Sample(0));
    forRow(
        width,
        [&](std::size_t i) {
            const auto r = toSample<Sample>(hn::LoadU(df, planes[0] + i));
            const auto g = toSample<Sample>(hn::LoadU(df, planes[1] + i));
            const auto b = toSample<Sample>(hn::LoadU(df, planes[2] + i));
            const auto a = channels == 4 ? toSample<Sample>(hn::LoadU(df, planes[3] + i)) : hn::Set(ds, full);
            hn::StoreInterleaved4(r, g, b, a, ds, pixels + 4 * i);
        },
        [&](std::size_t i) {
            for (int c = 0; c < 4; ++c)
                pixels[4 * i + std::size_t(c)] = c < channels ? sampleOf<Sample>(planes[c][i]) : full;
        });
}

template <typename Sample>
void pack(const float *values, Sample *samples, std::size_t count)
{
    const DF df;
    const SampleTag<Sample> ds;
    forRow(
        count, [&](std::size_t i) { hn::StoreU(toSample<Sample>(hn::LoadU(df, values + i)), ds, samples + i); },
        [&](std::size_t i) { samples[i] = sampleOf<Sample>(values[i]); });
}

void premultiplyRow(float *const *colours, const float *alpha, std::size_t width)
{
    const DF df;
    for (std::size_t i = 0; i < width; i += hn::Lanes(df)) {
        const VF a = hn::LoadU(df, alpha + i);
        for (int c = 0; c < 3; ++c)
            hn::StoreU(hn::Mul(hn::LoadU(df, colours[c] + i), a), df, colours[c] + i);
    }
}

void unpremultiplyRow(float *const *colours, const float *alpha, std::size_t width)
{
    const DF df;
    for (std::size_t i = 0; i < width; i += hn::Lanes(df)) {
        const VF a = hn::LoadU(df, alpha + i);
        const VF inverse = hn::IfThenElseZero(hn::Gt(a, hn::Zero(df)), hn::Div(hn::Set(df, 1.0f), a));
        for (int c = 0; c < 3; ++c)
            hn::StoreU(hn::Mul(hn::LoadU(df, colours[c] + i), inverse), df, colours[c] + i);
    }
}

template <typename Sample>
constexpr SampleRows<Sample> kRows{unpackRgb<Sample>, unpackGray<Sample>, unpackChannel<Sample>, packRgb<Sample>,
                                   pack<Sample>};

const PixelRows *Table()
{
    static constexpr PixelRows table{kRows<std::uint8_t>, kRows<std::uint16_t>, premultiplyRow, unpremultiplyRow};
    return &table;
}

} // namespace HWY_NAMESPACE
} // namespace hazelmark::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace hazelmark::kernels {

HWY_EXPORT(Table);

const PixelRows &pixelRows()
{
    return *HWY_DYNAMIC_DISPATCH(Table)();
}

} // namespace hazelmark::kernels

#endif
