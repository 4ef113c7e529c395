#pragma once

#include <type_traits>

namespace hazelmark::kernels {

/// Calls kernel(std::integral_constant<int, n>()) where n is the number of taps, for the numbers that pictures between
/// half and twice their size have, else with 0: a loop whose length the compiler knows takes half the time.
template <typename Kernel>
inline __attribute__((always_inline)) void withTaps(int taps, const Kernel &kernel)
{
    switch (taps) {
    case 5:
        return kernel(std::integral_constant<int, 5>());
    case 6:
        return kernel(std::integral_constant<int, 6>());
    case 7:
        return kernel(std::integral_constant<int, 7>());
    case 8:
        return kernel(std::integral_constant<int, 8>());
    case 9:
        return kernel(std::integral_constant<int, 9>());
    default:
        return kernel(std::integral_constant<int, 0>());
    }
}

} // namespace hazelmark::kernels
