#pragma once

#include "EmbeddedBlocks.h"
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

/// A file in the decoder of its format. Made of the source; `readHeader()` comes first and tells why the file is
/// refused if it is; then `info()` and `cost()` any number of times, and `decode()` once.
class PictureReader
{
public:
    virtual ~PictureReader() = default;
    virtual std::optional<Failure> readHeader() = 0;
    virtual PictureInfo info() = 0;
    /// The metadata that the file embeds, where it is found with the header; else see readEmbeddedBlocks().
    virtual std::optional<EmbeddedBlocks> blocks() { return std::nullopt; }
    /// `atLeast` as in Decoder::decode(); a reader may ignore it.
    virtual DecodeCost cost(QSize atLeast) = 0;
    virtual Outcome<Picture> decode(QSize atLeast) = 0;
};

/// One row of the table of the decoders in this program. The first row whose `recognises` accepts a file's first bytes
/// reads it; what none of them accepts goes to the decoder program (see ForeignReader.h).
struct PictureFormat
{
    bool (*recognises)(const QByteArray &head);
    std::unique_ptr<PictureReader> (*makeReader)(SourceFile &source);
};

template <typename Reader>
constexpr PictureFormat formatReadBy(bool (*recognises)(const QByteArray &head))
{
    return {recognises,
            [](SourceFile &source) -> std::unique_ptr<PictureReader> { return std::make_unique<Reader>(source); }};
}

extern const PictureFormat kJpegFormat;
extern const PictureFormat kPngFormat;
extern const PictureFormat kTiffFormat;
extern const PictureFormat kGifFormat;

} // namespace hazelmark
