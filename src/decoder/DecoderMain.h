#pragma once

#include "ForeignDecoder.h"

namespace hazelmark::glass {

/// The program: takes the photo, the shared memory and the line to the other program from their descriptors, gives up
/// everything else and decodes as it is told. `makeDecoder` has loaded whatever it needs. The exit status: 0 when all
/// was said, be it that there is no picture.
int runDecoder(MakeForeignDecoder makeDecoder);

} // namespace hazelmark::glass
