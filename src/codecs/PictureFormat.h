#pragma once

#include "Outcome.h"
#include "Picture.h"
#include "SourceFile.h"

namespace hazelmark {

/// Bytes that decoding takes.
struct DecodeCost
{
    qint64 bitmap;      ///< of the picture that is handed out
    qint64 working = 0; ///< beside it, until the picture is there
};

/// One row of the table of decoders. The first row whose `recognises` accepts a file's first bytes reads it; a new
/// format is a new file with such a row, and its line in Decoder.cpp.
struct PictureFormat
{
    bool (*recognises)(const QByteArray &head);
    Outcome<PictureInfo> (*readInfo)(SourceFile &source);
    /// `atLeast` as in decodePicture(); a decoder may ignore it.
    Outcome<Picture> (*decode)(SourceFile &source, QSize atLeast);
};

/// Nothing when there is memory for it, and for a second bitmap of the kind: nothing can be done with a picture without
/// one, be it only to turn it upright.
std::optional<Failure> checkMemory(const SourceFile &source, const DecodeCost &cost);

/// The row of a class that reads one file: made of the source; `readHeader()` tells why the file is refused if it is;
/// `info()`, or `cost(atLeast)` and `decode(atLeast)`, follow a header that was read. What the memory cannot hold is
/// not decoded.
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
                if (const std::optional<Failure> failure = checkMemory(source, reader.cost(atLeast)))
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
