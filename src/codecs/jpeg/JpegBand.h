#pragma once

#include <QByteArrayView>
#include <QImage>
#include <QString>

#include <cstdlib>
#include <memory>
#include <optional>

#include <QSizeF>

namespace hazelmark {

/// How every band of one picture is encoded.
struct JpegBandOptions
{
    int quality = 0;
    std::optional<QSizeF> dpi;
    unsigned restartInterval = 0; ///< in blocks of 8 × 8 pixels; 0: none
};

/// A JPEG file of a picture's rows `firstRow` to `endRow` alone, with an entropy-coded segment that another file can
/// take over: chroma is not subsampled and the Huffman tables are the standard's, so it depends on these rows only.
class JpegBand
{
public:
    /// Rows go from the picture's memory into the library as they are where the format allows (RGBX8888).
    JpegBand(const QImage &pixels, int firstRow, int endRow, const JpegBandOptions &options);

    /// Empty when the library failed, which `error()` tells.
    QByteArrayView file() const { return {m_bytes.get(), qsizetype(m_size)}; }
    const QString &error() const { return m_error; }

    /// From the start marker to the JFIF segment's end.
    QByteArrayView start() const;
    /// The tables and the frame and scan headers.
    QByteArrayView headers() const;
    /// Where in headers() the picture's height stands, two bytes, high byte first.
    qsizetype heightOffset() const { return m_heightOffset; }
    /// The entropy-coded segment, without the end marker.
    QByteArrayView scan() const;

private:
    void findParts();

    struct Free
    {
        void operator()(unsigned char *bytes) const { std::free(bytes); }
    };
    std::unique_ptr<unsigned char, Free> m_bytes;
    unsigned long m_size = 0;
    QString m_error;
    qsizetype m_startSize = 0;
    qsizetype m_scanOffset = 0;
    qsizetype m_heightOffset = 0;
};

} // namespace hazelmark
