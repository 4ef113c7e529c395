#pragma once

#include "CommandLine.h"

#include <QImage>

namespace hazelmark {

/// Writes the mask that the strokes paint.
int runMask(const MaskRequest &request);

/// The mask that the strokes of a file paint: green over opaque black, Format_RGBX8888. Null when there is none; then
/// the reason has been printed.
QImage maskOfStrokes(const QString &path);

} // namespace hazelmark
