#pragma once

#include "CommandLine.h"
#include "StrokesFile.h"

#include <QImage>

namespace hazelmark {

/// Writes the mask that the strokes paint.
int runMask(const MaskRequest &request);

/// The strokes of a file, and the mask that they paint: green over opaque black, Format_RGBX8888. Nothing, or null,
/// when there is none; then the reason has been printed.
std::optional<StrokesFile> readStrokes(const QString &path);
QImage maskOfStrokes(const StrokesFile &strokes);

} // namespace hazelmark
