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

/// The two pixels at distance dx in one row.
template <class D>
HWY_INLINE hn::Vec<D> pairAt(D d, const float *middle, int dx)
{
    const auto right = hn::LoadU(d, middle + dx);
    return dx == 0 ? right : hn::Add(right, hn::LoadU(d, middle - dx));
}

template <class D>
HWY_INLINE void weighVector(D d, const float *middle, std::ptrdiff_t stride, const float *weights, int reach,
                            float *mean)
{
    auto sum = hn::Zero(d);
    for (int dy = 0; dy <= reach; ++dy) {
        const float *row = weights + dy * (reach + 1);
        for (int dx = 0; dx <= reach && row[dx] > 0.0f; ++dx) {
            auto ring = pairAt(d, middle + dy * stride, dx);
            if (dy > 0)
                ring = hn::Add(ring, pairAt(d, middle - dy * stride, dx));
            sum = hn::MulAdd(ring, hn::Set(d, row[dx]), sum);
        }
    }
    hn::StoreU(sum, d, mean);
}

void WeighRow(const float *middle, std::size_t stride, const float *weights, int reach, float *means, std::size_t width)
{
    const hn::CappedTag<float, kRowGrain> d;
    const std::size_t lanes = hn::Lanes(d);
    const std::ptrdiff_t rowStride = std::ptrdiff_t(stride);
    std::size_t i = 0;
    for (; i + lanes <= width; i += lanes)
        weighVector(d, middle + i, rowStride, weights, reach, means + i);
    for (; i < width; ++i)
        weighVector(hn::CappedTag<float, 1>(), middle + i, rowStride, weights, reach, means + i);
}

} // namespace HWY_NAMESPACE
} // namespace hazelmark::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace hazelmark::kernels {

HWY_EXPORT(WeighRow);

void weighRow(const float *middle, std::size_t stride, const float *weights, int reach, float *means, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(WeighRow)(middle, stride, weights, reach, means, width);
}

} // namespace hazelmark::kernels

#endif
