#include "HdrToSrgb.h"

#include <gtest/gtest.h>

#include <array>

namespace hazelmark::glass {

/// Against the published formulas and the matrices between the primaries, in double precision.
TEST(HdrToSrgb, BringsWhatIsBrighterThanWhiteIntoAShoulderInWhichTheHueStays)
{
    constexpr uint8_t kPq = 16, kHlg = 18, kSrgb = 1, kBt2020 = 9, kDisplayP3 = 12;
    using Color = std::array<int, 3>;
    const struct
    {
        uint8_t transfer;
        uint8_t primaries;
        Color sample;
        Color expected;
    } rows[] = {
        {kPq, kSrgb, {33395, 33395, 33395}, {48192, 48192, 48192}},   // half of 203 cd/m²
        {kPq, kBt2020, {38055, 38055, 38055}, {61793, 61793, 61793}}, // 203 cd/m²
        {kPq, kBt2020, {49271, 49271, 49271}, {65127, 65127, 65127}}, // 1000 cd/m²
        {kPq, kBt2020, {38000, 20000, 10000}, {63894, 0, 0}},
        {kPq, kDisplayP3, {30000, 34000, 20000}, {34469, 50639, 6144}},
        {kHlg, kBt2020, {32768, 32768, 32768}, {35182, 35182, 35182}},
        {kHlg, kBt2020, {49151, 49151, 49151}, {61799, 61799, 61799}},
        {kHlg, kDisplayP3, {30000, 20000, 40000}, {32503, 20372, 42814}},
        {kHlg, kSrgb, {10000, 6000, 3000}, {7590, 3709, 964}},
    };
    for (const auto &[transfer, primaries, sample, expected] : rows) {
        ColorCodes codes;
        codes.primaries = primaries;
        codes.transfer = transfer;
        uint16_t pixels[8] = {0, 0, 0, 7, uint16_t(sample[0]), uint16_t(sample[1]), uint16_t(sample[2]), 1234};
        HdrToSrgb(codes).convert(pixels, 2);
        for (size_t channel = 0; channel < 3; ++channel)
            EXPECT_NEAR(pixels[4 + channel], expected[channel], 60) << int(transfer) << " " << sample[0];
        EXPECT_TRUE(pixels[0] == 0 && pixels[3] == 7 && pixels[7] == 1234);
    }
}

} // namespace hazelmark::glass
