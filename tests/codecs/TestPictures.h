#pragma once

#include <QByteArray>
#include <QImage>

#include <vector>

namespace hazelmark {

// Files of kinds that the system itself does not write, made by the codec libraries.

struct TestJpeg
{
    enum class Colors { Gray, Rgb, YCbCr, Cmyk, Ycck };
    Colors colors = Colors::YCbCr;
    bool isProgressive = false;
    bool isArithmetic = false;
    bool isSubsampled = false;
    bool hasAdobeMarker = true; ///< for CMYK; the samples are then stored inverted
    int restartInterval = 0;
    int densityUnit = 0; ///< 0 aspect ratio, 1 per inch, 2 per centimetre
    int densityX = 1;
    int densityY = 1;
    QByteArray iccProfile;
};

/// `samples`: one (grey), three or four (ink amounts, 255 = full) bytes a pixel, rows without padding. Quality 100.
QByteArray makeJpeg(const TestJpeg &kind, int width, int height, const std::vector<uint8_t> &samples);

struct TestPng
{
    int colorType;
    int bitDepth = 8;
    bool isInterlaced = false;
    QByteArray palette;        ///< R, G, B triples
    QByteArray transparency;   ///< the content of tRNS
    QByteArray extraChunkType; ///< written before the picture data
    QByteArray extraChunk;
};

/// `rows`: packed as the file stores them (big-endian, no filter bytes).
QByteArray makePng(const TestPng &kind, int width, int height, const std::vector<uint8_t> &rows);

} // namespace hazelmark
