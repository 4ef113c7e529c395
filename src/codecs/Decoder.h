#pragma once

#include "EmbeddedBlocks.h"
#include "Outcome.h"
#include "Picture.h"
#include "SourceFile.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace hazelmark {

class PictureReader;

/// A picture file whose header has been read. The content decides what the file is, never its name.
class Decoder
{
public:
    /// The source must outlive the decoder. Fails with NotAPicture, Damaged or TooLarge, or for what the file lacks.
    static Outcome<Decoder> open(SourceFile &source);
    Decoder(Decoder &&) noexcept;
    Decoder &operator=(Decoder &&) noexcept;
    ~Decoder();

    /// No pixel is decoded for it.
    Outcome<PictureInfo> info();

    /// The metadata that the file embeds, where it is read with the header: where it is, nobody else finds it.
    std::optional<EmbeddedBlocks> blocks();

    /// Decodes the first picture; once. Cut-off data is a failure, not a partly grey picture; so is damaged data, save
    /// where Picture::isPartlyDamaged tells of it. A picture that the memory cannot hold fails before it is decoded.
    ///
    /// `atLeast`: when not empty, the decoder may hand back a smaller picture than the file's, as long as it is not
    /// smaller than this in either dimension (JPEG: the library's scaled decode). Empty asks for every pixel.
    Outcome<Picture> decode(QSize atLeast = {});

private:
    Decoder(SourceFile &source, std::unique_ptr<PictureReader> reader);

    SourceFile *m_source;
    std::unique_ptr<PictureReader> m_reader;
};

/// What a Decoder tells of the file, or SourceFile::open() why it cannot be read.
Outcome<PictureInfo> readPictureInfo(const QString &path);
Outcome<Picture> decodePicture(const QString &path, QSize atLeast = {});

} // namespace hazelmark
