#include "AvailableMemory.h"
#include "TestFiles.h"
#include "TestPictures.h"

#include <ctime>
#include <functional>

#include <tiffio.h>

namespace hazelmark {

namespace {

using Reason = Failure::Reason;
constexpr quint32 kByte = 1;
constexpr quint32 kShort = 3;
constexpr quint32 kLong = 4;
constexpr quint32 kUndefined = 7;

QByteArray photo(WriteFormat format)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("photo")));
    return encodePicture(makePicture(20, 10, QImage::Format_RGBX8888), optionsFor(format), file.fileName()) &&
                   file.open(QIODevice::ReadOnly)
               ? file.readAll()
               : QByteArray();
}

/// The file with `count` times `part` at `offset`.
QByteArray stuffed(const QByteArray &file, qsizetype offset, const QByteArray &part, int count)
{
    return file.left(offset) + part.repeated(count) + file.mid(offset);
}

QByteArray stuffedGif(const QByteArray &part, int count)
{
    const QByteArray file = photo(WriteFormat::Gif);
    return stuffed(file, file.indexOf(QByteArray(",\0\0\0\0", 5)), part, count);
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

QByteArray png(quint32 width, quint32 height, const QByteArray &more = {})
{
    return QByteArray("\x89PNG\r\n\x1a\n", 8) +
           pngChunk("IHDR", bigEndian(width) + bigEndian(height) + QByteArray("\x08\0\0\0\0", 5)) + more +
           pngChunk("IDAT", deflated(QByteArray(4096, '\0'))) + pngChunk("IEND", {});
}

/// A frame of one row of two pixels, or what claims to be larger and holds no more.
QByteArray gif(QSize canvas, QSize frame)
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

QByteArray icoHeader(quint32 side)
{
    return QByteArray("\0\0\x01\0\x01\0\0\0\0\0\x01\0\x20\0", 14) + littleEndian(200) + littleEndian(22) +
           png(side, side) + QByteArray(200, 'x');
}

QByteArray tiffHeader(quint32 width, quint32 height, quint32 bits = 8, quint32 samplesPerPixel = 1)
{
    QByteArray directory("II*\0\x08\0\0\0\x08\0", 10);
    for (const auto &[tag, type, value] : {std::tuple(256u, 4u, width),
                                           {257u, 4u, height},
                                           {258u, 3u, bits},
                                           {259u, 3u, 1u},
                                           {262u, 3u, 1u},
                                           {273u, 4u, 8u},
                                           {277u, 3u, samplesPerPixel},
                                           {279u, 4u, 100u}})
        directory += tiffEntry(tag, type, 1, value);
    return directory + littleEndian(0);
}

struct TiffShape
{
    quint32 width;
    quint32 height;
    quint32 samples = 1;
    quint32 tileWidth = 0; ///< 0: strips of all columns and `pieceHeight` rows
    quint32 pieceHeight = 1;
    bool isPlanar = false;
};

/// Grey pixels, and samples of no meaning beside them; all strips or tiles are one and the same black piece.
QByteArray tiff(const TiffShape &shape)
{
    const quint32 perPlane = (shape.height + shape.pieceHeight - 1) / shape.pieceHeight *
                             (shape.tileWidth ? (shape.width + shape.tileWidth - 1) / shape.tileWidth : 1);
    const quint32 pieces = perPlane * (shape.isPlanar ? shape.samples : 1);
    const quint32 pieceSize =
        (shape.tileWidth ? shape.tileWidth : shape.width) * shape.pieceHeight * (shape.isPlanar ? 1 : shape.samples);
    const QByteArray piece = deflated(QByteArray(qsizetype(pieceSize), '\0'));
    constexpr quint32 kStart = 8;
    const quint32 places = kStart + quint32(piece.size() + piece.size() % 2);
    const quint32 bits = places + 8 * pieces;
    const quint32 directory = bits + 2 * shape.samples;
    QByteArray file = "II*" + QByteArray(1, '\0') + littleEndian(directory) +
                      piece.leftJustified(places - kStart, '\0') + littleEndian(kStart).repeated(pieces) +
                      littleEndian(quint32(piece.size())).repeated(pieces) + littleEndian(8, 2).repeated(shape.samples);
    const bool isOne = pieces == 1;
    std::map<quint32, QByteArray> entries;
    const auto set = [&](quint32 tag, quint32 type, quint32 count, quint32 value) {
        entries[tag] = tiffEntry(tag, type, count, value);
    };
    set(TIFFTAG_IMAGEWIDTH, kLong, 1, shape.width);
    set(TIFFTAG_IMAGELENGTH, kLong, 1, shape.height);
    set(TIFFTAG_BITSPERSAMPLE, kShort, shape.samples, shape.samples > 2 ? bits : 0x80008);
    set(TIFFTAG_COMPRESSION, kShort, 1, COMPRESSION_ADOBE_DEFLATE);
    set(TIFFTAG_PHOTOMETRIC, kShort, 1, PHOTOMETRIC_MINISBLACK);
    set(TIFFTAG_SAMPLESPERPIXEL, kShort, 1, shape.samples);
    set(TIFFTAG_PLANARCONFIG, kShort, 1, shape.isPlanar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    set(shape.tileWidth ? TIFFTAG_TILEOFFSETS : TIFFTAG_STRIPOFFSETS, kLong, pieces, isOne ? kStart : places);
    set(shape.tileWidth ? TIFFTAG_TILEBYTECOUNTS : TIFFTAG_STRIPBYTECOUNTS, kLong, pieces,
        isOne ? quint32(piece.size()) : places + 4 * pieces);
    set(shape.tileWidth ? TIFFTAG_TILELENGTH : TIFFTAG_ROWSPERSTRIP, kLong, 1, shape.pieceHeight);
    if (shape.tileWidth)
        set(TIFFTAG_TILEWIDTH, kLong, 1, shape.tileWidth);
    file += littleEndian(quint32(entries.size()), 2);
    for (const auto &[tag, entry] : entries)
        file += entry;
    return file + littleEndian(0);
}

/// Pages of 1 × 1 grey pixel; each directory leads to the next, the last to `end`. Directories begin at `start`.
QByteArray tiffPages(int count, quint32 start, quint32 end, quint32 lastTag, quint32 valueSize)
{
    QByteArray directories;
    const quint32 size = 2 + 9 * 12 + 4;
    for (int page = 1; page <= count; ++page) {
        directories += littleEndian(9, 2) + tiffEntry(256, 4, 1, 1) + tiffEntry(257, 4, 1, 1) +
                       tiffEntry(258, 3, 1, 8) + tiffEntry(259, 3, 1, 1) + tiffEntry(262, 3, 1, 1) +
                       tiffEntry(273, 4, 1, 8) + tiffEntry(278, 4, 1, 1) + tiffEntry(279, 4, 1, 1) +
                       tiffEntry(lastTag, kUndefined, valueSize, 8) +
                       littleEndian(page < count ? start + quint32(page) * size : end);
    }
    return directories;
}

struct Bomb
{
    const char *what;
    std::function<QByteArray()> makeFile;
    std::optional<Reason> reason; ///< nothing: it is harmless
};

std::vector<Bomb> bombs()
{
    constexpr qsizetype kBehindStart = 2;
    constexpr qsizetype kBehindHeader = 33;
    const QByteArray emptySegment("\xff\xe2\0\2", 4);
    return {
        {"JPEG of 500 segments",
         [=] { return stuffed(photo(WriteFormat::Jpeg), kBehindStart, emptySegment, 500); },
         {}},
        {"JPEG of 200,000 segments",
         [=] { return stuffed(photo(WriteFormat::Jpeg), kBehindStart, emptySegment, 200'000); }, Reason::Damaged},
        {"JPEG of filler", [=] { return stuffed(photo(WriteFormat::Jpeg), kBehindStart, "\xff", 40'000'000); },
         Reason::Damaged},
        {"small JPEG of hundreds of scans", [] { return progressiveJpeg(800, 1 + 63 * 6); }, {}},
        {"large JPEG of hundreds of scans", [] { return progressiveJpeg(6000, 1 + 63 * 6); }, Reason::Damaged},
        {"huge JPEG of scans without data",
         [] { return progressiveJpeg(30000, 15).replace(QByteArray(1'000'000, '\0'), {}); }, Reason::Truncated},
        {"PNG of 500 chunks",
         [=] { return stuffed(photo(WriteFormat::Png), kBehindHeader, pngChunk("abCd", "x"), 500); },
         {}},
        {"PNG of 100,000 chunks",
         [=] { return stuffed(photo(WriteFormat::Png), kBehindHeader, pngChunk("abCd", {}), 100'000); },
         Reason::Damaged},
        {"PNG of 30 profiles of 60 MB",
         [] {
             return png(60, 60,
                        pngChunk("iCCP", QByteArray("n\0\0", 3) + deflated(QByteArray(60 << 20, '\0'))).repeated(30));
         },
         {}},
        {"PNG of a hundred million rows", [] { return png(1, 100'000'000); }, Reason::UnsupportedFormat},
        {"GIF of 500 blocks", [] { return stuffedGif(QByteArray("\x21\xfe\1x\0", 5), 500); }, {}},
        {"GIF of a million blocks", [] { return stuffedGif(QByteArray("\x21\xfe\0", 3), 1'000'000); }, Reason::Damaged},
        {"GIF of a frame far larger than its canvas",
         [] {
             return gif({1, 1}, {30000, 30000});
         },
         Reason::Damaged},
        {"GIF of a huge frame without data",
         [] {
             return gif({30000, 30000}, {30000, 30000});
         },
         Reason::Damaged},
        {"TIFF of tiles",
         [] {
             return tiff({100, 100, 1, 64, 64});
         },
         {}},
        {"TIFF of tiles far larger than itself",
         [] {
             return tiff({16000, 1, 1, 16, 4 << 20});
         },
         Reason::Damaged},
        {"TIFF of samples that nobody asks for",
         [] {
             return tiff({16, 100'000, 60'000, 0, 16});
         },
         Reason::Damaged},
        {"TIFF of JBIG data",
         [] {
             const quint32 tag = TIFFTAG_COMPRESSION;
             return tiff({100, 100})
                 .replace(tiffEntry(tag, kShort, 1, COMPRESSION_ADOBE_DEFLATE),
                          tiffEntry(tag, kShort, 1, COMPRESSION_JBIG));
         },
         Reason::UnsupportedFormat},
        {"TIFF of planes that nobody asks for",
         [] {
             return tiff({1000, 1000, 60'000, 0, 1000, true});
         },
         {}},
        {"XBM, which is filled where it ends early",
         [] { return QByteArray("#define a_width 30000\n#define a_height 30000\nstatic char a_bits[] = {\n0x00};\n"); },
         Reason::NotAPicture},
    };
}

} // namespace

using Bombs = FolderTest;

/// Small files that would keep a reader busy for minutes or fill its memory, and their harmless relatives.
TEST_F(Bombs, AreRefusedOrReadInTheTimeOfTheirPixels)
{
    for (const auto &[what, makeFile, reason] : bombs()) {
        const QString path = write(QStringLiteral("bomb"), makeFile());
        const std::clock_t start = std::clock();
        (void)readPictureInfo(path);
        const auto picture = decodePicture(path);
        EXPECT_LT(double(std::clock() - start) / CLOCKS_PER_SEC, 3) << what;
        EXPECT_EQ(picture ? std::nullopt : std::optional(picture.failure().reason), reason)
            << what << (picture ? "" : ": " + picture.failure().sentence().toStdString());
    }
}

TEST_F(Bombs, TiffPagesAreListedWithoutTheirValuesAndLoopsEnd)
{
    constexpr quint32 kValueSize = 8 << 20;
    constexpr quint32 kStart = 8 + kValueSize;
    const QByteArray head = "II*" + QByteArray(1, '\0') + littleEndian(kStart) + QByteArray(kValueSize, 'v');
    EXPECT_EQ(infoOf(head + tiffPages(5000, kStart, kStart, TIFFTAG_ICCPROFILE, kValueSize)).frames.size(), 5000u);
    EXPECT_EQ(infoOf(head + tiffPages(2, kStart, 0, TIFFTAG_ICCPROFILE, 100)).iccProfile, QByteArray(100, 'v'));
    // A later page of more than a gigapixel is not listed.
    QByteArray file = head + tiffPages(2, kStart, 0, TIFFTAG_ICCPROFILE, 4);
    const QByteArray width = tiffEntry(256, 4, 1, 1);
    file.replace(file.lastIndexOf(width), 2 * width.size(),
                 tiffEntry(256, 4, 1, 0x7fffffff) + tiffEntry(257, 4, 1, 0x7fffffff));
    EXPECT_EQ(infoOf(file).frames, std::vector<QSize>{QSize(1, 1)});
}

TEST_F(Bombs, LayersInATiffTagAreNotRead)
{
    constexpr quint32 kLayers = 0x935c;
    constexpr quint32 kValueSize = 200 << 20;
    constexpr quint32 kStart = 8 + kValueSize;
    const QString path = write(QStringLiteral("layers"), "II*" + QByteArray(1, '\0') + littleEndian(kStart));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.resize(kStart) && file.seek(kStart));
    file.write(tiffPages(1, kStart, 0, kLayers, kValueSize));
    file.close();
    const auto picture = decodePicture(path);
    ASSERT_TRUE(picture) << picture.failure().sentence().toStdString();
    EXPECT_EQ(picture->pixels.size(), QSize(1, 1));
}

TEST_F(Bombs, HeadersThatClaimMoreThanAGigapixelAreRefusedBeforeAnythingIsAllocated)
{
    for (const QByteArray &file : {png(100000, 100000), tiffHeader(100000, 100000), bmpHeader(100000),
                                   icoHeader(100000), gif({60000, 60000}, {1, 1}), jpegHeader(60000), jpegHeader(65535),
                                   png(0x7fffffff, 0x7fffffff), bmpHeader(0x7fffffff)})
        EXPECT_EQ(reasonFor(file), Reason::TooLarge);
}

/// Just below the limit the header alone must not cost the memory of the pixels that are not there.
TEST_F(Bombs, LargeClaimWithoutDataFails)
{
    for (const QByteArray &file : {png(30000, 30000), tiffHeader(30000, 30000), bmpHeader(30000), jpegHeader(30000)}) {
        (void)infoOf(file);
        EXPECT_TRUE(reasonFor(file));
    }
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
          {encoded(pixels, optionsFor(WriteFormat::Tiff)), 2 * kBitmap},
          {encoded(pixels, optionsFor(WriteFormat::Gif)), 2 * kBitmap},
          {encoded(pixels, optionsFor(WriteFormat::Bmp)), 2 * kBitmap},
          {icoHeader(kSide), 2 * kBitmap}}) {
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
    // A row of gigabytes in a picture of few pixels is there to exhaust the memory.
    EXPECT_EQ(reasonFor(tiffHeader(1000000, 1, 32, 60000)), Reason::OutOfMemory);
}

} // namespace hazelmark
