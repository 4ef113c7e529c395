#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

#include <vector>

namespace hazelmark {

// Files of kinds that the system itself does not write, made by the codec libraries.

struct TestJpeg
{
    enum class Colors { Gray, Rgb, YCbCr, Cmyk, Ycck };
    Colors colors = Colors::YCbCr;
    bool isProgressive = false;
    int restartInterval = 0;
    int densityUnit = 0; ///< 0 aspect ratio, 1 per inch, 2 per centimetre
    int density = 1;
    QByteArray iccProfile = {};
};

/// `samples`: one (grey), three or four (ink amounts, 255 = full) bytes a pixel, rows without padding. Quality 100.
QByteArray makeJpeg(const TestJpeg &kind, int width, int height, const std::vector<uint8_t> &samples);

struct TestPng
{
    int colorType;
    int bitDepth = 8;
    bool isInterlaced = false;
    QByteArray palette = {};        ///< R, G, B triples
    QByteArray transparency = {};   ///< the content of tRNS
    QByteArray extraChunkType = {}; ///< written before the picture data
    QByteArray extraChunk = {};
};

/// `rows`: packed as the file stores them (big-endian, no filter bytes).
QByteArray makePng(const TestPng &kind, int width, int height, const std::vector<uint8_t> &rows);

/// One page of a TIFF file.
struct TestTiff
{
    int width = 1;
    int height = 1;
    int bits = 8;
    int samplesPerPixel = 3;
    int photometric = 2;  ///< RGB
    int compression = 1;  ///< none
    int sampleFormat = 1; ///< unsigned integers
    int subfileType = 0;
    int orientation = 1;
    int tileSide = 0;       ///< 0: strips of a few rows
    bool isPlanar = false;  ///< of samples of 8 bits
    int resolutionUnit = 0; ///< of 300 across and 150 down; 0 for none
    std::vector<uint16_t> extraSamples = {};
    std::vector<uint16_t> colorMap = {}; ///< reds, greens, blues
    std::vector<uint8_t> rows; ///< as the file stores them, in the machine's byte order; of planes as beside each other
};

QByteArray makeTiff(const std::vector<TestTiff> &pages, const QString &scratchPath);

QByteArray bigEndian(quint32 value);
/// As a zlib stream.
QByteArray deflated(const QByteArray &bytes);
/// With its length and check sum.
QByteArray pngChunk(const QByteArray &type, const QByteArray &content);
/// Empty when Qt has no writer for the format.
QByteArray savedByQt(const QImage &image, const char *format, int quality = -1);

} // namespace hazelmark
