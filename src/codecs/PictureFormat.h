#pragma once

#include "Outcome.h"
#include "Picture.h"
#include "SourceFile.h"

namespace hazelmark {

/// One row of the table of decoders. The first row whose `recognises` accepts a file's first bytes reads it; a new
/// format is a new file with such a row, and its line in Decoder.cpp.
struct PictureFormat
{
    bool (*recognises)(const QByteArray &head);
    Outcome<PictureInfo> (*readInfo)(SourceFile &source);
    /// `atLeast` as in decodePicture(); a decoder may ignore it.
    Outcome<Picture> (*decode)(SourceFile &source, QSize atLeast);
};

extern const PictureFormat kJpegFormat;
extern const PictureFormat kPngFormat;

} // namespace hazelmark
