#pragma once

#include "FileHeader.h"
#include "PictureFormat.h"

#include <QImageReader>

namespace hazelmark {

/// A file in whichever of Qt's readers takes its content, be it built in or a plugin. It turns nothing.
class QtReader : public PictureReader
{
public:
    explicit QtReader(SourceFile &source);

    std::optional<Failure> readHeader() override;
    PictureInfo info() override;
    DecodeCost cost(QSize) override;
    Outcome<Picture> decode(QSize) override;

    /// Of what decode() gives, as far as it can be told before: one of the formats of Picture that holds it all.
    QImage::Format pixelFormat();

private:
    Failure failure() const;
    void startAnew();
    std::vector<QSize> frameSizes();

    SourceFile &m_source;
    QImageReader m_reader;
    FileHeader m_header;
    QSize m_size;
};

} // namespace hazelmark
