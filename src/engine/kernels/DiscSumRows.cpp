#include "DiscSumRows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/DiscSumRows.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace hazelmark::kernels {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using DF = hn::CappedTag<float, kRowGrain>;
using DU = hn::RebindToUnsigned<DF>;
using DI = hn::RebindToSigned<DF>;
using D16 = hn::Rebind<std::uint16_t, DF>;

void QuantizeRow(const float *values, std::uint16_t *samples, std::size_t width)
{
    const DF df;
    const D16 d16;
    for (std::size_t i = 0; i < width; i += hn::Lanes(df)) {
        const auto value = hn::LoadU(df, values + i);
        const auto positive = hn::IfThenElseZero(hn::Gt(value, hn::Zero(df)), value); // false for NaN
        const auto scaled = hn::Mul(hn::Min(positive, hn::Set(df, 1.0f)), hn::Set(df, 65535.0f));
        hn::StoreU(hn::DemoteTo(d16, hn::NearestInt(scaled)), d16, samples + i);
    }
}

void AppendPrefixRows(const std::uint16_t *samples, std::uint32_t *prefix, std::size_t stride, int fractions,
                      std::size_t width)
{
    const DU du;
    const D16 d16;
    for (std::size_t i = 0; i < width; i += hn::Lanes(du)) {
        const auto sample = hn::PromoteTo(du, hn::LoadU(d16, samples + i));
        auto sum = hn::LoadU(du, prefix + i);
        for (int f = 1; f <= fractions; ++f) {
            sum = hn::Add(sum, sample);
            hn::StoreU(sum, du, prefix + std::size_t(f) * stride + i);
        }
    }
}

/// The means of kVectors vectors of neighbouring pixels.
template <int kVectors>
HWY_INLINE void sumVectors(const DiscSum &disc, const std::uint32_t *prefix, float *means)
{
    const DU du;
    const DI di;
    const DF df;
    const std::size_t lanes = hn::Lanes(du);
    hn::Vec<DU> total[kVectors];
    for (int v = 0; v < kVectors; ++v)
        total[v] = hn::Zero(du);
    for (const DiscSum::Group &group : disc.groups()) {
        hn::Vec<DU> sum[kVectors];
        for (int v = 0; v < kVectors; ++v)
            sum[v] = hn::Zero(du);
        for (const DiscSum::Distance &span : group.spans) {
            for (int v = 0; v < kVectors; ++v) {
                sum[v] = hn::Add(sum[v], hn::LoadU(du, prefix + span.above + std::size_t(v) * lanes));
                sum[v] = hn::Sub(sum[v], hn::LoadU(du, prefix + span.below + std::size_t(v) * lanes));
            }
        }
        const auto weight = hn::Set(du, group.weight);
        for (int v = 0; v < kVectors; ++v)
            total[v] = hn::Add(total[v], hn::Mul(sum[v], weight));
    }
    // Halved, so that the conversion, which knows signed numbers only, takes sums of 2^31 and more.
    const auto scale = hn::Set(df, 2.0f * disc.scale());
    for (int v = 0; v < kVectors; ++v) {
        const auto half = hn::BitCast(di, hn::ShiftRight<1>(total[v]));
        hn::StoreU(hn::Mul(hn::ConvertTo(df, half), scale), df, means + std::size_t(v) * lanes);
    }
}

void SumRow(const DiscSum &disc, const std::uint32_t *prefix, float *means, std::size_t width)
{
    const std::size_t lanes = hn::Lanes(DU());
    std::size_t x = 0;
    for (; x + 4 * lanes <= width; x += 4 * lanes)
        sumVectors<4>(disc, prefix + x, means + x);
    for (; x < width; x += lanes)
        sumVectors<1>(disc, prefix + x, means + x);
}

} // namespace HWY_NAMESPACE
} // namespace hazelmark::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace hazelmark::kernels {

HWY_EXPORT(QuantizeRow);
HWY_EXPORT(AppendPrefixRows);
HWY_EXPORT(SumRow);

void quantizeRow(const float *values, std::uint16_t *samples, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(QuantizeRow)(values, samples, width);
}

void appendPrefixRows(const std::uint16_t *samples, std::uint32_t *prefix, std::size_t stride, int fractions,
                      std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(AppendPrefixRows)(samples, prefix, stride, fractions, width);
}

DiscSum::DiscSum(const DiscSpans &disc, std::size_t stride)
    : m_scale(float(1.0 / (65535.0 * disc.total)))
{
    const std::ptrdiff_t rowStride = std::ptrdiff_t(stride);
    for (const DiscSpans::Group &group : disc.groups) {
        Group laid{group.weight, {}};
        for (const DiscSpans::Span &span : group.spans) {
            const std::ptrdiff_t column = disc.reach + span.dx;
            laid.spans.push_back({(disc.fractions * (disc.reach + 1) + span.end) * rowStride + column,
                                  (disc.fractions * disc.reach - span.end) * rowStride + column});
        }
        m_groups.push_back(std::move(laid));
    }
}

void DiscSum::sumRow(const std::uint32_t *prefix, float *means, std::size_t width) const
{
    HWY_DYNAMIC_DISPATCH(SumRow)(*this, prefix, means, width);
}

} // namespace hazelmark::kernels

#endif
