#include "StampRow.h"

#include <cstddef>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/StampRow.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace hazelmark::kernels {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Spacing = StampRow::Spacing;

using Floats = hn::CappedTag<float, kMaxStampLanes>;
using Ints = hn::RebindToSigned<Floats>;
using Words = hn::RebindToUnsigned<Floats>;
using FloatVec = hn::Vec<Floats>;
using IntVec = hn::Vec<Ints>;
using WordVec = hn::Vec<Words>;

/// The texels at `from + texels`. Of pixels whose neighbours are less than two texels apart those of one vector lie
/// within two vectors of texels, and within one if they are less than one apart. Picking them out of these is several
/// times faster than a gather.
template <Spacing kSpacing>
HWY_INLINE FloatVec pick(const float *from, IntVec texels, std::int32_t first)
{
    const Floats floats;
    const Ints ints;
    const int lanes = int(hn::Lanes(floats));
    if constexpr (kSpacing == Spacing::Wide)
        return hn::GatherIndex(floats, from, texels);
    const auto offsets = hn::Sub(texels, hn::Set(ints, first));
    from += first;
    if constexpr (kSpacing == Spacing::Dense) {
        return hn::TableLookupLanes(hn::LoadU(floats, from), hn::IndicesFromVec(floats, offsets));
    } else {
        const auto lane = hn::IndicesFromVec(floats, hn::And(offsets, hn::Set(ints, lanes - 1)));
        const auto low = hn::TableLookupLanes(hn::LoadU(floats, from), lane);
        const auto high = hn::TableLookupLanes(hn::LoadU(floats, from + lanes), lane);
        return hn::IfThenElse(hn::RebindMask(floats, hn::Lt(offsets, hn::Set(ints, lanes))), low, high);
    }
}

/// left + fraction * (right - left): exactly the texel's value between two equal ones, so a full tip stays full.
template <Spacing kSpacing>
HWY_INLINE FloatVec sampleOf(const float *tip, const StampRow &row, int pixel)
{
    const Floats floats;
    const Ints ints;
    const std::int32_t first = row.texel[pixel];
    const auto texels = hn::LoadU(ints, row.texel + pixel);
    const auto left = pick<kSpacing>(tip, texels, first);
    const auto right = pick<kSpacing>(tip + 1, texels, first);
    return hn::MulAdd(hn::LoadU(floats, row.fraction + pixel), hn::Sub(right, left), left);
}

HWY_INLINE FloatVec component(WordVec shifted)
{
    const Floats floats;
    const Ints ints;
    return hn::ConvertTo(floats, hn::BitCast(ints, shifted));
}

/// One component of the blended pixels in the lowest byte of each word; above it are bits of no meaning.
HWY_INLINE WordVec blendComponent(FloatVec old, FloatVec sample, float addend, FloatVec keep)
{
    const Floats floats;
    const Words words;
    // A colour whose components exceed its alpha may add up to more than a pixel holds.
    const auto blended =
        hn::Min(hn::MulAdd(sample, hn::Set(floats, addend), hn::Mul(old, keep)), hn::Set(floats, 255.0F));
    // Adding 2^23 rounds to the nearest integer (the even one of two) and leaves it in the lowest bits.
    return hn::BitCast(words, hn::Add(blended, hn::Set(floats, 0x1p23F)));
}

template <bool kWhite, Spacing kSpacing>
HWY_INLINE WordVec blend(WordVec pixels, const StampRow &row, int pixel)
{
    const Floats floats;
    const Words words;
    const auto byte = hn::Set(words, 255U);
    const auto alpha = sampleOf<kSpacing>(row.tip[3], row, pixel);
    const auto red = kWhite ? alpha : sampleOf<kSpacing>(row.tip[0], row, pixel);
    const auto green = kWhite ? alpha : sampleOf<kSpacing>(row.tip[1], row, pixel);
    const auto blue = kWhite ? alpha : sampleOf<kSpacing>(row.tip[2], row, pixel);
    const auto keep = hn::NegMulAdd(alpha, hn::Set(floats, row.alpha), hn::Set(floats, 1.0F));

    const auto newRed = blendComponent(component(hn::And(pixels, byte)), red, row.addend[0], keep);
    const auto newGreen =
        blendComponent(component(hn::And(hn::ShiftRight<8>(pixels), byte)), green, row.addend[1], keep);
    const auto newBlue =
        blendComponent(component(hn::And(hn::ShiftRight<16>(pixels), byte)), blue, row.addend[2], keep);
    const auto newAlpha = blendComponent(component(hn::ShiftRight<24>(pixels)), alpha, row.addend[3], keep);
    return hn::Or(hn::Or(hn::And(newRed, byte), hn::ShiftLeft<8>(hn::And(newGreen, byte))),
                  hn::Or(hn::ShiftLeft<16>(hn::And(newBlue, byte)), hn::ShiftLeft<24>(newAlpha)));
}

/// The same where the pixels and what is added are pure green, each of an alpha equal to its green: the two are
/// computed as one.
template <Spacing kSpacing>
HWY_INLINE WordVec blendGreen(WordVec pixels, const StampRow &row, int pixel)
{
    const Floats floats;
    const auto sample = sampleOf<kSpacing>(row.tip[3], row, pixel);
    const auto keep = hn::NegMulAdd(sample, hn::Set(floats, row.alpha), hn::Set(floats, 1.0F));
    const auto alpha =
        hn::ShiftLeft<24>(blendComponent(component(hn::ShiftRight<24>(pixels)), sample, row.addend[3], keep));
    return hn::Or(alpha, hn::ShiftRight<16>(alpha));
}

HWY_INLINE bool areGreen(WordVec pixels)
{
    const Words words;
    const auto alpha = hn::And(pixels, hn::Set(words, 0xFF000000U));
    return hn::AllTrue(words, hn::Eq(pixels, hn::Or(alpha, hn::ShiftRight<16>(alpha))));
}

template <bool kWhite, Spacing kSpacing>
HWY_INLINE WordVec blendAny(WordVec pixels, const StampRow &row, int pixel, bool addsGreen)
{
    if (kWhite && addsGreen && areGreen(pixels))
        return blendGreen<kSpacing>(pixels, row, pixel);
    return blend<kWhite, kSpacing>(pixels, row, pixel);
}

/// Once a time has changed nothing, no further one does.
template <bool kWhite, Spacing kSpacing>
HWY_INLINE WordVec blendTimes(WordVec pixels, const StampRow &row, int pixel, bool addsGreen)
{
    // The blend is inlined once: compilers take minutes over several.
    for (int time = 1;; ++time) {
        const WordVec blended = blendAny<kWhite, kSpacing>(pixels, row, pixel, addsGreen);
        if (time >= row.times || hn::AllTrue(Words(), hn::Eq(pixels, blended)))
            return blended;
        pixels = blended;
    }
}

template <bool kWhite, Spacing kSpacing>
void blendPixels(std::uint8_t *bytes, int count, const StampRow &stampRow)
{
    const StampRow row = stampRow; // a copy that no store to the pixels can change
    const bool addsGreen = row.addend[0] == 0 && row.addend[1] == row.addend[3] && row.addend[2] == 0;
    const Words words;
    const int lanes = int(hn::Lanes(words));
    int pixel = 0;
    for (; pixel + lanes <= count; pixel += lanes) {
        auto *at = reinterpret_cast<std::uint32_t *>(bytes + 4 * std::ptrdiff_t(pixel));
        hn::StoreU(blendTimes<kWhite, kSpacing>(hn::LoadU(words, at), row, pixel, addsGreen), words, at);
    }
    if (pixel < count) {
        // The last pixels go through a block of their own: behind them may lie the end of the buffer.
        HWY_ALIGN std::uint32_t block[hn::MaxLanes(Words())] = {};
        const std::size_t size = 4 * std::size_t(count - pixel);
        std::uint8_t *at = bytes + 4 * std::ptrdiff_t(pixel);
        std::memcpy(block, at, size);
        hn::Store(blendTimes<kWhite, kSpacing>(hn::Load(words, block), row, pixel, addsGreen), words, block);
        std::memcpy(at, block, size);
    }
}

template <bool kWhite>
void blendSpaced(std::uint8_t *pixels, int count, const StampRow &row)
{
    switch (row.spacing) {
    case Spacing::Dense:
        return blendPixels<kWhite, Spacing::Dense>(pixels, count, row);
    case Spacing::Near:
        return blendPixels<kWhite, Spacing::Near>(pixels, count, row);
    case Spacing::Wide:
        return blendPixels<kWhite, Spacing::Wide>(pixels, count, row);
    }
}

void BlendRow(std::uint8_t *pixels, int count, const StampRow &row)
{
    row.white ? blendSpaced<true>(pixels, count, row) : blendSpaced<false>(pixels, count, row);
}

void MixRows(const float *above, const float *below, float share, float *out, int count)
{
    const Floats floats;
    const int lanes = int(hn::Lanes(floats));
    int i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto high = hn::LoadU(floats, above + i);
        const auto low = hn::LoadU(floats, below + i);
        hn::StoreU(hn::MulAdd(hn::Set(floats, share), hn::Sub(low, high), high), floats, out + i);
    }
    for (; i < count; ++i)
        out[i] = above[i] + share * (below[i] - above[i]);
}

} // namespace HWY_NAMESPACE
} // namespace hazelmark::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace hazelmark::kernels {

HWY_EXPORT(BlendRow);
HWY_EXPORT(MixRows);

void blendStampRow(std::uint8_t *pixels, int count, const StampRow &row)
{
    HWY_DYNAMIC_DISPATCH(BlendRow)(pixels, count, row);
}

void mixRows(const float *above, const float *below, float share, float *out, int count)
{
    HWY_DYNAMIC_DISPATCH(MixRows)(above, below, share, out, count);
}

} // namespace hazelmark::kernels
#endif
