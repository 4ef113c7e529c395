// Pictures in the formats of other programs, made by those programs and compared with what they were made of.
#include "DecodeScope.h"
#include "Photo.h"
#include "TestFiles.h"
#include "TiffBlock.h"

#include <QColorSpace>
#include <QProcess>
#include <QRegularExpression>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace hazelmark {

namespace {

constexpr QImage::Format kRgb8 = QImage::Format_RGBX8888;
constexpr QImage::Format kRgb16 = QImage::Format_RGBX64;
constexpr QImage::Format kRgba8 = QImage::Format_RGBA8888;
constexpr QImage::Format kRgba16 = QImage::Format_RGBA64;
constexpr QImage::Format kGray8 = QImage::Format_Grayscale8;

/// The largest difference of two samples, in 16 bits.
int distance(const QImage &a, const QImage &b)
{
    if (a.size() != b.size())
        return INT_MAX;
    const QImage x = a.convertToFormat(kRgba16);
    const QImage y = b.convertToFormat(kRgba16);
    int most = 0;
    for (int row = 0; row < x.height(); ++row) {
        const auto *left = reinterpret_cast<const quint16 *>(x.constScanLine(row));
        const auto *right = reinterpret_cast<const quint16 *>(y.constScanLine(row));
        for (int sample = 0; sample < 4 * x.width(); ++sample)
            most = std::max(most, std::abs(left[sample] - right[sample]));
    }
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
                {"turned AVIF", "avifenc -l --irot 1 IN.png OUT.avif", kRgb8, kRgb8, 8, 0, left},
                {"mirrored AVIF", "avifenc -l --imir 1 IN.png OUT.avif", kRgb8, kRgb8, 8, 0, kLeftToRight},
                {"turned, mirrored AVIF", "avifenc -l --irot 1 --imir 0 IN.png OUT.avif", kRgb8, kRgb8, 8, 0,
                 left * kTopToBottom},
                {"turned, mirrored AVIF of 10 bits", "avifenc -l -d 10 --irot 3 --imir 0 IN.png OUT.avif", kRgb16,
                 kRgb16, 10, k10, QTransform().rotate(90) * kTopToBottom},
                {"mirrored AVIF of 12 bits", "avifenc -l -d 12 --imir 1 IN.png OUT.avif", kRgb16, kRgb16, 12, k12,
                 kLeftToRight},
                {"AVIF in tiles", "avifenc -l --grid 2x2 IN.png OUT.avif", kRgb8, kRgb8, 8, 0}});
#endif
#if HAZELMARK_HAS_JXL
    all.insert(all.end(),
               {{"JPEG XL", "cjxl -d 0 -e 3 IN.png OUT.jxl", kRgb8, kRgb8, 8, 0},
                {"JPEG XL of 16 bits, alpha of 8", "cjxl -d 0 -e 3 IN.png OUT.jxl", kRgba16, kRgba16, 16, 128},
                {"grey JPEG XL in a container", "cjxl -d 0 -e 3 --container=1 IN.png OUT.jxl", kGray8, kGray8, 8, 0},
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

QByteArray entryOf(quint32 number, quint32 type, quint32 count, quint32 value)
{
    return littleEndian(number, 2) + littleEndian(type, 2) + littleEndian(count) + littleEndian(value);
}

/// A box of the ISO base media file format; the content begins with its type.
QByteArray boxOf(const QByteArray &content)
{
    QByteArray size = littleEndian(quint32(4 + content.size()));
    std::reverse(size.begin(), size.end());
    return size + content;
}

/// A box of JPEG XL that is compressed with Brotli, which says that it has stored the content as it is.
QByteArray packedBox(const QByteArray &type, const QByteArray &content)
{
    return boxOf("brob" + type + littleEndian(1 << 20 | quint32(content.size() - 1) << 4, 3) + content + '\3');
}

constexpr quint32 kBehindFilter = 32803;
constexpr quint32 kWithoutFilter = 34892;

/// A camera's raw file of an evenly lit grey wall: 16-bit samples behind a filter of red, green, green, blue, which a
/// camera that sees no colours says it has not. Beside a `preview` there is no matrix of the camera's colours.
QByteArray makeDng(QSize size, quint32 kindOfSensor = kBehindFilter, const QByteArray &preview = {})
{
    constexpr quint32 kByte = 1, kText = 2, kShort = 3, kLong = 4, kFraction = 5, kSigned = 10;
    constexpr quint32 kColorMatrix = 50721, kReductionMatrix = 50725;
    constexpr int kEntries = 18;
    constexpr quint32 kValues = 8 + 2 + 12 * kEntries + 4;
    constexpr quint32 kPixels = kValues + 9 * 8 + 3 * 8;
    const quint32 bytes = quint32(2 * size.width() * size.height());
    QByteArray file = "II*" + QByteArray(1, '\0') + littleEndian(8) + littleEndian(kEntries, 2);
    file += entryOf(254, kLong, 1, 0) + entryOf(256, kLong, 1, quint32(size.width())) +
            entryOf(257, kLong, 1, quint32(size.height())) + entryOf(258, kShort, 1, 16) + entryOf(259, kShort, 1, 1) +
            entryOf(262, kShort, 1, kindOfSensor) + entryOf(271, kText, 4, 0x6d7a48) +
            entryOf(272, kText, 4, 0x6d7a48) + entryOf(273, kLong, 1, kPixels) + entryOf(274, kShort, 1, 6) +
            entryOf(277, kShort, 1, 1) + entryOf(278, kLong, 1, quint32(size.height())) +
            entryOf(279, kLong, 1, bytes) + entryOf(33421, kShort, 2, 2 | 2 << 16) +
            entryOf(33422, kByte, 4, 0 | 1 << 8 | 1 << 16 | 2 << 24) + entryOf(50706, kByte, 4, 1 | 4 << 8) +
            entryOf(preview.isEmpty() ? kColorMatrix : kReductionMatrix, kSigned, 9, kValues) +
            entryOf(50728, kFraction, 3, kValues + 72) + littleEndian(preview.isEmpty() ? 0 : kPixels + bytes);
    for (const int tenThousandths : {8000, -2000, -500, -4000, 12000, 1800, -800, 2000, 6000})
        file += littleEndian(quint32(tenThousandths)) + littleEndian(10'000);
    for (const quint32 percent : {50u, 100u, 70u})
        file += littleEndian(percent) + littleEndian(100);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const int filter = (x & 1) + (y & 1);
            file += littleEndian(filter == 0 ? 10'000 : filter == 1 ? 20'000 : 14'000, 2);
        }
    }
    if (preview.isEmpty())
        return file;
    constexpr int kPreviewEntries = 6;
    const quint32 place = quint32(file.size()) + 2 + 12 * kPreviewEntries + 4;
    return file + littleEndian(kPreviewEntries, 2) + entryOf(254, kLong, 1, 1) + entryOf(259, kShort, 1, 7) +
           entryOf(262, kShort, 1, 6) + entryOf(273, kLong, 1, place) + entryOf(277, kShort, 1, 3) +
           entryOf(279, kLong, 1, quint32(preview.size())) + littleEndian(0) + preview;
}

} // namespace

class ForeignFormats : public FolderTest
{
protected:
    /// The file that the command makes of the picture; a command that fails, fails the test.
    QString made(QString command, const QImage &source) const
    {
        const QString input = pathOf(QStringLiteral("in.png"));
        EXPECT_TRUE(source.save(input));
        const QString output =
            pathOf(QStringLiteral("made.") + command.section(QStringLiteral("OUT."), 1).section(u' ', 0, 0));
        QFile::remove(output);
        command.replace(QStringLiteral("IN.png"), input);
        command.replace(QRegularExpression(QStringLiteral("OUT\\.\\w+")), output);
        QProcess program;
        program.startCommand(command);
        EXPECT_TRUE(program.waitForFinished(60'000) && program.exitCode() == 0)
            << command.toStdString() << ": " << program.errorString().toStdString() << program.readAll().toStdString();
        return output;
    }
};

TEST_F(ForeignFormats, ComeAsTheyWereSaved)
{
    for (const Row &row : rows()) {
        SCOPED_TRACE(row.what);
        const QImage source = makePicture(256, 192, row.source);
        const QString file = made(QString::fromLatin1(row.command), source);
        const Outcome<PhotoPtr> photo = Photo::open(file);
        ASSERT_TRUE(photo) << photo.failure().sentence().toStdString();
        const QImage upright = source.transformed(row.turn).convertToFormat(row.expected);
        EXPECT_EQ((*photo)->info().bitsPerChannel, row.bits);
        EXPECT_EQ((*photo)->info().hasAlpha, upright.hasAlphaChannel());
        EXPECT_EQ((*photo)->uprightSizes(), std::vector<QSize>{upright.size()});
        double done = 0;
        const DecodeScope scope([] { return false; }, [&](double now) { EXPECT_GT(now, std::exchange(done, now)); });
        const Outcome<Picture> picture = (*photo)->decode();
        ASSERT_TRUE(picture) << picture.failure().sentence().toStdString();
        EXPECT_TRUE(done > 0.5 || !std::strstr(row.what, "stream in tiles")) << done;
        EXPECT_EQ(picture->pixels.format(), row.expected);
        EXPECT_LE(distance(picture->pixels, upright), row.tolerance);
    }
}

/// A camera has noted that the picture lies on its side, and has put a small one beside it, which shows what is to be
/// hidden. Where the format has a turn of its own, that one counts and the note does not.
TEST_F(ForeignFormats, CarryMetadataOnceTurnedUpright)
{
    const QByteArray thumbnail = "\xff\xd8 a face \xff\xd9";
    const QByteArray exif = "II*" + QByteArray(1, '\0') + littleEndian(8) + littleEndian(2, 2) +
                            entryOf(271, 2, 4, 0x656b614d) + entryOf(274, 3, 1, 6) + littleEndian(38) +
                            littleEndian(3, 2) + entryOf(259, 3, 1, 6) + entryOf(513, 4, 1, 80) +
                            entryOf(514, 4, 1, quint32(thumbnail.size())) + littleEndian(0) + thumbnail;
    const QByteArray xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
                           "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description "
                           "xmlns:tiff='http://ns.adobe.com/tiff/1.0/' tiff:Orientation='6' tiff:Artist='Ann'/>"
                           "</rdf:RDF></x:xmpmeta>";
    const QByteArray profile = QColorSpace(QColorSpace::AdobeRgb).iccProfile();
    struct Case
    {
        QString command;
        QByteArray boxes; ///< put behind what the command has made
        QSize upright;
        int orientation;
        QByteArray profile = {};
    };
    std::vector<Case> cases;
#if HAZELMARK_HAS_HEIF
    cases.push_back({QStringLiteral("avifenc --irot 3 --exif %1 --xmp %2 --icc %3 IN.png OUT.avif")
                         .arg(write(QStringLiteral("exif"), exif), write(QStringLiteral("xmp"), xmp),
                              write(QStringLiteral("icc"), profile)),
                     QByteArray(), QSize(48, 64), 1, profile});
#endif
#if HAZELMARK_HAS_JXL
    cases.push_back({QStringLiteral("cjxl -d 0 -e 3 --container=1 IN.png OUT.jxl"),
                     boxOf("Exif" + QByteArray(4, '\0') + exif) + packedBox("xml ", xmp), QSize(64, 48), 1});
#endif
#if HAZELMARK_HAS_JP2
    for (const QByteArray &box : {"uuid" + QByteArray::fromHex("be7acfcb97a942e89c71999491e3afac"), QByteArray("xml ")})
        cases.push_back({QStringLiteral("opj_compress -i IN.png -o OUT.jp2"),
                         boxOf("uuidJpgTiffExif->JP2" + exif) + boxOf(box + xmp), QSize(48, 64), 6});
#endif
    for (const Case &each : cases) {
        SCOPED_TRACE(each.command.toStdString());
        const QString path = made(each.command, makePicture(64, 48, kRgb8));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::Append) && file.write(each.boxes) == each.boxes.size());
        file.close();
        const Outcome<PhotoPtr> photo = Photo::open(path);
        ASSERT_TRUE(photo) << photo.failure().sentence().toStdString();
        const QVariantMap tiff = (*photo)->dictionary()[QStringLiteral("{TIFF}")].toMap();
        EXPECT_EQ((*photo)->dictionary()[QStringLiteral("Orientation")], QVariant(each.orientation));
        EXPECT_EQ(tiff[QStringLiteral("Orientation")], QVariant(each.orientation));
        EXPECT_EQ(tiff[QStringLiteral("Make")], QVariant(QStringLiteral("Make")));
        EXPECT_EQ((*photo)->uprightSize(), each.upright);
        const MetadataBlocks carried = (*photo)->carriedMetadata(each.upright, WriteFormat::Jpeg);
        EXPECT_EQ(carried.iccProfile, each.profile);
        EXPECT_TRUE(carried.xmp.contains(QStringLiteral("Orientation=\"%1\"").arg(each.orientation).toUtf8()) &&
                    carried.xmp.contains("Ann"))
            << carried.xmp.toStdString();
        EXPECT_FALSE(carried.exif.contains("a face"));
        const std::optional<TiffBlock> block = TiffBlock::of(carried.exif);
        ASSERT_TRUE(block);
        const auto directory = block->directoryAt(block->firstDirectoryOffset());
        ASSERT_TRUE(directory && directory->find(271) && directory->find(274));
        EXPECT_EQ(block->number(*directory->find(274)), quint32(each.orientation));
    }
}

#if HAZELMARK_HAS_HEIF
/// By their numbers, or, where they are brighter than white, in sRGB.
TEST_F(ForeignFormats, ColorsWithoutProfileGetOne)
{
    for (const auto &[codes, isConverted] :
         {std::pair("12/13/1", false), {"9/16/9", true}, {"9/18/9", true}, {"1/13/1", true}}) {
        QImage white(16, 16, kRgb16);
        white.fill(Qt::white);
        const QString command = QStringLiteral("avifenc -l -d 10 --cicp %1 IN.png OUT.avif").arg(QLatin1String(codes));
        const auto picture = decodePicture(made(command, white));
        ASSERT_TRUE(picture) << picture.failure().sentence().toStdString();
        EXPECT_EQ(picture->iccProfile.isEmpty(), isConverted) << codes;
        EXPECT_GT(samplesOf(picture->pixels, 1).front(), 65000) << codes;
    }
}
#endif

#if HAZELMARK_HAS_RAW
/// A sensor that sees a grey wall through a lens of the white that the camera notes, held on its side.
TEST_F(ForeignFormats, CameraRawIsDevelopedInTheCamerasWhite)
{
    const QByteArray file = makeDng(QSize(64, 48));
    const Outcome<PhotoPtr> photo = Photo::open(write(QStringLiteral("wall.tiff"), file)); // the name does not count
    ASSERT_TRUE(photo) << photo.failure().sentence().toStdString();
    EXPECT_EQ((*photo)->info().format, "raw");
    EXPECT_EQ((*photo)->uprightSize(), QSize(48, 64));
    const QVariantMap &dictionary = (*photo)->dictionary();
    EXPECT_EQ(dictionary[QStringLiteral("Orientation")], QVariant(1));
    EXPECT_EQ(dictionary[QStringLiteral("{TIFF}")].toMap()[QStringLiteral("Make")], QVariant(QStringLiteral("Hzm")));
    double done = 0;
    const DecodeScope scope([] { return false; }, [&](double now) { done = now; });
    const Outcome<Picture> picture = (*photo)->decode();
    ASSERT_TRUE(picture) << picture.failure().sentence().toStdString();
    EXPECT_GT(done, 0.3);
    ASSERT_EQ(picture->pixels.format(), kRgb16);
    const QRgba64 middle = picture->pixels.pixelColor(24, 32).rgba64();
    EXPECT_NEAR(middle.red(), middle.green(), 600);
    EXPECT_NEAR(middle.blue(), middle.green(), 600);
    EXPECT_GT(middle.green(), 10'000);
    EXPECT_EQ(reasonFor(file.left(file.size() - 1000)), Failure::Reason::Truncated);
    const auto grey = decodePicture(write(QStringLiteral("grey.dng"), makeDng(QSize(64, 48), kWithoutFilter)));
    ASSERT_TRUE(grey) << grey.failure().sentence().toStdString();
    const QRgba64 dot = grey->pixels.pixelColor(24, 32).rgba64();
    EXPECT_TRUE(dot.red() == dot.green() && dot.blue() == dot.green() && dot.green() > 5'000) << dot.green();
}

/// Nearly in the sensor's size, in the shape that the person has chosen, turned as the camera was held or as it says.
TEST_F(ForeignFormats, CameraRawWithoutColorsShowsTheCamerasOwnJpeg)
{
    for (const auto &[size, turn] : {std::pair(QSize(60, 44), 6), {QSize(48, 48), 7}, {QSize(40, 28), 6}}) {
        QImage stored = makePicture(size.width(), size.height(), kRgb8);
        stored.setColorSpace(QColorSpace::AdobeRgb);
        const QString path = pathOf(QStringLiteral("preview.jpg"));
        ASSERT_TRUE(stored.save(path, "jpeg", 100));
        QFile jpeg(path);
        ASSERT_TRUE(jpeg.open(QIODevice::ReadOnly));
        QByteArray preview = jpeg.readAll();
        if (turn != 6) // as the sensor lies
            preview.insert(2, QByteArray("\xff\xe1\0\x22", 4) + "Exif" + QByteArray("\0\0II*\0", 6) + littleEndian(8) +
                                  littleEndian(1, 2) + entryOf(274, 3, 1, quint32(turn)) + littleEndian(0));
        const QString file = write(QStringLiteral("unknown.dng"), makeDng(QSize(64, 48), kBehindFilter, preview));
        const Outcome<PhotoPtr> photo = Photo::open(file);
        ASSERT_EQ(bool(photo), size.height() > 40);
        if (!photo) {
            EXPECT_TRUE(photo.failure().sentence().contains(QStringLiteral("colours of this camera")));
            continue;
        }
        const QTransform across = QTransform(0, 1, -1, 0, 0, 0) * (turn == 7 ? kTopToBottom : QTransform());
        const QImage upright = QImage(path).transformed(across);
        EXPECT_TRUE((*photo)->info().isEmbeddedPreview);
        EXPECT_EQ((*photo)->info().iccProfile, stored.colorSpace().iccProfile());
        EXPECT_EQ((*photo)->uprightSizes(), std::vector<QSize>{upright.size()});
        EXPECT_EQ((*photo)->orientation(), 1);
        EXPECT_EQ((*photo)->dictionary()[QStringLiteral("PixelWidth")], QVariant(upright.width()));
        const Outcome<Picture> picture = (*photo)->decode();
        ASSERT_TRUE(picture) << picture.failure().sentence().toStdString();
        EXPECT_EQ(picture->pixels.format(), kRgb8);
        EXPECT_EQ(distance(picture->pixels, upright), 0);
    }
}
#endif

TEST_F(ForeignFormats, CutAtEveryTenthAreRefused)
{
    for (const Row &row : rows()) {
        const QString file = made(QString::fromLatin1(row.command), makePicture(256, 192, row.source));
        for (qint64 size = QFileInfo(file).size(), tenth = 9; tenth > 0; --tenth) {
            ASSERT_TRUE(QFile::resize(file, size * tenth / 10));
            const auto picture = decodePicture(file);
            EXPECT_FALSE(picture) << row.what << " cut at " << tenth;
        }
    }
}

} // namespace hazelmark
