#include "PictureSearch.h"

#include "TestFiles.h"
#include "TestPictures.h"
#include "ZlibStream.h"

#include <QStringEncoder>

#include <gtest/gtest.h>

namespace hazelmark {

namespace {

QByteArray saved(const char *format)
{
    const QByteArray samples = noiseBytes(40 * 30 * 4, 3);
    return savedByQt({reinterpret_cast<const uchar *>(samples.constData()), 40, 30, QImage::Format_RGB32}, format);
}

/// The file's first bytes, and pixels that nobody decodes.
QByteArray head(const char *bytes, qsizetype size)
{
    return QByteArray(bytes, size) + noiseBytes(500, 4);
}

struct Kind
{
    const char *name;
    QByteArray file;
    bool tellsEnd = false;
    qsizetype before = 0; ///< bytes that a start would take which is not there
};

std::vector<Kind> kinds()
{
    const QByteArray jpeg = saved("JPG");
    const qsizetype tables = jpeg.indexOf("\xff\xdb");
    const QByteArray thumbnail = "\xff\xe1" + bigEndian(quint32(jpeg.size() + 2)).right(2) + jpeg;
    // In the data markers that have no length, each before what would be one beyond the end.
    const QByteArray restarts = QByteArray::fromHex("ffd0 0020 ffd8 0020 ff00 0020 ffff 0020 ffd9");
    return {
        {"JPEG", jpeg, true},
        {"JPEG with a thumbnail", jpeg.left(2) + thumbnail + jpeg.mid(2), true},
        {"JPEG with restarts", jpeg.chopped(2) + restarts, true},
        {"JPEG with fill bytes", "\xff\xd8" + QByteArray(9, '\xff') + jpeg.mid(3), true},
        {"JPEG with gaps", jpeg.left(2) + "\xff gap" + jpeg.mid(2, tables - 2) + "gap" + jpeg.mid(tables), true},
        {"JPEG without its start", jpeg.mid(tables), true},
        {"JPEG with another first byte", 'x' + jpeg.mid(1), true},
        {"PNG", saved("PNG"), true},
        {"PNG without its mark", saved("PNG").mid(8), true, 8},
        {"BMP", saved("BMP")},
        {"BMP without its mark", saved("BMP").mid(14)},
        {"GIF", head("GIF89a\x28\0\x1e\0\0\0\0\x2c", 14)},
        {"WebP", head("RIFF\0\2\0\0WEBPVP8L", 16)},
        {"TIFF", head("II*\0\x08\0\0\0\2\0\0\1\3\0\1\0\0\0\x28\0\0\0\x11\1\4\0\1\0\0\0\x40\0\0\0\0\0\0\0", 38)},
        {"JPEG 2000", head("\0\0\0\x0cjP  \r\n\x87\n", 12)},
        {"its codestream", head("\xff\x4f\xff\x51\0\x2f", 6)},
        {"JPEG XL", head("\0\0\0\x0cJXL \r\n\x87\n", 12)},
        {"its codestream", head("\xff\x0a\x49\x88", 4)},
        {"HEIF", head("\0\0\0\x18"
                      "ftypheic",
                      12)},
    };
}

QByteArray broken(const QByteArray &text, const char *by)
{
    QByteArray pieces;
    for (qsizetype at = 0; at < text.size(); at += 60)
        pieces += text.mid(at, 60) + by;
    return pieces;
}

} // namespace

TEST(PictureSearch, FindsEveryKindInEveryEncoding)
{
    for (const Kind &kind : kinds()) {
        const QByteArray &file = kind.file;
        const QByteArray base64 = file.toBase64();
        const QByteArray url = file.toBase64(QByteArray::Base64UrlEncoding);
        const std::pair<const char *, QByteArray> values[] = {
            {"plain", file},
            {"behind text", "see here: " + file},
            {"Base64", base64},
            {"behind words", "The preview is, as ever, " + base64},
            {"behind a byte order mark", "\xef\xbb\xbf" + base64},
            {"broken", broken(base64, "\n \t")},
            {"an address", "data:image/jpeg;base64," + url},
            {"an address with escapes", QByteArray("data:;base64,") + base64.toPercentEncoding()},
            {"behind a character code", QByteArray("ASCII\0\0\0", 8) + base64},
            {"UTF-16", QByteArray(QStringEncoder(QStringEncoder::Utf16LE)(QString::fromLatin1(base64)))},
            {"digits in a note", QByteArray("ACME\1\2 ", 7) + file.toHex(' ')},
            {"hexadecimal", file.toHex()},
            {"bytes of C", "{0x" + file.toHex(' ').replace(" ", ", 0x") + "}"},
            {"packed", "abc" + deflateZlib(file)},
            {"packed twice", deflateZlib(deflateZlib(file))},
            {"packed in Base64", deflateZlib(file).toBase64()},
            {"Base64 twice", base64.toBase64()},
        };
        for (const auto &[encoding, value] : values)
            EXPECT_TRUE(holdsPicture(value)) << kind.name << ", " << encoding;
    }
}

TEST(PictureSearch, FindsPicturesBetweenOtherValuesAndWhereTheyEnd)
{
    const QByteArray before = QByteArray(80, ' ') + "ACME\1\2\3 some values ";
    const QByteArray after = QByteArray(40, '\7') + " the next values";
    using Places = std::vector<std::pair<qsizetype, qsizetype>>;
    const auto placesIn = [&](const QByteArray &file) {
        Places places;
        for (const FoundPicture &found : picturesIn(before + file + after, SearchIn::Mixture))
            places.emplace_back(found.from - before.size(), found.to - before.size());
        return places;
    };
    std::vector<Kind> all = kinds();
    all.push_back({"packed", deflateZlib(all[0].file), true});
    for (const auto &[name, file, tellsEnd, missing] : all) {
        const qsizetype size = file.size();
        const qsizetype end = size + after.size();
        const Places two = tellsEnd ? Places{{-missing, size}, {size, 2 * size}} : Places{{-missing, size + end}};
        EXPECT_EQ(placesIn(file), (Places{{-missing, tellsEnd ? size : end}})) << name;
        EXPECT_EQ(placesIn(file + file), two) << name;
    }
    // Where letters begin is not known for sure.
    const auto spelt = placesIn("; " + saved("JPG").toBase64());
    ASSERT_EQ(spelt.size(), 1U);
    EXPECT_TRUE(spelt[0].first <= 2 && spelt[0].first > -64) << spelt[0].first;
}

/// Each head as it should be, and then with some bytes changed: it is still one, or is none any more.
TEST(PictureSearch, TellsAHeadFromNumbersThatBeginLikeOne)
{
    const QByteArray scan = "ffda0008 01 0100 003f00";
    const struct
    {
        const char *name;
        QByteArray head; ///< in hexadecimal digits, as the changes: PLACE=BYTES
        QByteArray pictures;
        QByteArray others;
    } heads[] = {
        {"GIF", "474946383961 2800 1e00 81 0000 010203040506070809101112 2c",
         "4=37 25=21 25=3b 10=8200000102030405060708091011121314151617181920212223242c", "4=38 10=01 25=2d"},
        {"BMP", "424d 000000000000000000000000 28000000 28000000 1e000000 0100 1800 00000000",
         "14=7c 14=0c00000028001e0001001800 14=10 14=34 14=38 14=40 14=6c 28=01 28=02 28=04 28=08 28=10 28=20 28=0000 "
         "18=00000000",
         "1=4e0000000000000000000000000c 14=29 26=02 28=19"},
        {"bitmap in memory", "28000000 28000000 1e000000 0100 1800 00000000", "4=ffff 8=ffff 8=0100ffff 16=06 4=01",
         "4=00000100 4=00 8=00 8=00000100 8=0000ffff 14=00 16=07 0=7c"},
        {"file of boxes", "00000018 66747970 68656963", "3=0c 3=01 3=00 2=1000 8=207e207e",
         "3=0b 3=02 2=1001 8=1f 11=7f 7=71"},
        {"PNG without its mark", "0707070707070707 0000000d 49484452 00000028 0000001e 10", "24=01 24=02 24=04 24=08",
         "24=03 11=0e 15=53"},
        {"TIFF", "49492a00 08000000 0200 00010300 0100000028000000 11010400 0100000040000000 00000000",
         "22=44 22=4a01 22=0102 22=c0bc 12=12 24=12 0=4d4d002a00000008000101110004 4=0a0000000000010011010400 "
         "8=01000001030001000000280000001a000000010011010400 "
         "0=49492b00080000001000000000000000010000000000000011010400 "
         "0=4d4d002b000800000000000000000010000000000000000101110004",
         "22=12 24=13 12=00 12=13 8=0000 8=01 4=00 2=2b 8=ffff"},
        {"start without a scan", "ffd8 ffe00004 aabb ff02", "2=ffffe00004aabbff02 4=0002ff02 3=c0",
         "8=07 4=0001 3=bf 1=d7 2=07"},
        {"overwritten start", "07d8 ffe00004 aabb ffdb0004 ccdd ff02",
         "2=ffffe00004aabbffdb0002ff02 4=0002ffdb0004ccddff02", "14=07 11=01 9=bf 8=07 4=0001 3=bf 1=d7"},
        {"quantisation table", "ffdb0043 00" + QByteArray("01").repeated(64) + scan, "4=03 2=008313",
         "4=04 4=20 3=44 3=02 4=10"},
        {"Huffman table", "ffc40016 00 00010000000000000000000000000002 040506" + scan, "4=13 20=01",
         "4=20 4=14 3=15 6=00000000000000000000000000000000 7=ff 1=c8"},
        {"head of a frame", "ffc0000b 08 001e0028 01 001100" + scan, "1=c2 4=0c 4=02 4=10 3=14080000000004",
         "1=cc 1=bf 4=01 4=11 3=0c 9=00 3=17080000000005"},
        {"scan", "ffc0000b 08 001e0028 01 001100" + scan,
         "19=33 20=3f 15=000a0201000211003f00 15=000e040100020003000400003f00",
         "14=db 16=00 16=0a 15=000600003f00 15=00100501000200030004000500003f00 19=40 19=04 20=40 21=40"},
    };
    const QByteArray around(40, '\7');
    for (const auto &[name, head, pictures, others] : heads) {
        for (const bool isPicture : {true, false}) {
            for (const QByteArray &change : (isPicture ? "0= " + pictures : others).split(' ')) {
                const QByteArray bytes = QByteArray::fromHex(change.mid(change.indexOf('=')));
                QByteArray changed = QByteArray::fromHex(head);
                changed.replace(change.left(change.indexOf('=')).toInt(), bytes.size(), bytes);
                const auto found = plainPicturesIn(around + changed + around, SearchIn::Numbers);
                EXPECT_EQ(found.size(), isPicture ? 1U : 0U) << name << " " << change.constData();
                EXPECT_TRUE(found.empty() || found[0].from == around.size()) << name << " " << change.constData();
            }
        }
    }
}

/// By the size that follows its two bytes, where the rest does not look packed: sides of up to 65536, in each of four
/// lengths, and one more.
TEST(PictureSearch, TellsABareJpegXlByItsSize)
{
    const QByteArray rest(100, '\0');
    for (const char *size : {"feff070002000000", "f88fffff01000000", "fafff8ff1f000000", "fcff07ffff030000"})
        EXPECT_TRUE(holdsPicture("\xff\x0a" + QByteArray::fromHex(size) + rest)) << size;
    for (const char *size : {"0600080002000000", "f88f010002000000", "faff180020000000", "fcff070300040000",
                             "0400280000000000", "0000010002000000"})
        EXPECT_FALSE(holdsPicture("\xff\x0a" + QByteArray::fromHex(size) + rest)) << size;
}

TEST(PictureSearch, LeavesWhatIsNoPictureAlone)
{
    QByteArray curve; // of 16-bit levels, among them 0xffd8 and 0xffe0
    for (int level = 0; level < 65536; level += 8)
        curve += QByteArray(1, char(level >> 8)) + char(level);
    const std::pair<QByteArray, SearchIn> harmless[] = {
        {"BMW at the GIF89a party; BM 40 x 30, II*, MM, RIFF, PNG and ftyp", SearchIn::Value},
        {"/world/pictures/9j/GIF/holiday/wolves/and/so/on/and/so/on/and/so/on/IMG_0001.jpg", SearchIn::Value},
        {QByteArray("a text of some length without any meaning ").repeated(2000), SearchIn::Value},
        {noiseBytes(400, 1).toBase64(), SearchIn::Value},
        {QByteArray(16, '\1').toHex().repeated(20), SearchIn::Value},
        {deflateZlib(QByteArray("only text ").repeated(50)), SearchIn::Value},
        {curve, SearchIn::Numbers},
        {QByteArray("Nikon\0\2\x10\0\0MM\0*\0\0\0\x08\0\1\0\1\0\7\0\0\0\4"
                    "0210\0\0\0\0",
                    36),
         SearchIn::Mixture},
        {QByteArray("\xff\xff\xd8\xff\xff\xff\0\0", 8).repeated(50), SearchIn::Mixture},
        {noiseBytes(2'000'000, 2), SearchIn::Mixture},
    };
    for (const auto &[bytes, where] : harmless) {
        const auto found = picturesIn(bytes, where);
        EXPECT_TRUE(found.empty()) << bytes.left(40).constData() << ": " << found[0].kind << " at " << found[0].from;
    }
}

} // namespace hazelmark
