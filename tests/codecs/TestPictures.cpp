#include "TestPictures.h"

#include "TestFiles.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include <QBuffer>
#include <QFile>
#include <QtEndian>

#include <jpeglib.h>
#include <tiffio.h>
#include <zlib.h>

namespace hazelmark {

QByteArray makeJpeg(const TestJpeg &kind, int width, int height, const std::vector<uint8_t> &samples)
{
    constexpr std::tuple<J_COLOR_SPACE, J_COLOR_SPACE, int> kSpaces[] = {
        {JCS_GRAYSCALE, JCS_GRAYSCALE, 1},
        {JCS_RGB, JCS_RGB, 3},
        {JCS_RGB, JCS_YCbCr, 3},
        {JCS_CMYK, JCS_CMYK, 4},
        {JCS_CMYK, JCS_YCCK, 4}}; // in the order of TestJpeg::Colors
    const auto [input, inFile, sampleCount] = kSpaces[int(kind.colors)];
    jpeg_compress_struct lib = {};
    jpeg_error_mgr errors;
    lib.err = jpeg_std_error(&errors); // ends the test program on an error
    jpeg_create_compress(&lib);
    unsigned char *bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&lib, &bytes, &size);
    lib.image_width = JDIMENSION(width);
    lib.image_height = JDIMENSION(height);
    lib.in_color_space = input;
    lib.input_components = sampleCount;
    jpeg_set_defaults(&lib);
    jpeg_set_colorspace(&lib, inFile);
    jpeg_set_quality(&lib, 100, TRUE);
    for (int component = 0; component < lib.num_components; ++component)
        lib.comp_info[component].h_samp_factor = lib.comp_info[component].v_samp_factor = 1;
    if (kind.isProgressive)
        jpeg_simple_progression(&lib);
    lib.restart_interval = unsigned(kind.restartInterval);
    lib.density_unit = UINT8(kind.densityUnit);
    lib.X_density = lib.Y_density = UINT16(kind.density);
    jpeg_start_compress(&lib, TRUE);
    if (!kind.iccProfile.isEmpty())
        jpeg_write_icc_profile(&lib, reinterpret_cast<const JOCTET *>(kind.iccProfile.constData()),
                               unsigned(kind.iccProfile.size()));
    const bool isInverted = lib.in_color_space == JCS_CMYK; // as the library's marker says
    std::vector<uint8_t> row(size_t(width) * size_t(lib.input_components));
    for (size_t y = 0; y < size_t(height); ++y) {
        for (size_t i = 0; i < row.size(); ++i) {
            const uint8_t sample = samples[y * row.size() + i];
            row[i] = isInverted ? uint8_t(255 - sample) : sample;
        }
        JSAMPROW pointer = row.data();
        jpeg_write_scanlines(&lib, &pointer, 1);
    }
    jpeg_finish_compress(&lib);
    jpeg_destroy_compress(&lib);
    const QByteArray file(reinterpret_cast<const char *>(bytes), qsizetype(size));
    std::free(bytes);
    return file;
}

QByteArray makePng(const TestPng &kind, int width, int height, const std::vector<uint8_t> &rows)
{
    struct Pass
    {
        int x, y, stepX, stepY;
    };
    const std::vector<Pass> interlaced = {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                                          {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}};
    const size_t rowBytes = rows.size() / size_t(height);
    QByteArray filtered;
    for (const Pass &pass : kind.isInterlaced ? interlaced : std::vector<Pass>{{0, 0, 1, 1}}) {
        for (int y = pass.y; y < height && pass.x < width; y += pass.stepY) {
            filtered += '\0'; // no filter
            const auto *row = reinterpret_cast<const char *>(rows.data() + size_t(y) * rowBytes);
            const qsizetype pixel = qsizetype(rowBytes) / width; // whole bytes where there are passes
            if (!kind.isInterlaced)
                filtered += QByteArray(row, qsizetype(rowBytes));
            for (int x = pass.x; kind.isInterlaced && x < width; x += pass.stepX)
                filtered += QByteArray(row + x * pixel, pixel);
        }
    }
    const auto chunkIfAny = [](const QByteArray &type, const QByteArray &content) {
        return content.isEmpty() ? QByteArray() : pngChunk(type, content);
    };
    return QByteArray("\x89PNG\r\n\x1a\n", 8) +
           pngChunk("IHDR", bigEndian(quint32(width)) + bigEndian(quint32(height)) + char(kind.bitDepth) +
                                char(kind.colorType) + QByteArray(2, '\0') + char(kind.isInterlaced)) +
           chunkIfAny("PLTE", kind.palette) + chunkIfAny("tRNS", kind.transparency) +
           chunkIfAny(kind.extraChunkType, kind.extraChunk) + pngChunk("IDAT", deflated(filtered)) +
           pngChunk("IEND", {});
}

namespace {

void setTags(TIFF *tiff, const TestTiff &page)
{
    const std::pair<uint32_t, int> tags[] = {
        {TIFFTAG_SUBFILETYPE, page.subfileType},
        {TIFFTAG_IMAGEWIDTH, page.width},
        {TIFFTAG_IMAGELENGTH, page.height},
        {TIFFTAG_BITSPERSAMPLE, page.bits},
        {TIFFTAG_SAMPLESPERPIXEL, page.samplesPerPixel},
        {TIFFTAG_PHOTOMETRIC, page.photometric},
        {TIFFTAG_COMPRESSION, page.compression},
        {TIFFTAG_SAMPLEFORMAT, page.sampleFormat},
        {TIFFTAG_ORIENTATION, page.orientation},
        {TIFFTAG_PLANARCONFIG, page.isPlanar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG}};
    for (const auto &[tag, value] : tags)
        TIFFSetField(tiff, tag, value);
    if (page.compression == COMPRESSION_JPEG)
        TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    if (page.compression == COMPRESSION_SGILOG)
        TIFFSetField(tiff, TIFFTAG_SGILOGDATAFMT, SGILOGDATAFMT_16BIT);
    if (page.resolutionUnit > 0) {
        TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 300.0);
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 150.0);
        TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, page.resolutionUnit);
    }
    if (!page.extraSamples.empty())
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, int(page.extraSamples.size()), page.extraSamples.data());
    if (!page.colorMap.empty()) {
        const size_t entries = page.colorMap.size() / 3;
        TIFFSetField(tiff, TIFFTAG_COLORMAP, page.colorMap.data(), page.colorMap.data() + entries,
                     page.colorMap.data() + 2 * entries);
    }
    if (page.tileSide > 0) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, page.tileSide);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, page.tileSide);
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, page.photometric == PHOTOMETRIC_YCBCR ? page.height : 3);
    }
}

bool isSubsampled(const TestTiff &page)
{
    return page.photometric == PHOTOMETRIC_YCBCR && page.compression == COMPRESSION_NONE;
}

void writeRows(TIFF *tiff, const TestTiff &page, uint16_t plane = 0)
{
    const size_t rowBytes = page.rows.size() / size_t(page.height);
    const auto samplesAt = [&](int x, int y) {
        return page.rows.begin() + long(size_t(y) * rowBytes + size_t(x) * rowBytes / size_t(page.width));
    };
    for (int y = 0; y < page.height && page.tileSide == 0; ++y) {
        std::vector<uint8_t> row(samplesAt(0, y), samplesAt(0, y + 1)); // a copy: the library may swap bytes in place
        TIFFWriteScanline(tiff, row.data(), uint32_t(y), plane);
    }
    for (int top = 0; top < page.height && page.tileSide > 0; top += page.tileSide) {
        for (int left = 0; left < page.width; left += page.tileSide) {
            std::vector<uint8_t> tile(static_cast<size_t>(TIFFTileSize(tiff)));
            const int right = std::min(page.width, left + page.tileSide);
            for (int y = top; y < std::min(page.height, top + page.tileSide); ++y)
                std::copy(samplesAt(left, y), samplesAt(right, y), tile.begin() + (y - top) * TIFFTileRowSize(tiff));
            TIFFWriteTile(tiff, tile.data(), uint32_t(left), uint32_t(top), 0, plane);
        }
    }
}

} // namespace

QByteArray makeTiff(const std::vector<TestTiff> &pages, const QString &scratchPath)
{
    TIFF *tiff = TIFFOpen(QFile::encodeName(scratchPath).constData(), "w");
    for (const TestTiff &page : pages) {
        setTags(tiff, page);
        if (isSubsampled(page)) // blocks of 2 x 2 luminances and two chrominances, which no row can be told of
            TIFFWriteEncodedStrip(tiff, 0, std::vector(page.rows).data(), tmsize_t(page.rows.size()));
        for (int plane = 0; page.isPlanar && plane < page.samplesPerPixel; ++plane) {
            TestTiff single = page;
            single.rows.clear();
            for (size_t at = size_t(plane); at < page.rows.size(); at += size_t(page.samplesPerPixel))
                single.rows.push_back(page.rows[at]);
            writeRows(tiff, single, uint16_t(plane));
        }
        if (!isSubsampled(page) && !page.isPlanar)
            writeRows(tiff, page);
        TIFFWriteDirectory(tiff);
    }
    TIFFClose(tiff);
    QFile file(scratchPath);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray bigEndian(quint32 value)
{
    QByteArray bytes(4, Qt::Uninitialized);
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray deflated(const QByteArray &bytes)
{
    return qCompress(bytes, 9).mid(4); // without Qt's length in front
}

QByteArray pngChunk(const QByteArray &type, const QByteArray &content)
{
    const QByteArray both = type + content;
    const auto checksum = quint32(crc32(0, reinterpret_cast<const Bytef *>(both.constData()), uInt(both.size())));
    return bigEndian(quint32(content.size())) + both + bigEndian(checksum);
}

QByteArray savedByQt(const QImage &image, const char *format, int quality)
{
    QBuffer buffer;
    return image.save(&buffer, format, quality) ? buffer.data() : QByteArray();
}

} // namespace hazelmark
