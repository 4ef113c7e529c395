#include "DiscWeightRows.h"

#include "DiscSumRows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/DiscWeightRows.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace hazelmark::kernels {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using DF = hn::CappedTag<float, kRowGrain>;
using VF = hn::Vec<DF>;

constexpr std::size_t kPart = 512; // columns at a time, so that the folded rows stay in the first-level cache
constexpr std::size_t kFoldedStride = kPart + kRowGrain;
static_assert(2 * kMostReach <= kRowGrain);

/// Adds the rows at the same distance above and below: folded row dy is their sum.
HWY_INLINE void fold(const float *plane, std::ptrdiff_t stride, int reach, std::size_t columns, float *folded)
{
    const DF df;
    for (int dy = 0; dy <= reach; ++dy, folded += kFoldedStride) {
        for (std::size_t i = 0; i < columns; i += hn::Lanes(df)) {
            const VF above = hn::LoadU(df, plane + dy * stride + i);
            hn::Store(dy == 0 ? above : hn::Add(above, hn::LoadU(df, plane - dy * stride + i)), df, folded + i);
        }
    }
}

HWY_INLINE VF weighed(const float *folded, const float *weights, int reach)
{
    const DF df;
    VF sum = hn::Zero(df);
    for (int dy = 0; dy <= reach; ++dy, folded += kFoldedStride, weights += reach + 1) {
        const float *middle = folded + reach;
        sum = hn::MulAdd(hn::LoadU(df, middle), hn::Set(df, weights[0]), sum);
        for (int dx = 1; dx <= reach && weights[dx] > 0.0f; ++dx) {
            const VF pair = hn::Add(hn::LoadU(df, middle - dx), hn::LoadU(df, middle + dx));
            sum = hn::MulAdd(pair, hn::Set(df, weights[dx]), sum);
        }
    }
    return sum;
}

void WeighRow(const float *plane, std::size_t stride, const float *weights, int reach, float *means, std::size_t width)
{
    const DF df;
    HWY_ALIGN float folded[(kMostReach + 1) * kFoldedStride];
    for (std::size_t x = 0; x < width; x += kPart) {
        const std::size_t part = width - x < kPart ? width - x : kPart;
        fold(plane + x, std::ptrdiff_t(stride), reach, part + 2 * std::size_t(reach), folded);
        for (std::size_t i = 0; i < part; i += hn::Lanes(df))
            hn::StoreU(weighed(folded + i, weights, reach), df, means + x + i);
    }
}

} // namespace HWY_NAMESPACE
} // namespace hazelmark::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace hazelmark::kernels {

HWY_EXPORT(WeighRow);

void weighRow(const float *plane, std::size_t stride, const float *weights, int reach, float *means, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(WeighRow)(plane, stride, weights, reach, means, width);
}

} // namespace hazelmark::kernels

#endif
