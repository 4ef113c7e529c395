#pragma once

#include "CommandLine.h"

namespace hazelmark {

/// Prints one JSON object: "PhotoFile" and "ExifInfo" with every field under its own name (absent ones null), and
/// "properties", the photo's property dictionary.
int runInfo(const InfoRequest &request);

} // namespace hazelmark
