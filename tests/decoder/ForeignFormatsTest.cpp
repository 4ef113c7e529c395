// Pictures in the formats of other programs, made by those programs and compared with what they were made of.
#include "BoxMaker.h"
#include "DecodeScope.h"
#include "Photo.h"
#include "TestFiles.h"
#include "TiffMaker.h"

#include <QColorSpace>
#include <QImageReader>
#include <QProcess>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#if HAZELMARK_HAS_RAW
#include <libraw/libraw.h>
#endif

namespace hazelmark {

namespace {

constexpr QImage::Format kRgb8 = QImage::Format_RGBX8888;
constexpr QImage::Format kRgb16 = QImage::Format_RGBX64;
constexpr QImage::Format kRgba8 = QImage::Format_RGBA8888;
constexpr QImage::Format kRgba16 = QImage::Format_RGBA64;
constexpr QImage::Format kGray8 = QImage::Format_Grayscale8;
constexpr QImage::Format kGray16 = QImage::Format_Grayscale16;

/// The largest difference of two samples, in 16 bits.
int distance(const QImage &a, const QImage &b)
{
    if (a.size() != b.size())
        return INT_MAX;
    const QImage x = a.depth() == 64 ? a : a.convertToFormat(kRgba16);
    const QImage y = b.depth() == 64 ? b : b.convertToFormat(kRgba16);
    const auto *left = reinterpret_cast<const quint16 *>(x.constBits());
    const auto *right = reinterpret_cast<const quint16 *>(y.constBits());
    int most = 0;
    for (int sample = 0; sample < 4 * x.width() * x.height(); ++sample)
        most = std::max(most, std::abs(left[sample] - right[sample]));
    return most;
}

struct Row
{
    const char *what;
    const char *command; ///< with IN.png and OUT to be replaced
    QImage::Format source;
    QImage::Format expected;
    int bits;
    int tolerance; ///< of 16-bit samples
    QTransform turn = {};
    QRect crop = {}; ///< that is left before the turn
};

const QTransform kTopToBottom(1, 0, 0, -1, 0, 0);
const QTransform kLeftToRight(-1, 0, 0, 1, 0, 0);

std::vector<Row> rows()
{
    constexpr int k8 = 257;
    constexpr int k10 = 65535 / 1023 + 1;
    constexpr int k12 = 65535 / 4095 + 1;
    std::vector<Row> all;
#if HAZELMARK_HAS_HEIF
    const QTransform left = QTransform().rotate(-90);
    all.insert(all.end(),
               {{"HEIC", "heif-enc -L -p chroma=444 --matrix_coefficients=0 IN.png -o OUT.heic", kRgb8, kRgb8, 8, k8},
                {"HEIC with alpha", "heif-enc -L -p chroma=444 IN.png -o OUT.heic", kRgba8, kRgba8, 8, 6 * k8},
                {"grey HEIC", "heif-enc -L IN.png -o OUT.heic", kGray8, kGray8, 8, 2 * k8},
                {"AVIF", "avifenc -l IN.png OUT.avif", kRgb8, kRgb8, 8, 0},
                {"AVIF with alpha", "avifenc -l IN.png OUT.avif", kRgba8, kRgba8, 8, 0},
                {"AVIF of 10 bits", "avifenc -l -d 10 IN.png OUT.avif", kRgb16, kRgb16, 10, k10},
                {"AVIF of 12 bits with alpha", "avifenc -l -d 12 IN.png OUT.avif", kRgba16, kRgba16, 12, k12},
                {"turned, mirrored AVIF", "avifenc -l --irot 1 --imir 0 IN.png OUT.avif", kRgb8, kRgb8, 8, 0,
                 left * kTopToBottom},
                {"cropped, turned, mirrored AVIF of 10 bits",
                 "avifenc -l -d 10 --crop 20,12,200,150 --irot 3 --imir 1 IN.png OUT.avif", kRgb16, kRgb16, 10, k10,
                 QTransform().rotate(90) * kLeftToRight, QRect(20, 12, 200, 150)},
                {"grey AVIF of 10 bits", "avifenc -d 10 --min 0 --max 0 -y 400 IN.png OUT.avif", kGray16, kGray16, 10,
                 4 * k10},
                {"multiplied AVIF", "avifenc -l -p IN.png OUT.avif", kRgba8, kRgba8, 8, 2 * k8},
                {"multiplied AVIF of 12 bits", "avifenc -l -p -d 12 IN.png OUT.avif", kRgba16, kRgba16, 12, 2 * k12},
                {"AVIF in tiles", "avifenc -l --grid 2x2 IN.png OUT.avif", kRgb8, kRgb8, 8, 0}});
#endif
#if HAZELMARK_HAS_JXL
    all.insert(all.end(),
               {{"JPEG XL", "cjxl -d 0 -e 3 IN.png OUT.jxl", kRgb8, kRgb8, 8, 0},
                {"JPEG XL of 16 bits, alpha of 8", "cjxl -d 0 -e 3 IN.png OUT.jxl", kRgba16, kRgba16, 16, 128},
                {"grey JPEG XL in a container", "cjxl -d 0 -e 3 --container=1 IN.png OUT.jxl", kGray8, kGray8, 8, 0},
                {"multiplied JPEG XL", "cjxl -d 0 -e 3 --premultiply=1 IN.png OUT.jxl", kRgba8, kRgba8, 8, 2 * k8},
                {"grey JPEG XL of 16 bits", "cjxl -d 0 -e 3 IN.png OUT.jxl", kGray16, kGray16, 16, 0},
                {"JPEG XL with losses", "cjxl -d 0.3 -e 3 IN.png OUT.jxl", kRgb8, kRgb8, 8, 50 * k8}});
#endif
#if HAZELMARK_HAS_JP2
    all.insert(
        all.end(),
        {{"JPEG 2000", "opj_compress -i IN.png -o OUT.jp2", kRgb8, kRgb8, 8, 0},
         {"JPEG 2000 of 16 bits with alpha", "opj_compress -i IN.png -o OUT.jp2", kRgba16, kRgba16, 16, 0},
         {"grey JPEG 2000 code stream in tiles", "opj_compress -t 100,80 -i IN.png -o OUT.j2k", kGray8, kGray8, 8, 0}});
#endif
    all.insert(all.end(), {{"WebP", "cwebp -quiet -lossless -exact IN.png -o OUT.webp", kRgba8, kRgba8, 8, 0},
                           {"WebP without alpha", "cwebp -quiet -lossless IN.png -o OUT.webp", kRgb8, kRgb8, 8, 0}});
    return all;
}

/// A box of JPEG XL that is compressed with Brotli, which says that it has stored the content as it is.
QByteArray packedBox(const QByteArray &type, const QByteArray &content)
{
    return boxOf("brob" + type + littleEndian(1 << 20 | quint32(content.size() - 1) << 4, 3) + content + '\3');
}

#if HAZELMARK_HAS_RAW
constexpr quint32 kBehindFilter = 32803;
constexpr quint32 kWithoutFilter = 34892;

/// A camera's raw file: 16-bit samples behind a filter of red, green, green, blue, which a camera that sees no colours
/// says it has not. Beside a `preview` there is no matrix of the camera's colours.
QByteArray makeDng(quint32 turn, quint32 kindOfSensor, const QByteArray &preview = {})
{
    constexpr auto kSigned = TiffMaker::Type(10);
    TiffMaker maker;
    TiffEntries raw, other;
    const QByteArray samples = noiseBytes(2 * 64 * 48, 1);
    maker.setNumbers(raw, {{256, 64}, {257, 48}, {258, 16}, {259, 1}, {262, kindOfSensor}, {274, turn}, {277, 1}});
    maker.setNumbers(raw, {{273, quint32(maker.add(samples))}, {278, 48}, {279, quint32(samples.size())}});
    for (const quint16 tag : {270, 271, 272, 305, 306, 315, 316, 33432}) // texts of the photo
        maker.set(raw, tag, TiffMaker::kAscii, QByteArray("2024:01:02 03:04:05", 20));
    for (const quint16 tag : {282, 283})
        maker.set(raw, tag, TiffMaker::kRational, littleEndian(72) + littleEndian(1));
    maker.setNumbers(raw, {{296, 2}});
    maker.set(raw, 33421, TiffMaker::kShort, QByteArray("\2\0\2", 4));
    maker.set(raw, 33422, TiffMaker::kByte, QByteArray("\0\1\1\2", 4));
    maker.set(raw, 50706, TiffMaker::kByte, QByteArray("\1\4\0", 4));
    QByteArray matrix, white;
    for (const int tenThousandths : {8000, -2000, -500, -4000, 12000, 1800, -800, 2000, 6000})
        matrix += littleEndian(quint32(tenThousandths)) + littleEndian(10'000);
    for (const quint32 percent : {50u, 100u, 70u})
        white += littleEndian(percent) + littleEndian(100);
    maker.set(raw, preview.isEmpty() ? 50721 : 50725, kSigned, matrix);
    maker.set(raw, 50728, TiffMaker::kRational, white);
    if (preview.isEmpty())
        return maker.startingAt(maker.directory(raw));
    maker.setNumbers(
        other,
        {{254, 1}, {259, 7}, {262, 6}, {273, quint32(maker.add(preview))}, {277, 3}, {279, quint32(preview.size())}});
    return maker.startingAt(maker.directory(raw, maker.directory(other)));
}

/// By the library: in the camera's white, as sRGB.
QImage developed(QByteArray file)
{
    LibRaw raw;
    raw.imgdata.params.use_camera_wb = raw.imgdata.params.output_color = 1;
    raw.imgdata.params.user_qual = 3;
    raw.imgdata.params.output_bps = 16;
    raw.imgdata.params.gamm[0] = 1 / 2.4;
    raw.imgdata.params.gamm[1] = 12.92;
    EXPECT_EQ(raw.open_buffer(file.data(), size_t(file.size())) | raw.unpack() | raw.dcraw_process(), 0);
    libraw_processed_image_t *const made = raw.dcraw_make_mem_image();
    const auto *from = reinterpret_cast<const quint16 *>(made->data);
    QImage pixels(made->width, made->height, kRgb16);
    for (int at = 0; at < pixels.width() * pixels.height(); ++at, from += made->colors)
        pixels.setPixelColor(at % pixels.width(), at / pixels.width(),
                             QRgba64::fromRgba64(from[0], from[made->colors / 2], from[made->colors - 1], 65535));
    LibRaw::dcraw_clear_mem(made);
    return pixels;
}
#endif

} // namespace

class ForeignFormats : public FolderTest
{
protected:
    /// The file that the command makes of the picture, or of what is there; a command that fails, fails the test.
    QString made(QString command, const QImage &source = {}) const
    {
        EXPECT_TRUE(source.isNull() || source.save(pathOf(QStringLiteral("in.png"))));
        const QString output =
            pathOf(QStringLiteral("made.") + command.section(QStringLiteral("OUT."), 1).section(u' ', 0, 0));
        QFile::remove(output);
        command.replace(QStringLiteral("IN."), pathOf(QStringLiteral("in.")));
        command.replace(QStringLiteral("OUT."), pathOf(QStringLiteral("made.")));
        QProcess program;
        program.startCommand(command);
        EXPECT_TRUE(program.waitForFinished(60'000) && program.exitCode() == 0)
            << command.toStdString() << ": " << program.errorString().toStdString() << program.readAll().toStdString();
        return output;
    }
};

TEST_F(ForeignFormats, ComeAsTheyWereSavedUnlessTheyAreCut)
{
    for (const Row &row : rows()) {
        SCOPED_TRACE(row.what);
        const QImage source = makePicture(256, 192, row.source);
        const QString file = made(QString::fromLatin1(row.command), source);
        const Outcome<PhotoPtr> photo = Photo::open(file);
        ASSERT_TRUE(photo) << photo.failure().sentence().toStdString();
        const QImage left = row.crop.isEmpty() ? source : source.copy(row.crop);
        const QImage upright = left.transformed(row.turn).convertToFormat(row.expected);
        EXPECT_EQ((*photo)->info().bitsPerChannel, row.bits);
        EXPECT_EQ((*photo)->info().hasAlpha, upright.hasAlphaChannel());
        EXPECT_EQ((*photo)->uprightSizes(), std::vector<QSize>{upright.size()});
        double done = 0;
        const DecodeScope scope([] { return false; }, [&](double now) { EXPECT_GT(now, std::exchange(done, now)); });
        const Outcome<Picture> picture = (*photo)->decode();
        ASSERT_TRUE(picture) << picture.failure().sentence().toStdString();
        EXPECT_TRUE(done > 0.5 || !std::strstr(row.what, "stream in tiles")) << done;
        EXPECT_EQ(picture->pixels.format(), row.expected);
        const bool isMultiplied = std::strstr(row.what, "multiplied"); // then colours under transparent pixels go
        const auto compared = isMultiplied ? QImage::Format_RGBA64_Premultiplied : kRgba16;
        EXPECT_LE(distance(picture->pixels.convertToFormat(compared), upright.convertToFormat(compared)),
                  row.tolerance);
        EXPECT_EQ((*photo)->info().format, file.section(u'.', -1).toLatin1().replace("j2k", "jp2"));
        for (qint64 size = QFileInfo(file).size(), tenth = 9; tenth > 0; --tenth) {
            ASSERT_TRUE(QFile::resize(file, size * tenth / 10));
            done = 0;
            EXPECT_FALSE(decodePicture(file)) << "cut at " << tenth;
        }
        const bool isGray = row.source == kGray8 || row.source == kGray16;
        EXPECT_EQ((*photo)->info().colorModel, isGray ? ColorModel::Gray : ColorModel::Rgb);
    }
}

/// A camera has noted that the picture lies on its side. Where the format has a turn of its own, that one counts and
/// the note does not.
TEST_F(ForeignFormats, TellTheirMetadataOnceTurnedUpright)
{
    const auto exif = [](char turn) {
        return QByteArray("II*\0\10\0\0\0\1\0\x12\1\4\0\1\0\0\0", 18) + turn + QByteArray(7, '\0') +
               noiseBytes(200'000, 1);
    };
    const auto xmp = [](char turn) {
        return QByteArray("<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
                          "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
                          "<rdf:Description xmlns:tiff='http://ns.adobe.com/tiff/1.0/' tiff:Orientation='") +
               turn + "'/></rdf:RDF></x:xmpmeta>";
    };
    // With what is put behind it, the turn that is told, and the profile.
    std::vector<std::tuple<QString, QByteArray, char, QByteArray>> cases;
#if HAZELMARK_HAS_HEIF
    const QByteArray adobe = QColorSpace(QColorSpace::AdobeRgb).iccProfile();
    cases.push_back({QStringLiteral("avifenc --irot 3 --exif %1 --xmp %2 --icc %3 IN.png OUT.avif")
                         .arg(write(QStringLiteral("exif"), exif(6)), write(QStringLiteral("xmp"), xmp('6')),
                              write(QStringLiteral("icc"), adobe)),
                     QByteArray(), 1, adobe});
#endif
#if HAZELMARK_HAS_JXL
    cases.push_back({QStringLiteral("cjxl -d 0 -e 3 --container=1 IN.png OUT.jxl"),
                     boxOf("Exif" + QByteArray(4, '\0') + exif(6)) + packedBox("xml ", xmp('6')), 1, QByteArray()});
#endif
#if HAZELMARK_HAS_JP2
    const QByteArray before = boxOf("uuidJpgTiffExif->JP2" + exif(6)) +
                              boxOf("uuid" + QByteArray::fromHex("33c7a4d2b81d4723a0baf1a3e097ad38") + "iptc");
    for (const QByteArray &box : {"uuid" + QByteArray::fromHex("be7acfcb97a942e89c71999491e3afac"), QByteArray("xml ")})
        cases.push_back(
            {QStringLiteral("opj_compress -i IN.png -o OUT.jp2"), before + boxOf(box + xmp('6')), 6, QByteArray()});
#endif
    for (const auto &[command, boxes, turn, profile] : cases) {
        SCOPED_TRACE(command.toStdString());
        const QByteArray file = contentOf(made(command, makePicture(64, 48, kRgb8)));
        const auto source = SourceFile::open(write(QStringLiteral("file"), file + boxes));
        auto decoder = Decoder::open(**source);
        ASSERT_TRUE(decoder) << decoder.failure().sentence().toStdString();
        EXPECT_EQ(decoder->info()->isTurnedUpright, turn == 1);
        EXPECT_EQ(decoder->info()->iccProfile, profile);
        const EmbeddedBlocks blocks = decoder->blocks().value();
        EXPECT_TRUE(blocks.exif == exif(turn) && blocks.xmp == xmp(char('0' + turn)));
        EXPECT_EQ(blocks.iptc, boxes.contains("iptc") ? "iptc" : "");
    }
}

#if HAZELMARK_HAS_HEIF && HAZELMARK_HAS_JXL
/// By their numbers, or, where they are brighter than white, in sRGB: a grey of half the samples' range.
TEST_F(ForeignFormats, ColorsWithoutProfileGetOne)
{
    const QString avif = QStringLiteral("avifenc -l -d 10 --cicp %1 IN.png OUT.avif");
    const QString jxl = QStringLiteral("cjxl -d 0 -e 3 -x color_space=%1 IN.png OUT.jxl");
    const std::tuple<QString, const char *, bool, int> rows[] = {{avif, "12/13/1", true, 32768},
                                                                 {avif, "9/16/9", false, 46170},
                                                                 {avif, "9/18/9", false, 35182},
                                                                 {avif, "1/13/1", false, 32768},
                                                                 {jxl, "RGB_D65_DCI_Rel_SRG", true, 32768},
                                                                 {jxl, "RGB_D65_202_Rel_PeQ", false, 46170},
                                                                 {jxl, "RGB_D65_202_Rel_HLG", false, 35182},
                                                                 {jxl, "RGB_D65_SRG_Rel_SRG", false, 32768}};
    for (const auto &[command, colors, hasProfile, level] : rows) {
        QImage grey(16, 16, kRgb16);
        grey.fill(QColor::fromRgba64(32768, 32768, 32768));
        const auto picture = decodePicture(made(command.arg(QLatin1String(colors)), grey));
        ASSERT_TRUE(picture) << picture.failure().sentence().toStdString();
        EXPECT_EQ(picture->iccProfile.isEmpty(), !hasProfile) << colors;
        EXPECT_NEAR(samplesOf(picture->pixels, 1).front(), level, 300) << colors;
    }
}
#endif

#if HAZELMARK_HAS_JP2
/// Pictures of four samples in a row, as the command's raw samples and the boxes before its own say what they are.
TEST_F(ForeignFormats, Jpeg2000SamplesOfEveryKind)
{
    const auto box = [](const QByteArray &type, const char *content) {
        return boxOf(type + QByteArray::fromHex(content));
    };
    const QByteArray ycc = box("colr", "010000 00000012"), rgb = box("colr", "010000 00000010");
    const QByteArray map = box("cmap", "00000100 00000101 00000102 00000103");
    const struct
    {
        const char *form; ///< width, height, channels, bits, whether they are signed; where samples are coarse
        const char *samples;
        QByteArray boxes;
        std::vector<int> expected; ///< of the last row; none for files that are refused
    } rows[] = {
        {"4,1,1,1,u", "00010100", {}, {0, 255, 255, 0}},
        {"4,1,1,8,s", "80ff007f", {}, {0, 127, 128, 255}},
        {"4,1,1,9,u", "0000 0100 ff01 0001", {}, {0, 128, 65535, 32832}},
        {"2,2,2,8,u", "0000 090a 0000 0b00", {}, {9, 9, 9, 11, 10, 10, 10, 0}},
        {"2,1,2,12,s", "00f8 ff07 0000 9001", {}, {0, 0, 0, 32776, 65535, 65535, 65535, 39177}},
        {"2,1,3,5,u", "001f 0a01 0f10", {}, {0, 82, 123, 255, 255, 8, 132, 255}},
        {"4,4,3,8,u@1x1:2x2:2x2",
         "000000000000000000000000 01020304 00000506 00000809",
         rgb,
         {1, 5, 8, 255, 2, 5, 8, 255, 3, 6, 9, 255, 4, 6, 9, 255}},
        {"4,1,3,8,u@1x1:2x1:2x1 -d 1,0",
         "01020304 0506 0809",
         rgb,
         {1, 5, 8, 255, 2, 5, 8, 255, 3, 6, 9, 255, 4, 6, 9, 255}},
        {"2,1,3,8,u", "8080 8080 8080", ycc, {128, 128, 128, 255, 128, 128, 128, 255}},
        {"2,1,3,8,u", "8014 8c64 78c8", ycc, {117, 130, 149, 255, 121, 0, 0, 255}},
        {"2,1,3,10,u",
         "00020102 00020103 00020000",
         box("colr", "030000 00000010") + ycc,
         {32800, 32800, 32800, 65535, 0, 50622, 62036, 65535}},
        {"2,1,4,8,u", "0102 0304 0506 0708", {}, {1, 3, 5, 7, 2, 4, 6, 8}},
        {"1,1,5,8,u", "01 02 03 04 05", {}, {1, 2, 3, 255}},
        {"1,1,5,8,u",
         "01 02 03 04 05",
         box("cdef", "0005 000000000001 000100000002 000200000003 0003ffffffff 000400010000"),
         {1, 2, 3, 5}},
        {"1,1,4,8,u",
         "01 02 03 04",
         box("cdef", "0004 000000000001 000100000002 000200000003 000300020000"),
         {1, 2, 3, 4}},
        {"2,1,1,1,u", "0001", box("pclr", "000204070707060a141e40ff008000") + map, {10, 20, 30, 129, 255, 0, 128, 0}},
        {"2,1,1,1,u",
         "0001",
         box("pclr", "0002040b0b0b07 0123 0456 0789 50 0fff 0000 0800 ff") + map,
         {4657, 17764, 30871, 20560, 65535, 0, 32776, 65535}},
        {"1,1,1,8,u", "01", box("pclr", "0001011f00000000"), {}},
        {"1,1,4,8,u", "01 02 03 04", box("colr", "010000 0000000c"), {}},
        {"1,1,4,8,u", "01 02 03 04", box("cdef", "0001 0002 0001 0000"), {}},
        {"1,1,4,8,u", "01 02 03 04", box("cdef", "0001 0004 0001 0000"), {}},
    };
    for (const auto &[form, samples, boxes, expected] : rows) {
        SCOPED_TRACE(testing::Message() << form << " " << samples);
        write(QStringLiteral("in.rawl"), QByteArray::fromHex(samples));
        const QString command = QStringLiteral("opj_compress -n 1 -F %1 -i IN.rawl -o OUT.jp2");
        QByteArray file = contentOf(made(command.arg(QLatin1String(form))));
        const qsizetype header = file.indexOf("jp2h"), end = file.indexOf("jp2c") - 4;
        file.insert(header + 4 + 22, boxes)
            .replace(header - 4, 4, tiffBytes(quint32(end - header + 4 + boxes.size()), true));
        if (expected.empty()) {
            EXPECT_EQ(reasonFor(file), Failure::Reason::UnsupportedFormat);
            continue;
        }
        const QImage pixels = decoded(file).pixels;
        const int count = int(expected.size());
        EXPECT_EQ(pixels.width(), count > 4 || pixels.depth() > 16 ? count / 4 : count);
        EXPECT_EQ(samplesOf(pixels.copy(0, pixels.height() - 1, pixels.width(), 1), count), expected);
    }
}
#endif

#if HAZELMARK_HAS_RAW
TEST_F(ForeignFormats, CameraRawIsDevelopedInTheCamerasWhite)
{
    for (const quint32 kind : {kBehindFilter, kWithoutFilter}) {
        const QByteArray file = makeDng(6, kind);
        const Outcome<PhotoPtr> photo = Photo::open(write(QStringLiteral("raw.tiff"), file)); // the name does not count
        ASSERT_TRUE(photo) << photo.failure().sentence().toStdString();
        EXPECT_EQ((*photo)->info().format, "raw");
        EXPECT_EQ((*photo)->uprightSize(), QSize(48, 64));
        EXPECT_EQ((*photo)->dictionary()[QStringLiteral("Orientation")], QVariant(1));
        const QStringList told = (*photo)->dictionary()[QStringLiteral("{TIFF}")].toMap().keys();
        EXPECT_EQ(told.join(u' ').toStdString(),
                  "Artist Copyright DateTime HostComputer ImageDescription Make Model Orientation "
                  "ResolutionUnit Software XResolution YResolution");
        double done = 0;
        const DecodeScope scope([] { return false; }, [&](double now) { done = now; });
        const Outcome<Picture> picture = (*photo)->decode();
        ASSERT_TRUE(picture) << picture.failure().sentence().toStdString();
        EXPECT_GT(done, 0.3);
        EXPECT_TRUE(samePixels(picture->pixels, developed(file)));
        EXPECT_EQ(reasonFor(file.left(file.size() - 1000)), Failure::Reason::Truncated);
    }
}

/// Nearly in the sensor's size, in the shape that the person has chosen, turned as it says or as the camera was held.
TEST_F(ForeignFormats, CameraRawWithoutColorsShowsTheCamerasOwnJpeg)
{
    QImage stored = makePicture(60, 44, kRgb8);
    stored.setColorSpace(QColorSpace::AdobeRgb);
    const auto jpegOf = [&](QSize size, quint32 turn) {
        const QString path = pathOf(QStringLiteral("preview.jpg"));
        EXPECT_TRUE(stored.scaled(size).save(path, "jpeg", 100));
        TiffMaker maker;
        TiffEntries entries;
        maker.set(entries, 274, TiffMaker::kShort, littleEndian(turn, 2));
        const QByteArray exif = maker.startingAt(maker.directory(entries));
        return contentOf(path).insert(2, turn == 0 ? QByteArray()
                                                   : "\xff\xe1" + QByteArray(1, '\0') + char(8 + exif.size()) + "Exif" +
                                                         QByteArray(2, '\0') + exif);
    };
    for (quint32 turn = 1; turn <= 8; ++turn) {
        const QByteArray turned = jpegOf(stored.size(), turn);
        QImageReader reader(write(QStringLiteral("turned.jpg"), turned));
        reader.setAutoTransform(true);
        const QImage upright = reader.read().convertToFormat(kRgb8);
        for (const QByteArray &file :
             {makeDng(turn, kBehindFilter, jpegOf(stored.size(), 0)), makeDng(9 - turn, kBehindFilter, turned)}) {
            const auto [info, picture] = read(file);
            EXPECT_TRUE(info.isEmbeddedPreview && info.isTurnedUpright && info.bitsPerChannel == 8) << turn;
            EXPECT_EQ(picture.iccProfile, stored.colorSpace().iccProfile());
            EXPECT_TRUE(samePixels(picture.pixels, upright)) << turn;
        }
    }
    const QByteArray cut = jpegOf(stored.size(), 0).chopped(300);
    EXPECT_EQ(reasonFor(makeDng(1, kBehindFilter, cut)), Failure::Reason::Truncated);
    for (const QSize size : {QSize(58, 43), QSize(44, 57), QSize(57, 43)}) {
        const auto info =
            readPictureInfo(write(QStringLiteral("unknown.dng"), makeDng(1, kBehindFilter, jpegOf(size, 0))));
        EXPECT_TRUE(size == QSize(57, 43) ? info.failure().sentence().contains(QStringLiteral("colours of this camera"))
                                          : bool(info));
    }
}
#endif

} // namespace hazelmark
