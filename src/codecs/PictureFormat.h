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

/// The row of a class that reads one file: made of the source; `readHeader()` tells why the file is refused if it is;
/// `info()` and `decode(atLeast)` follow a header that was read.
template <typename Reader>
constexpr PictureFormat formatReadBy(bool (*recognises)(const QByteArray &head))
{
    return {recognises,
            [](SourceFile &source) -> Outcome<PictureInfo> {
                Reader reader(source);
                if (const std::optional<Failure> failure = reader.readHeader())
                    return *failure;
                return reader.info();
            },
            [](SourceFile &source, QSize atLeast) -> Outcome<Picture> {
                Reader reader(source);
                if (const std::optional<Failure> failure = reader.readHeader())
                    return *failure;
                return reader.decode(atLeast);
            }};
}

extern const PictureFormat kJpegFormat;
extern const PictureFormat kPngFormat;
extern const PictureFormat kTiffFormat;
extern const PictureFormat kGifFormat;
extern const PictureFormat kQtFormat; ///< everything that Qt's plugins read; recognises any content

} // namespace hazelmark
