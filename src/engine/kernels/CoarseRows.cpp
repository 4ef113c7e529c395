#include "CoarseRows.h"

#include "DiscSumRows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/CoarseRows.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace hazelmark::kernels {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using DF = hn::CappedTag<float, kRowGrain>;
using VF = hn::Vec<DF>;
using D16 = hn::Rebind<std::uint16_t, DF>;

void AverageCells(float *sums, int scale, float factor, std::uint16_t *samples, std::size_t cells)
{
    const DF df;
    const D16 d16;
    const std::size_t lanes = hn::Lanes(df);
    for (int step = scale; step > 1; step /= 2) {
        const std::size_t pairs = cells * std::size_t(step) / 2;
        for (std::size_t i = 0; i < pairs; i += lanes) {
            VF even, odd;
            hn::LoadInterleaved2(df, sums + 2 * i, even, odd);
            hn::StoreU(hn::Add(even, odd), df, sums + i);
        }
    }
    const VF low = hn::Zero(df), high = hn::Set(df, 65535.0f);
    for (std::size_t i = 0; i < cells; i += lanes) {
        const VF mean = hn::Mul(hn::LoadU(df, sums + i), hn::Set(df, factor));
        const VF positive = hn::IfThenElseZero(hn::Gt(mean, low), mean); // false for NaN
        hn::StoreU(hn::DemoteTo(d16, hn::NearestInt(hn::Min(positive, high))), d16, samples + i);
    }
}

void AddRow(const float *values, float *sums, bool first, std::size_t width)
{
    const DF df;
    for (std::size_t i = 0; i < width; i += hn::Lanes(df)) {
        const VF value = hn::LoadU(df, values + i);
        hn::StoreU(first ? value : hn::Add(hn::LoadU(df, sums + i), value), df, sums + i);
    }
}

HWY_INLINE VF cellsAt(const std::uint16_t *samples)
{
    const DF df;
    const hn::RebindToSigned<DF> di;
    return hn::ConvertTo(df, hn::PromoteTo(di, hn::LoadU(D16(), samples)));
}

/// Phase q of the pixels of a vector of cells; `cell[0]` is the vector three cells before.
HWY_INLINE VF phaseOf(const VF *cell, const Taps &taps)
{
    const DF df;
    VF even = hn::Mul(cell[0], hn::Set(df, taps[0]));
    VF odd = hn::Mul(cell[1], hn::Set(df, taps[1]));
    even = hn::MulAdd(cell[2], hn::Set(df, taps[2]), even);
    odd = hn::MulAdd(cell[3], hn::Set(df, taps[3]), odd);
    even = hn::MulAdd(cell[4], hn::Set(df, taps[4]), even);
    odd = hn::MulAdd(cell[5], hn::Set(df, taps[5]), odd);
    return hn::Add(even, odd);
}

void ExpandRow(const std::uint16_t *samples, const Taps *taps, int scale, float *values, std::size_t cells)
{
    const DF df;
    const std::size_t lanes = hn::Lanes(df);
    for (std::size_t k = 0; k < cells; k += lanes) {
        VF cell[kTaps + 1];
        for (int i = 0; i <= kTaps; ++i)
            cell[i] = hn::Mul(cellsAt(samples + k + i - 3), hn::Set(df, 1.0f / 65535.0f));
        float *out = values + k * std::size_t(scale);
        if (scale == 2) {
            hn::StoreInterleaved2(phaseOf(cell, taps[0]), phaseOf(cell + 1, taps[1]), df, out);
            continue;
        }
        VF phase[4];
        for (int q = 0; q < 4; ++q)
            phase[q] = phaseOf(cell + q / 2, taps[q]);
        hn::StoreInterleaved4(phase[0], phase[1], phase[2], phase[3], df, out);
    }
}

void ExpandWideRow(const std::uint16_t *samples, const CellRun *runs, std::size_t count, const float *const *taps,
                   float *values)
{
    const DF df;
    for (const CellRun *run = runs; run != runs + count; ++run) {
        VF cell[kTaps];
        for (int t = 0; t < kTaps; ++t)
            cell[t] = hn::Set(df, float(samples[run->cell + t]) * (1.0f / 65535.0f));
        for (std::size_t x = run->begin; x < run->end; x += hn::Lanes(df)) {
            VF sum = hn::Mul(cell[0], hn::LoadU(df, taps[0] + x));
            for (int t = 1; t < kTaps; ++t)
                sum = hn::MulAdd(cell[t], hn::LoadU(df, taps[t] + x), sum);
            hn::StoreU(sum, df, values + x);
        }
    }
}

void CombineRows(const float *const *rows, const Taps &taps, float *values, std::size_t width)
{
    const DF df;
    const VF low = hn::Zero(df), high = hn::Set(df, 1.0f);
    for (std::size_t i = 0; i < width; i += hn::Lanes(df)) {
        VF cell[kTaps];
        for (int t = 0; t < kTaps; ++t)
            cell[t] = hn::LoadU(df, rows[t] + i);
        hn::StoreU(hn::Min(hn::Max(phaseOf(cell, taps), low), high), df, values + i);
    }
}

} // namespace HWY_NAMESPACE
} // namespace hazelmark::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace hazelmark::kernels {

HWY_EXPORT(AverageCells);
HWY_EXPORT(AddRow);
HWY_EXPORT(ExpandRow);
HWY_EXPORT(ExpandWideRow);
HWY_EXPORT(CombineRows);

void averageCells(float *sums, int scale, float factor, std::uint16_t *samples, std::size_t cells)
{
    HWY_DYNAMIC_DISPATCH(AverageCells)(sums, scale, factor, samples, cells);
}

void addRow(const float *values, float *sums, bool first, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(AddRow)(values, sums, first, width);
}

void expandRow(const std::uint16_t *samples, const Taps *taps, int scale, float *values, std::size_t cells)
{
    HWY_DYNAMIC_DISPATCH(ExpandRow)(samples, taps, scale, values, cells);
}

void expandWideRow(const std::uint16_t *samples, const CellRun *runs, std::size_t count, const float *const *taps,
                   float *values)
{
    HWY_DYNAMIC_DISPATCH(ExpandWideRow)(samples, runs, count, taps, values);
}

void combineRows(const float *const *rows, const Taps &taps, float *values, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(CombineRows)(rows, taps, values, width);
}

} // namespace hazelmark::kernels

#endif
