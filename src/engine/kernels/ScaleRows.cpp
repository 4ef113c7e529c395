#include "ScaleRows.h"

#include "Taps.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/ScaleRows.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace hazelmark::kernels {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using DF = hn::ScalableTag<float>;
using VF = hn::Vec<DF>;

void ScaleRow(const float *row, const int *first, const float *weights, int taps, float *out, std::size_t width)
{
    const DF df;
    const hn::RebindToSigned<DF> di;
    const std::size_t lanes = hn::Lanes(df);
    const auto lane = hn::Mul(hn::Iota(di, 0), hn::Set(di, taps));
    std::size_t i = 0;
    for (; i + lanes <= width; i += lanes) {
        const auto start = hn::LoadU(di, first + i);
        const float *block = weights + i * std::size_t(taps);
        VF sum = hn::Zero(df);
        for (int t = 0; t < taps; ++t)
            sum = hn::MulAdd(hn::GatherIndex(df, block + t, lane), hn::GatherIndex(df, row + t, start), sum);
        hn::StoreU(sum, df, out + i);
    }
    for (; i < width; ++i) {
        float sum = 0.0f;
        for (int t = 0; t < taps; ++t)
            sum += weights[i * std::size_t(taps) + std::size_t(t)] * row[first[i] + t];
        out[i] = sum;
    }
}

/// `kTaps`: their number, known to the compiler; 0 where it is `taps`. The results are the same.
template <int kTaps>
HWY_INLINE void weighRowsBy(const float *const *rows, const float *weights, int taps, float *out, std::size_t width)
{
    const DF df;
    if constexpr (kTaps > 0) {
        // Taken out of memory once: as far as the compiler knows, `out` may be where they lie.
        const float *row[kTaps];
        VF weight[kTaps];
        for (int t = 0; t < kTaps; ++t) {
            row[t] = rows[t];
            weight[t] = hn::Set(df, weights[t]);
        }
        for (std::size_t i = 0; i < width; i += hn::Lanes(df)) {
            VF sum = hn::Zero(df);
            for (int t = 0; t < kTaps; ++t)
                sum = hn::MulAdd(weight[t], hn::LoadU(df, row[t] + i), sum);
            hn::StoreU(sum, df, out + i);
        }
    } else {
        for (std::size_t i = 0; i < width; i += hn::Lanes(df)) {
            VF sum = hn::Zero(df);
            for (int t = 0; t < taps; ++t)
                sum = hn::MulAdd(hn::Set(df, weights[t]), hn::LoadU(df, rows[t] + i), sum);
            hn::StoreU(sum, df, out + i);
        }
    }
}

void WeighRows(const float *const *rows, const float *weights, int taps, float *out, std::size_t width)
{
    withTaps(taps, [=](auto count) { weighRowsBy<decltype(count)::value>(rows, weights, taps, out, width); });
}

void ClampToUnit(float *row, std::size_t width)
{
    const DF df;
    const VF one = hn::Set(df, 1.0f);
    const VF nearlyOne = hn::Set(df, 1.0f - 0x1p-20f);
    for (std::size_t i = 0; i < width; i += hn::Lanes(df)) {
        const VF value = hn::Max(hn::LoadU(df, row + i), hn::Zero(df));
        hn::StoreU(hn::IfThenElse(hn::Ge(value, nearlyOne), one, value), df, row + i);
    }
}

} // namespace HWY_NAMESPACE
} // namespace hazelmark::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace hazelmark::kernels {

HWY_EXPORT(ScaleRow);
HWY_EXPORT(WeighRows);
HWY_EXPORT(ClampToUnit);

void scaleRow(const float *row, const int *first, const float *weights, int taps, float *out, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(ScaleRow)(row, first, weights, taps, out, width);
}

void weighRows(const float *const *rows, const float *weights, int taps, float *out, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(WeighRows)(rows, weights, taps, out, width);
}

void clampToUnit(float *row, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(ClampToUnit)(row, width);
}

} // namespace hazelmark::kernels

#endif
