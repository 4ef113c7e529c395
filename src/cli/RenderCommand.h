#pragma once

#include "CommandLine.h"

namespace hazelmark {

/// Renders the photo with the mask and writes the result.
int runRender(const RenderRequest &request);

} // namespace hazelmark
