#pragma once

#include "Encoder.h"
#include "FileSink.h"

namespace hazelmark {

// One function a written format, each in a file of its own. `pixels` has one of the four formats that encodePicture()
// names and at least one pixel. What an encoder could not write is told by the sink afterwards.

Outcome<Done> encodeJpeg(const QImage &pixels, const EncodeOptions &options, FileSink &sink);
Outcome<Done> encodePng(const QImage &pixels, const EncodeOptions &options, FileSink &sink);
Outcome<Done> encodeTiff(const QImage &pixels, const EncodeOptions &options, FileSink &sink);
Outcome<Done> encodeBmp(const QImage &pixels, const EncodeOptions &options, FileSink &sink);
Outcome<Done> encodeGif(const QImage &pixels, const EncodeOptions &options, FileSink &sink);

} // namespace hazelmark
