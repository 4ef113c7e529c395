#pragma once

#include <QByteArray>

namespace hazelmark {

/// A profile for the colours that ITU-T H.273 numbers so: its primaries and white, its curve. Empty, which stands for
/// sRGB, for sRGB itself, for what is unspecified or unknown, and for the curves of pictures that are brighter than
/// white (PQ and HLG), which whoever decodes them brings to sRGB.
QByteArray profileOfCodes(int primaries, int transfer, bool isGray);

} // namespace hazelmark
