#include "InterleavedRows.h"

#include "Taps.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/InterleavedRows.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace hazelmark::kernels {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t kChannels = 4;
constexpr std::size_t kAlpha = 3;

/// One pixel, or a part of it where vectors are shorter.
using DPixel = hn::CappedTag<float, kChannels>;
using DF = hn::CappedTag<float, 16>;
using VF = hn::Vec<DF>;

/// `kTaps`: their number, known to the compiler; 0 where it is `taps`. The results are the same.
template <int kTaps>
HWY_INLINE void scalePixelsBy(const float *row, const int *first, const float *weights, int taps, float *out,
                              std::size_t width)
{
    const DPixel d;
    const int count = kTaps > 0 ? kTaps : taps;
    for (std::size_t i = 0; i < width; ++i, weights += count) {
        for (std::size_t c = 0; c < kChannels; c += hn::Lanes(d)) {
            const float *pixel = row + std::ptrdiff_t(kChannels) * first[i] + c;
            auto sum = hn::Mul(hn::Set(d, weights[0]), hn::LoadU(d, pixel));
            for (int t = 1; t < count; ++t)
                sum = hn::MulAdd(hn::Set(d, weights[t]), hn::LoadU(d, pixel + kChannels * std::size_t(t)), sum);
            hn::StoreU(sum, d, out + kChannels * i + c);
        }
    }
}

void ScalePixels(const float *row, const int *first, const float *weights, int taps, float *out, std::size_t width)
{
    const auto scale = [=](auto count) {
        scalePixelsBy<decltype(count)::value>(row, first, weights, taps, out, width);
    };
    withTaps(taps, scale);
}

void BlendPixels(const float *over, const float *weights, float *pixels, std::size_t width)
{
    const DPixel d;
    for (std::size_t i = 0; i < width; ++i) {
        for (std::size_t c = kChannels * i; c < kChannels * (i + 1); c += hn::Lanes(d)) {
            const auto below = hn::LoadU(d, pixels + c);
            const auto beyond = hn::Sub(hn::LoadU(d, over + c), below);
            hn::StoreU(hn::MulAdd(hn::Set(d, weights[i]), beyond, below), d, pixels + c);
        }
    }
}

void PremultiplyPixels(float *pixels, std::size_t width)
{
    const DPixel d;
    for (float *pixel = pixels; pixel != pixels + kChannels * width; pixel += kChannels) {
        const float alpha = pixel[kAlpha];
        for (std::size_t c = 0; c < kChannels; c += hn::Lanes(d))
            hn::StoreU(hn::Mul(hn::LoadU(d, pixel + c), hn::Set(d, alpha)), d, pixel + c);
        pixel[kAlpha] = alpha;
    }
}

void UnpremultiplyPixels(float *pixels, std::size_t width)
{
    const DPixel d;
    for (float *pixel = pixels; pixel != pixels + kChannels * width; pixel += kChannels) {
        const float alpha = pixel[kAlpha];
        const float inverse = alpha > 0.0F ? 1.0F / alpha : 0.0F;
        for (std::size_t c = 0; c < kChannels; c += hn::Lanes(d))
            hn::StoreU(hn::Mul(hn::LoadU(d, pixel + c), hn::Set(d, inverse)), d, pixel + c);
        pixel[kAlpha] = alpha;
    }
}

HWY_INLINE VF unitOf(const std::uint16_t *samples)
{
    const DF df;
    const hn::Rebind<std::uint16_t, DF> d16;
    const hn::RebindToSigned<DF> di;
    return hn::Mul(hn::ConvertTo(df, hn::PromoteTo(di, hn::LoadU(d16, samples))), hn::Set(df, 1.0F / 65535.0F));
}

void InterleaveSamples(const std::uint16_t *const *planes, int channels, float *pixels, std::size_t width)
{
    const DF df;
    for (std::size_t i = 0; i < width; i += hn::Lanes(df)) {
        const VF alpha = channels == 4 ? unitOf(planes[kAlpha] + i) : hn::Set(df, 1.0F);
        hn::StoreInterleaved4(unitOf(planes[0] + i), unitOf(planes[1] + i), unitOf(planes[2] + i), alpha, df,
                              pixels + kChannels * i);
    }
}

} // namespace HWY_NAMESPACE
} // namespace hazelmark::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace hazelmark::kernels {

HWY_EXPORT(ScalePixels);
HWY_EXPORT(BlendPixels);
HWY_EXPORT(PremultiplyPixels);
HWY_EXPORT(UnpremultiplyPixels);
HWY_EXPORT(InterleaveSamples);

void scalePixels(const float *row, const int *first, const float *weights, int taps, float *out, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(ScalePixels)(row, first, weights, taps, out, width);
}

void blendPixels(const float *over, const float *weights, float *pixels, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(BlendPixels)(over, weights, pixels, width);
}

void premultiplyPixels(float *pixels, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(PremultiplyPixels)(pixels, width);
}

void unpremultiplyPixels(float *pixels, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(UnpremultiplyPixels)(pixels, width);
}

void interleaveSamples(const std::uint16_t *const *planes, int channels, float *pixels, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(InterleaveSamples)(planes, channels, pixels, width);
}

} // namespace hazelmark::kernels

#endif
