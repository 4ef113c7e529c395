#pragma once

#include <hwy/targets.h>

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace hazelmark::testing {

/// Makes the dispatch choose one instruction set; 0: the best.
inline void useTarget(std::int64_t target)
{
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

/// A kernel against its plain twin: on every instruction set of this machine, at widths around those of vectors and
/// tiles, since the ends are where kernels fail.
class KernelTest : public ::testing::TestWithParam<std::tuple<std::int64_t, std::size_t>>
{
protected:
    void SetUp() override { useTarget(std::get<0>(GetParam())); }
    void TearDown() override { useTarget(0); }
    std::size_t width() const { return std::get<1>(GetParam()); }
    /// Every value of a row against the twin's.
    template <typename Value, typename Twin>
    void expectEach(const Value *values, double tolerance, const Twin &twin) const
    {
        for (std::size_t i = 0; i < width(); ++i)
            ASSERT_NEAR(double(values[i]), double(twin(i)), tolerance) << i;
    }
};

inline auto everyTargetAndWidth()
{
    return ::testing::Combine(::testing::ValuesIn(hwy::SupportedAndGeneratedTargets()),
                              ::testing::Values(1, 3, 15, 16, 17, 31, 33, 64, 130, 530));
}

inline std::string targetAndWidth(const ::testing::TestParamInfo<std::tuple<std::int64_t, std::size_t>> &instance)
{
    return std::string(hwy::TargetName(std::get<0>(instance.param))) + "Width" +
           std::to_string(std::get<1>(instance.param));
}

} // namespace hazelmark::testing
