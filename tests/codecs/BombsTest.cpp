#include "AvailableMemory.h"
#include "TestFiles.h"
#include "TestPictures.h"
#include "TiffMaker.h"

#include <tiffio.h>

namespace hazelmark {

namespace {

using Reason = Failure::Reason;

/// The file with `count` times `part` at `offset`.
QByteArray stuffed(const QByteArray &file, qsizetype offset, const QByteArray &part, int count)
{
    return file.left(offset) + part.repeated(count) + file.mid(offset);
}

/// A square progressive picture of one grey: a scan of DC values as it should be, then such as refine one more
/// coefficient or bit each, without any data.
QByteArray progressiveJpeg(quint32 side, int scans)
{
    const auto segment = [](char marker, const QByteArray &content) {
        return '\xff' + QByteArray(1, marker) + bigEndian(quint32(content.size()) + 2).right(2) + content;
    };
    const auto scan = [&](int firstCoefficient, int precision) {
        return segment('\xda',
                       QByteArray("\1\1\0", 3) + char(firstCoefficient) + char(firstCoefficient) + char(precision));
    };
    const QByteArray sides = bigEndian(side).right(2) + bigEndian(side).right(2);
    const QByteArray oneCode = '\1' + QByteArray(15, '\0');
    QByteArray file = "\xff\xd8" + segment('\xdb', QByteArray(1, '\0') + QByteArray(64, '\1')) +
                      segment('\xc2', '\x08' + sides + QByteArray("\1\1\x11\0", 4)) +
                      segment('\xc4', '\0' + oneCode + '\0') + segment('\xc4', '\x10' + oneCode + '\0') + scan(0, 0) +
                      QByteArray(qsizetype((side + 7) / 8) * ((side + 7) / 8) / 8 + 1, '\0');
    for (int i = 1; i < scans; ++i) {
        const int bit = 5 - (i - 1) % 6; // from the highest down
        file += scan(1 + (i - 1) / 6, bit == 5 ? bit : (bit + 1) << 4 | bit);
    }
    return file + "\xff\xd9";
}

QByteArray pngHeader(quint32 width, quint32 height, const QByteArray &more = {})
{
    return QByteArray("\x89PNG\r\n\x1a\n", 8) +
           pngChunk("IHDR", bigEndian(width) + bigEndian(height) + QByteArray("\x08\0\0\0\0", 5)) + more +
           pngChunk("IDAT", deflated(QByteArray(4096, '\0'))) + pngChunk("IEND", {});
}

/// A frame of one row of two pixels, or what claims to be larger and holds no more.
QByteArray gifHeader(QSize canvas, QSize frame)
{
    const auto size = [](QSize s) {
        return littleEndian(quint32(s.width()), 2) + littleEndian(quint32(s.height()), 2);
    };
    return "GIF89a" + size(canvas) + QByteArray("\x80\0\0\0\0\0\xff\xff\xff,\0\0\0\0", 14) + size(frame) +
           QByteArray("\0\x02\x02\x44\x01\0;", 7);
}

// Headers with hardly anything behind them.

/// A frame header between the start and a scan's.
QByteArray jpegHeader(quint32 side)
{
    const QByteArray sides = bigEndian(side).right(2) + bigEndian(side).right(2);
    return QByteArray("\xff\xd8\xff\xc0\0\x0b\x08", 7) + sides + QByteArray("\x01\x01\x11\0", 4) +
           QByteArray("\xff\xda\0\x08\x01\x01\0\0\x3f\0", 10) + QByteArray(50, 'x');
}

QByteArray bmpHeader(quint32 side)
{
    return "BM" + littleEndian(154) + littleEndian(0) + littleEndian(54) + littleEndian(40) + littleEndian(side) +
           littleEndian(side) + littleEndian(1, 2) + littleEndian(24, 2) + QByteArray(24, '\0') + QByteArray(100, 'x');
}

struct TiffShape
{
    quint32 width;
    quint32 height;
    quint32 samples = 1;
    quint32 tileWidth = 0;   ///< 0: strips of all columns and `pieceHeight` rows
    quint32 pieceHeight = 0; ///< 0: a single strip, of which nothing is there
    quint32 bits = 8;
    quint32 compression = COMPRESSION_ADOBE_DEFLATE;
};

/// Grey pixels, and samples of no meaning beside them; all strips or tiles are one and the same black piece.
QByteArray tiff(const TiffShape &shape)
{
    const quint32 columns = shape.tileWidth ? shape.tileWidth : shape.width;
    quint32 pieces = 1;
    if (shape.pieceHeight)
        pieces = (shape.height + shape.pieceHeight - 1) / shape.pieceHeight * ((shape.width + columns - 1) / columns);
    const QByteArray piece = deflated(QByteArray(qsizetype(columns) * shape.pieceHeight * shape.samples, '\0'));
    TiffMaker maker;
    TiffEntries entries;
    maker.setNumbers(entries, {{TIFFTAG_IMAGEWIDTH, shape.width},
                               {TIFFTAG_IMAGELENGTH, shape.height},
                               {TIFFTAG_BITSPERSAMPLE, shape.bits},
                               {TIFFTAG_COMPRESSION, shape.compression},
                               {TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK},
                               {TIFFTAG_SAMPLESPERPIXEL, shape.samples},
                               {shape.tileWidth ? TIFFTAG_TILELENGTH : TIFFTAG_ROWSPERSTRIP,
                                shape.pieceHeight ? shape.pieceHeight : shape.height}});
    if (shape.tileWidth)
        maker.setNumbers(entries, {{TIFFTAG_TILEWIDTH, shape.tileWidth}});
    const auto setAll = [&](quint32 tag, quint64 number) {
        const QByteArray numbers = littleEndian(quint32(number)).repeated(qsizetype(pieces));
        maker.set(entries, quint16(tag), TiffMaker::kLong, numbers);
    };
    setAll(shape.tileWidth ? TIFFTAG_TILEOFFSETS : TIFFTAG_STRIPOFFSETS, maker.add(piece));
    setAll(shape.tileWidth ? TIFFTAG_TILEBYTECOUNTS : TIFFTAG_STRIPBYTECOUNTS, quint64(piece.size()));
    return maker.startingAt(maker.directory(entries));
}

/// Pages of 1 × 1 grey pixel that share the tag's value; each directory leads to the next, the last to the first.
QByteArray tiffPages(int count, quint16 tag, quint32 valueSize)
{
    constexpr quint64 kSize = 2 + 9 * 12 + 4;
    TiffMaker maker;
    const quint64 value = maker.add(QByteArray(qsizetype(valueSize), 'v'));
    const quint64 start = maker.add({});
    for (int page = 1; page <= count; ++page) {
        TiffEntries entries;
        maker.setNumbers(entries, {{TIFFTAG_IMAGEWIDTH, 1},
                                   {TIFFTAG_IMAGELENGTH, 1},
                                   {TIFFTAG_BITSPERSAMPLE, 8},
                                   {TIFFTAG_COMPRESSION, COMPRESSION_NONE},
                                   {TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK},
                                   {TIFFTAG_STRIPOFFSETS, 8},
                                   {TIFFTAG_ROWSPERSTRIP, 1},
                                   {TIFFTAG_STRIPBYTECOUNTS, 1}});
        maker.set(entries, tag, TiffMaker::kUndefined, valueSize, maker.place(value));
        maker.directory(entries, page < count ? start + quint64(page) * kSize : start);
    }
    return maker.startingAt(start);
}

} // namespace

using Bombs = FolderTest;

/// Small files that would keep a reader busy for minutes or fill its memory, and their harmless relatives.
TEST_F(Bombs, AreRefusedOrReadInTheTimeOfTheirPixels)
{
    const auto photo = [&](WriteFormat format) {
        return encoded(makePicture(20, 10, QImage::Format_RGBX8888), optionsFor(format));
    };
    const QByteArray jpeg = photo(WriteFormat::Jpeg);
    const QByteArray png = photo(WriteFormat::Png);
    const QByteArray gif = photo(WriteFormat::Gif);
    const auto stuffedJpeg = [&](const QByteArray &part, int count) { return stuffed(jpeg, 2, part, count); };
    const auto stuffedPng = [&](const QByteArray &content, int count) {
        return stuffed(png, 33, pngChunk("abCd", content), count);
    };
    const auto stuffedGif = [&](const QByteArray &part, int count) {
        return stuffed(gif, gif.indexOf(QByteArray(",\0\0\0\0", 5)), part, count);
    };
    const QByteArray segment("\xff\xe2\0\2", 4);
    const QByteArray profile = pngChunk("iCCP", QByteArray("n\0\0", 3) + deflated(QByteArray(60 << 20, '\0')));
    const QByteArray withoutScans = progressiveJpeg(30000, 15).replace(QByteArray(1'000'000, '\0'), {});
    const std::tuple<const char *, QByteArray, std::optional<Reason>> bombs[] = {
        // no reason: it is harmless
        {"JPEG of 500 segments", stuffedJpeg(segment, 500), {}},
        {"JPEG of 200,000 segments", stuffedJpeg(segment, 200'000), Reason::Damaged},
        {"JPEG of filler", stuffedJpeg("\xff", 40'000'000), Reason::Damaged},
        {"small JPEG of hundreds of scans", progressiveJpeg(800, 1 + 63 * 6), {}},
        {"large JPEG of hundreds of scans", progressiveJpeg(6000, 1 + 63 * 6), Reason::Damaged},
        {"huge JPEG of scans without data", withoutScans, Reason::Truncated},
        {"PNG of 500 chunks", stuffedPng("x", 500), {}},
        {"PNG of 100,000 chunks", stuffedPng({}, 100'000), Reason::Damaged},
        {"PNG of 30 profiles of 60 MB", pngHeader(60, 60, profile.repeated(30)), {}},
        {"PNG of a hundred million rows", pngHeader(1, 100'000'000), Reason::UnsupportedFormat},
        {"GIF of 500 blocks", stuffedGif(QByteArray("\x21\xfe\1x\0", 5), 500), {}},
        {"GIF of a million blocks", stuffedGif(QByteArray("\x21\xfe\0", 3), 1'000'000), Reason::Damaged},
        {"GIF of a frame far larger than its canvas", gifHeader({1, 1}, {30000, 30000}), Reason::Damaged},
        {"GIF of a huge frame without data", gifHeader({30000, 30000}, {30000, 30000}), Reason::Damaged},
        {"TIFF of tiles far larger than itself", tiff({16000, 1, 1, 16, 4 << 20}), Reason::Damaged},
        {"TIFF of samples that nobody asks for", tiff({16, 100'000, 60'000, 0, 16}), Reason::Damaged},
        {"TIFF of JBIG", tiff({100, 100, 1, 0, 0, 1, COMPRESSION_JBIG}), Reason::UnsupportedFormat},
        {"TIFF of large layers", tiffPages(1, 0x935c, 40 << 20), {}},
    };
    for (const auto &[what, file, reason] : bombs) {
        const QString path = write(QStringLiteral("bomb"), file);
        (void)readPictureInfo(path);
        const auto picture = decodePicture(path);
        EXPECT_EQ(picture ? std::nullopt : std::optional(picture.failure().reason), reason)
            << what << (picture ? "" : ": " + picture.failure().sentence().toStdString());
    }
}

TEST_F(Bombs, HeadersThatClaimMoreThanThereIsAreRefused)
{
    constexpr quint32 kMost = 0x7fffffff;
    for (const QByteArray &file :
         {pngHeader(100000, 100000), tiff({100000, 100000}), bmpHeader(100000), gifHeader({60000, 60000}, {1, 1}),
          jpegHeader(60000), jpegHeader(65535), pngHeader(kMost, kMost), bmpHeader(kMost)})
        EXPECT_EQ(reasonFor(file), Reason::TooLarge);
    for (const QByteArray &file : {tiff({10, 0}), tiff({0, 10}), pngHeader(0, 10), bmpHeader(0),
                                   gifHeader({9, 9}, {0, 9}), gifHeader({9, 9}, {9, 0})})
        EXPECT_EQ(reasonFor(file), Reason::Damaged);
    // Just below the limit the header alone must not cost the memory of the pixels that are not there.
    for (const QByteArray &file :
         {pngHeader(30000, 30000), tiff({30000, 30000}), bmpHeader(30000), jpegHeader(30000)}) {
        (void)infoOf(file);
        EXPECT_TRUE(reasonFor(file));
    }
    // Pages are listed without their values, and loops end.
    EXPECT_EQ(infoOf(tiffPages(5000, TIFFTAG_ICCPROFILE, 8 << 20)).frames.size(), 5000u);
    // A row of gigabytes in a picture of few pixels is there to exhaust the memory.
    EXPECT_EQ(reasonFor(tiff({1000000, 1, 60000, 0, 0, 32})), Reason::OutOfMemory);
}

/// What the memory cannot hold is refused by its headers alone, whatever follows them.
TEST_F(Bombs, PictureForWhichThereIsNoMemoryIsNotDecoded)
{
    constexpr int kSide = 1000;
    constexpr qint64 kBitmap = qint64(kSide) * kSide * 4;
    const QImage pixels = makePicture(kSide, kSide, QImage::Format_RGBX8888);
    const std::vector<uint8_t> samples(kBitmap * 3 / 4, 99);
    for (const auto &[file, needed] :
         {std::pair(encoded(pixels, optionsFor(WriteFormat::Png)), 2 * kBitmap),
          {encoded(pixels, optionsFor(WriteFormat::Jpeg)), 2 * kBitmap},
          {makeJpeg({.isProgressive = true}, kSide, kSide, samples), kBitmap + 3 * 2 * kBitmap / 4},
          {encoded(pixels, optionsFor(WriteFormat::Tiff)), 2 * kBitmap}}) {
        const QString path = write(QStringLiteral("picture"), file);
        const auto reason = [&](qint64 memory) {
            const MemoryCap cap(memory);
            const auto picture = decodePicture(path);
            return picture ? std::nullopt : std::optional(picture.failure().reason);
        };
        EXPECT_EQ(reason(needed * 99 / 100), Reason::OutOfMemory) << path.toStdString();
        EXPECT_NE(reason(needed * 101 / 100 + 64 * 1024), Reason::OutOfMemory);
        const MemoryCap cap(0);
        EXPECT_TRUE(readPictureInfo(path)) << "headers alone take none";
    }
}

} // namespace hazelmark
