#include "ToneRows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/ToneRows.cpp"
#include <hwy/foreach_target.h>

#include <hwy/contrib/math/math-inl.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace hazelmark::kernels {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using DF = hn::ScalableTag<float>;
using VF = hn::Vec<DF>;

HWY_INLINE VF mix(VF foreground, VF background, VF weight)
{
    return hn::MulAdd(weight, hn::Sub(foreground, background), background);
}

void BlendOpaque(const float *foreground, const float *background, const float *weight, float *result,
                 std::size_t width)
{
    const DF df;
    for (std::size_t i = 0; i < width; i += hn::Lanes(df))
        hn::StoreU(mix(hn::LoadU(df, foreground + i), hn::LoadU(df, background + i), hn::LoadU(df, weight + i)), df,
                   result + i);
}

void BlendWithAlpha(const float *const *foreground, const float *const *background, const float *weight,
                    float *const *result, std::size_t width)
{
    const DF df;
    const VF zero = hn::Zero(df);
    for (std::size_t i = 0; i < width; i += hn::Lanes(df)) {
        const VF k = hn::LoadU(df, weight + i);
        const VF fgAlpha = hn::LoadU(df, foreground[3] + i);
        const VF bgAlpha = hn::LoadU(df, background[3] + i);
        const VF alpha = mix(fgAlpha, bgAlpha, k);
        const VF inverse = hn::IfThenElseZero(hn::Gt(alpha, zero), hn::Div(hn::Set(df, 1.0f), alpha));
        const auto untouched = hn::Le(k, zero);
        for (int c = 0; c < 3; ++c) {
            const VF bg = hn::LoadU(df, background[c] + i);
            const VF fg = hn::LoadU(df, foreground[c] + i);
            const VF mixed = hn::Mul(mix(hn::Mul(fg, fgAlpha), hn::Mul(bg, bgAlpha), k), inverse);
            hn::StoreU(hn::IfThenElse(untouched, bg, mixed), df, result[c] + i);
        }
        hn::StoreU(alpha, df, result[3] + i);
    }
}

HWY_INLINE VF power(VF base, float exponent)
{
    const DF df;
    return hn::Exp(df, hn::Mul(hn::Log(df, base), hn::Set(df, exponent)));
}

void ScaleLinearLight(float *row, float gain, std::size_t width)
{
    const DF df;
    const VF gains = hn::Set(df, gain);
    // Keeps the logarithm away from 0 in lanes that take the straight part of the curve anyway.
    const VF least = hn::Set(df, 1e-6f);
    for (std::size_t i = 0; i < width; i += hn::Lanes(df)) {
        const VF encoded = hn::LoadU(df, row + i);
        const VF toe = hn::Mul(encoded, hn::Set(df, 1.0f / 12.92f));
        const VF shifted = hn::Add(hn::Max(encoded, least), hn::Set(df, 0.055f));
        const VF curved = power(hn::Mul(shifted, hn::Set(df, 1.0f / 1.055f)), 2.4f);
        const VF decoded = hn::IfThenElse(hn::Le(encoded, hn::Set(df, 0.04045f)), toe, curved);
        const VF linear = hn::Mul(decoded, gains);
        const VF root = power(hn::Max(linear, least), 1.0f / 2.4f);
        const VF raised = hn::MulSub(hn::Set(df, 1.055f), root, hn::Set(df, 0.055f));
        const VF straight = hn::Mul(linear, hn::Set(df, 12.92f));
        hn::StoreU(hn::IfThenElse(hn::Le(linear, hn::Set(df, 0.0031308f)), straight, raised), df, row + i);
    }
}

} // namespace HWY_NAMESPACE
} // namespace hazelmark::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace hazelmark::kernels {

HWY_EXPORT(BlendOpaque);
HWY_EXPORT(BlendWithAlpha);
HWY_EXPORT(ScaleLinearLight);

void blendOpaque(const float *foreground, const float *background, const float *weight, float *result,
                 std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(BlendOpaque)(foreground, background, weight, result, width);
}

void blendWithAlpha(const float *const *foreground, const float *const *background, const float *weight,
                    float *const *result, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(BlendWithAlpha)(foreground, background, weight, result, width);
}

void scaleLinearLight(float *row, float gain, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(ScaleLinearLight)(row, gain, width);
}

} // namespace hazelmark::kernels

#endif
