#include "kernels/StampRow.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace hazelmark {

namespace {

void blendScalar(std::uint8_t *pixels, int count, const kernels::StampRow &row)
{
    for (int i = 0; i < count; ++i) {
        float sample[4];
        for (std::size_t c = 0; c < 4; ++c) {
            const float *left = row.tip[row.white ? 3 : c] + row.texel[i];
            sample[c] = left[0] + row.fraction[i] * (left[1] - left[0]);
        }
        for (std::size_t c = 0; c < 4; ++c) {
            std::uint8_t &value = pixels[4 * i + int(c)];
            const float blended = sample[c] * row.addend[c] + float(value) * (1 - sample[3] * row.alpha);
            value = std::uint8_t(std::nearbyint(std::min(blended, 255.0F)));
        }
    }
}

using Spacing = kernels::StampRow::Spacing;

struct RowCase
{
    const char *what;
    bool white;
    double step; ///< texels a pixel
    kernels::StampRow::Spacing spacing;
    std::array<float, 4> addend;
    float alpha;
    bool greenPixels;
    int times = 1;
};

class StampRowOnEveryTarget : public testing::TestWithParam<RowCase>
{
protected:
    ~StampRowOnEveryTarget() override
    {
        hwy::SetSupportedTargetsForTest(0);
        hwy::GetChosenTarget().DeInit();
    }
};

} // namespace

// Every instruction set that this machine has, every length up to several vectors: the ends are where kernels fail.
TEST_P(StampRowOnEveryTarget, AgreesWithTheScalarLoop)
{
    const RowCase &param = GetParam();
    std::mt19937 random(7);
    std::uniform_real_distribution<float> unit(0, 1);
    std::uniform_int_distribution<int> byte(0, 255);
    constexpr int kLongest = 70;
    std::vector<float> tip(4 * 256);
    std::generate(tip.begin(), tip.end(), [&] { return unit(random); });
    std::vector<std::int32_t> texel;
    std::vector<float> fraction;
    for (int i = 0; i < kLongest + kernels::kMaxStampLanes; ++i) {
        texel.push_back(int(0.3 + i * param.step));
        fraction.push_back(float(0.3 + i * param.step - texel.back()));
    }
    const kernels::StampRow row{{tip.data(), tip.data() + 256, tip.data() + 512, tip.data() + 768},
                                param.white,
                                texel.data(),
                                fraction.data(),
                                param.spacing,
                                param.addend,
                                param.alpha,
                                param.times};
    std::vector<std::uint8_t> before(4 * kLongest);
    std::generate(before.begin(), before.end(), [&] { return std::uint8_t(byte(random)); });
    for (std::size_t i = 0; param.greenPixels && i < before.size(); i += 4) {
        before[i] = before[i + 2] = 0;
        before[i + 1] = before[i + 3];
    }

    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        for (int count = 0; count <= kLongest; ++count) {
            std::vector<std::uint8_t> wanted = before;
            for (int time = 0; time < param.times; ++time)
                blendScalar(wanted.data(), count, row);
            std::vector<std::uint8_t> got = before;
            kernels::blendStampRow(got.data(), count, row);
            int largest = 0;
            for (std::size_t i = 0; i < got.size(); ++i)
                largest = std::max(largest, std::abs(got[i] - wanted[i]));
            // One: a fused multiply-add may tip a number that lies between two.
            ASSERT_LE(largest, 1) << hwy::TargetName(target) << " at length " << count;
            ASSERT_TRUE(std::equal(got.begin() + 4 * count, got.end(), before.begin() + 4 * count))
                << hwy::TargetName(target) << " writes behind its " << count << " pixels";
        }
        hwy::SetSupportedTargetsForTest(0);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, StampRowOnEveryTarget,
    testing::Values(RowCase{"green", true, 1.28, Spacing::Near, {0, 255, 0, 255}, 1, true},
                    RowCase{"green over colours", true, 1.28, Spacing::Near, {0, 255, 0, 255}, 1, false},
                    RowCase{"erase green", true, 1.99, Spacing::Near, {0, 0, 0, 0}, 1, true},
                    RowCase{"green again and again", true, 0.4, Spacing::Dense, {0, 255, 0, 255}, 1, true, 40},
                    RowCase{"colour twice", false, 1.0, Spacing::Near, {25, 130, 255, 128}, 0.5F, false, 2},
                    RowCase{"colour", true, 0.4, Spacing::Dense, {25, 130, 255, 128}, 0.5F, false},
                    RowCase{"more colour than alpha", true, 0.998, Spacing::Dense, {255, 255, 255, 51}, 0.2F, false},
                    RowCase{"far apart", true, 2.9, Spacing::Wide, {0, 255, 0, 255}, 1, false},
                    RowCase{"coloured tip far apart", false, 2.9, Spacing::Wide, {255, 255, 255, 255}, 1, false},
                    RowCase{"coloured tip", false, 1.0, Spacing::Near, {255, 255, 255, 255}, 1, false}),
    [](const auto &info) {
        std::string name = info.param.what;
        std::replace(name.begin(), name.end(), ' ', '_');
        return name;
    });

} // namespace hazelmark
