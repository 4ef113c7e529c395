#include "DiscSumRows.h"

#include <algorithm>

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
using VF = hn::Vec<DF>;
using VU = hn::Vec<DU>;
using DHalf = hn::Rebind<std::uint16_t, DF>; // as many samples as floats
#if HWY_TARGET == HWY_SCALAR
using DNarrow = DHalf;
#else
using DNarrow = hn::Repartition<std::uint16_t, DF>;
#endif
using VNarrow = hn::Vec<DNarrow>;

HWY_INLINE VF clampedToUnit(VF value)
{
    const DF df;
    const VF positive = hn::IfThenElseZero(hn::Gt(value, hn::Zero(df)), value); // false for NaN
    return hn::Min(positive, hn::Set(df, 1.0f));
}

void QuantizeRow(const float *values, std::uint16_t *samples, std::size_t width)
{
    const DF df;
    const DHalf dhalf;
    for (std::size_t i = 0; i < width; i += hn::Lanes(df)) {
        const VF scaled = hn::Mul(clampedToUnit(hn::LoadU(df, values + i)), hn::Set(df, 65535.0f));
        hn::StoreU(hn::DemoteTo(dhalf, hn::NearestInt(scaled)), dhalf, samples + i);
    }
}

bool QuantizeRow8(const float *values, std::uint16_t *samples, std::size_t width)
{
    const DF df;
    const DHalf dhalf;
    VF most = hn::Zero(df);
    const std::size_t lanes = hn::Lanes(df);
    for (std::size_t i = 0; i < width; i += lanes) {
        const VF scaled = hn::Mul(clampedToUnit(hn::LoadU(df, values + i)), hn::Set(df, 255.0f));
        const auto sample = hn::NearestInt(scaled);
        VF off = hn::Abs(hn::Sub(scaled, hn::ConvertTo(df, sample)));
        if (i + lanes > width)
            off = hn::IfThenElseZero(hn::FirstN(df, width - i), off);
        most = hn::Max(most, off);
        hn::StoreU(hn::DemoteTo(dhalf, sample), dhalf, samples + i);
    }
    // The nearest multiple of 1/65535 that is none of 1/255 is 1/257 of a step away.
    return hn::AllTrue(df, hn::Lt(most, hn::Set(df, 1.0f / 1024.0f)));
}

void AppendWide(const std::uint16_t *samples, std::uint32_t *prefix, std::size_t stride, int fractions,
                std::size_t width)
{
    const DU du;
    const DHalf dhalf;
    for (std::size_t i = 0; i < width; i += hn::Lanes(du)) {
        const VU sample = hn::PromoteTo(du, hn::LoadU(dhalf, samples + i));
        VU sum = hn::LoadU(du, prefix + i);
        for (int f = 1; f <= fractions; ++f) {
            sum = hn::Add(sum, sample);
            hn::StoreU(sum, du, prefix + std::size_t(f) * stride + i);
        }
    }
}

void AppendNarrow(const std::uint16_t *samples, std::uint16_t *prefix, std::size_t stride, int fractions,
                  std::size_t width)
{
    const DNarrow dn;
    for (std::size_t i = 0; i < width; i += hn::Lanes(dn)) {
        const VNarrow sample = hn::LoadU(dn, samples + i);
        VNarrow sum = hn::LoadU(dn, prefix + i);
        for (int f = 1; f <= fractions; ++f) {
            sum = hn::Add(sum, sample);
            hn::StoreU(sum, dn, prefix + std::size_t(f) * stride + i);
        }
    }
}

/// Sums below 2^32. Halved, because the conversion knows signed numbers only; they are large enough for that.
HWY_INLINE VF wideMeans(VU sums, float scale)
{
    const auto half = hn::BitCast(DI(), hn::ShiftRight<1>(sums));
    return hn::Mul(hn::ConvertTo(DF(), half), hn::Set(DF(), 2.0f * scale));
}

/// Sums below 2^31.
HWY_INLINE VF narrowMeans(VU sums, float scale)
{
    return hn::Mul(hn::ConvertTo(DF(), hn::BitCast(DI(), sums)), hn::Set(DF(), scale));
}

/// kVectors vectors of neighbouring pixels.
template <int kVectors>
HWY_INLINE void sumWide(const DiscSum &disc, const std::uint32_t *prefix, float *means, float scale)
{
    const DU du;
    const std::size_t lanes = hn::Lanes(du);
    VU total[kVectors];
    for (int v = 0; v < kVectors; ++v)
        total[v] = hn::Zero(du);
    for (const DiscSum::Group &group : disc.groups()) {
        VU sum[kVectors];
        for (int v = 0; v < kVectors; ++v)
            sum[v] = hn::Zero(du);
        for (const DiscSum::Distance &span : group.spans) {
            for (int v = 0; v < kVectors; ++v) {
                sum[v] = hn::Add(sum[v], hn::LoadU(du, prefix + span.above + std::size_t(v) * lanes));
                sum[v] = hn::Sub(sum[v], hn::LoadU(du, prefix + span.below + std::size_t(v) * lanes));
            }
        }
        const VU weight = hn::Set(du, group.weight);
        for (int v = 0; v < kVectors; ++v)
            total[v] = hn::Add(total[v], hn::Mul(sum[v], weight));
    }
    for (int v = 0; v < kVectors; ++v)
        hn::StoreU(wideMeans(total[v], scale), DF(), means + std::size_t(v) * lanes);
}

/// Narrow sums made wide: even and odd pixels apart.
struct Widened
{
#if HWY_TARGET == HWY_SCALAR
    explicit Widened(VNarrow sum)
        : even(hn::PromoteTo(DU(), sum))
        , odd(even)
    {
    }
#else
    explicit Widened(VNarrow sum)
        : even(hn::And(hn::BitCast(DU(), sum), hn::Set(DU(), 0xFFFFu)))
        , odd(hn::ShiftRight<16>(hn::BitCast(DU(), sum)))
    {
    }
#endif
    VU even, odd;
};

/// Even and odd pixels side by side again.
HWY_INLINE void storePixels(VF even, VF odd, float *means)
{
#if HWY_TARGET == HWY_SCALAR
    (void)odd;
    hn::StoreU(even, DF(), means);
#else
    hn::StoreInterleaved2(even, odd, DF(), means);
#endif
}

/// The same as sumWide().
template <int kVectors>
HWY_INLINE void sumNarrow(const DiscSum &disc, const std::uint16_t *prefix, float *means, float scale)
{
    const DNarrow dn;
    const DU du;
    const std::size_t lanes = hn::Lanes(dn);
    VU totalEven[kVectors], totalOdd[kVectors];
    for (int v = 0; v < kVectors; ++v)
        totalEven[v] = totalOdd[v] = hn::Zero(du);
    for (const DiscSum::Group &group : disc.groups()) {
        VU even[kVectors], odd[kVectors];
        for (int v = 0; v < kVectors; ++v)
            even[v] = odd[v] = hn::Zero(du);
        const DiscSum::Distance *span = group.spans.data();
        const DiscSum::Distance *const end = span + group.spans.size();
        while (span != end) {
            const DiscSum::Distance *const runEnd = span + std::min<std::ptrdiff_t>(disc.narrowRun(), end - span);
            VNarrow sum[kVectors];
            for (int v = 0; v < kVectors; ++v)
                sum[v] = hn::Zero(dn);
            for (; span != runEnd; ++span) {
                for (int v = 0; v < kVectors; ++v) {
                    sum[v] = hn::Add(sum[v], hn::LoadU(dn, prefix + span->above + std::size_t(v) * lanes));
                    sum[v] = hn::Sub(sum[v], hn::LoadU(dn, prefix + span->below + std::size_t(v) * lanes));
                }
            }
            for (int v = 0; v < kVectors; ++v) {
                const Widened wide(sum[v]);
                even[v] = hn::Add(even[v], wide.even);
                odd[v] = hn::Add(odd[v], wide.odd);
            }
        }
        const VU weight = hn::Set(du, group.weight);
        for (int v = 0; v < kVectors; ++v) {
            totalEven[v] = hn::Add(totalEven[v], hn::Mul(even[v], weight));
            totalOdd[v] = hn::Add(totalOdd[v], hn::Mul(odd[v], weight));
        }
    }
    for (int v = 0; v < kVectors; ++v)
        storePixels(narrowMeans(totalEven[v], scale), narrowMeans(totalOdd[v], scale), means + std::size_t(v) * lanes);
}

// Column by column of a few vectors, so that the prefix rows of a disc's height stay in the first-level cache.

void SumWideBlock(const DiscSum &disc, const std::uint32_t *prefix, float *means, std::size_t meansStride, int width,
                  int height)
{
    const std::size_t lanes = hn::Lanes(DU()), columns = std::size_t(width), rows = std::size_t(height);
    const float scale = float(1.0 / (65535.0 * disc.total()));
    std::size_t x = 0;
    for (; x + 4 * lanes <= columns; x += 4 * lanes)
        for (std::size_t y = 0; y < rows; ++y)
            sumWide<4>(disc, prefix + y * disc.pixelStride() + x, means + y * meansStride + x, scale);
    for (; x < columns; x += lanes)
        for (std::size_t y = 0; y < rows; ++y)
            sumWide<1>(disc, prefix + y * disc.pixelStride() + x, means + y * meansStride + x, scale);
}

void SumNarrowBlock(const DiscSum &disc, const std::uint16_t *prefix, float *means, std::size_t meansStride, int width,
                    int height)
{
    const std::size_t lanes = hn::Lanes(DNarrow()), columns = std::size_t(width), rows = std::size_t(height);
    const float scale = float(1.0 / (255.0 * disc.total()));
    std::size_t x = 0;
    for (; x + 2 * lanes <= columns; x += 2 * lanes)
        for (std::size_t y = 0; y < rows; ++y)
            sumNarrow<2>(disc, prefix + y * disc.pixelStride() + x, means + y * meansStride + x, scale);
    // Rows of means have no room for a narrow vector at their end.
    HWY_ALIGN float last[kNarrowGrain];
    for (; x < columns; x += lanes) {
        for (std::size_t y = 0; y < rows; ++y) {
            sumNarrow<1>(disc, prefix + y * disc.pixelStride() + x, last, scale);
            std::copy_n(last, std::min(lanes, columns - x), means + y * meansStride + x);
        }
    }
}

} // namespace HWY_NAMESPACE
} // namespace hazelmark::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace hazelmark::kernels {

HWY_EXPORT(QuantizeRow);
HWY_EXPORT(QuantizeRow8);
HWY_EXPORT(AppendWide);
HWY_EXPORT(AppendNarrow);
HWY_EXPORT(SumWideBlock);
HWY_EXPORT(SumNarrowBlock);

void quantizeRow(const float *values, std::uint16_t *samples, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(QuantizeRow)(values, samples, width);
}

bool quantizeRow8(const float *values, std::uint16_t *samples, std::size_t width)
{
    return HWY_DYNAMIC_DISPATCH(QuantizeRow8)(values, samples, width);
}

void appendPrefixRows(const std::uint16_t *samples, std::uint32_t *prefix, std::size_t stride, int fractions,
                      std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(AppendWide)(samples, prefix, stride, fractions, width);
}

void appendPrefixRows(const std::uint16_t *samples, std::uint16_t *prefix, std::size_t stride, int fractions,
                      std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(AppendNarrow)(samples, prefix, stride, fractions, width);
}

DiscSum::DiscSum(const DiscSpans &disc, std::size_t stride)
    : m_pixelStride(stride * std::size_t(disc.fractions))
    , m_total(disc.total)
{
    const std::ptrdiff_t rowStride = std::ptrdiff_t(stride);
    int longest = 1;
    for (const DiscSpans::Group &group : disc.groups) {
        Group laid{group.weight, {}};
        for (const DiscSpans::Span &span : group.spans) {
            const std::ptrdiff_t column = disc.reach + span.dx;
            laid.spans.push_back({(disc.fractions * (disc.reach + 1) + span.end) * rowStride + column,
                                  (disc.fractions * disc.reach - span.end) * rowStride + column});
            longest = std::max(longest, disc.fractions + 2 * span.end);
        }
        m_groups.push_back(std::move(laid));
    }
    m_narrowRun = 65535 / (255 * longest);
}

void DiscSum::sumBlock(const std::uint32_t *prefix, float *means, std::size_t meansStride, int width, int height) const
{
    HWY_DYNAMIC_DISPATCH(SumWideBlock)(*this, prefix, means, meansStride, width, height);
}

void DiscSum::sumBlock(const std::uint16_t *prefix, float *means, std::size_t meansStride, int width, int height) const
{
    HWY_DYNAMIC_DISPATCH(SumNarrowBlock)(*this, prefix, means, meansStride, width, height);
}

} // namespace hazelmark::kernels

#endif
