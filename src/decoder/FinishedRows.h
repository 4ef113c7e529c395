#pragma once

#include "ForeignDecoder.h"

namespace hazelmark::glass {

/// What is left to do when a library has filled the canvas: colours that were multiplied by their alpha are divided by
/// it, and those of a header that `isConverted` become sRGB from `colors`.
void finishRows(const Canvas &canvas, const Header &header, bool isPremultiplied, ColorCodes colors);

} // namespace hazelmark::glass
