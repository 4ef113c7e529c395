#include "PictureSearch.h"

#include "TestFiles.h"
#include "ZlibStream.h"

#include <QBuffer>
#include <QImage>

#include <gtest/gtest.h>

namespace hazelmark {

namespace {

QByteArray saved(const char *format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    const QByteArray samples = noiseBytes(40 * 30 * 4, 3);
    const QImage noise(reinterpret_cast<const uchar *>(samples.constData()), 40, 30, QImage::Format_RGB32);
    noise.save(&buffer, format);
    return bytes;
}

/// The file's first bytes, and pixels that nobody decodes.
QByteArray head(const char *bytes, qsizetype size)
{
    return QByteArray(bytes, size) + noiseBytes(500, 4);
}

QByteArray tiff()
{
    const QByteArray tags("\2\0\0\1\3\0\1\0\0\0\x28\0\0\0\x11\1\4\0\1\0\0\0\x40\0\0\0\0\0\0\0", 30);
    return head("II*\0\x08\0\0\0", 8).insert(8, tags);
}

struct Kind
{
    const char *name;
    QByteArray file;
};

std::vector<Kind> kinds()
{
    const QByteArray jpeg = saved("JPG");
    const qsizetype tables = jpeg.indexOf("\xff\xdb");
    return {
        {"JPEG", jpeg},
        {"JPEG with fill bytes", "\xff\xd8" + QByteArray(9, '\xff') + jpeg.mid(3)},
        {"JPEG with gaps", jpeg.left(2) + "\xff gap" + jpeg.mid(2, tables - 2) + "gap" + jpeg.mid(tables)},
        {"JPEG without its start", jpeg.mid(tables)},
        {"JPEG with another first byte", 'x' + jpeg.mid(1)},
        {"PNG", saved("PNG")},
        {"PNG without its mark", saved("PNG").mid(8)},
        {"BMP", saved("BMP")},
        {"BMP without its mark", saved("BMP").mid(14)},
        {"GIF", head("GIF89a\x28\0\x1e\0\0\0\0\x2c", 14)},
        {"WebP", head("RIFF\0\2\0\0WEBPVP8L", 16)},
        {"TIFF", tiff()},
        {"JPEG 2000", head("\0\0\0\x0cjP  \r\n\x87\n", 12)},
        {"its codestream", head("\xff\x4f\xff\x51\0\x2f", 6)},
        {"JPEG XL", head("\0\0\0\x0cJXL \r\n\x87\n", 12)},
        {"its codestream", head("\xff\x0a\x49\x88", 4)},
        {"HEIF", head("\0\0\0\x18"
                      "ftypheic",
                      12)},
    };
}

QByteArray inUtf16(const QByteArray &text)
{
    QByteArray wide;
    for (const char c : text)
        wide += QByteArray{1, c} + '\0';
    return wide;
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
    for (const auto &[name, file] : kinds()) {
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
            {"UTF-16", inUtf16(base64)},
            {"digits in a note", QByteArray("ACME\1\2 ", 7) + file.toHex(' ')},
            {"hexadecimal", file.toHex()},
            {"bytes of C", "{0x" + file.toHex(' ').replace(" ", ", 0x") + "}"},
            {"packed", "abc" + deflateZlib(file)},
            {"packed twice", deflateZlib(deflateZlib(file))},
            {"packed in Base64", deflateZlib(file).toBase64()},
            {"Base64 twice", base64.toBase64()},
        };
        for (const auto &[encoding, value] : values)
            EXPECT_TRUE(holdsPicture(value)) << name << ", " << encoding;
    }
}

TEST(PictureSearch, FindsPicturesBetweenOtherValuesAndWhereTheyEnd)
{
    const QByteArray before = "ACME\1\2\3 some values ";
    const QByteArray after = QByteArray(40, '\7') + " the next values";
    for (const auto &[name, file] : kinds()) {
        const auto found = picturesIn(before + file + after, SearchIn::Mixture);
        ASSERT_EQ(found.size(), 1U) << name;
        EXPECT_LE(found[0].from, before.size()) << name;
        EXPECT_GE(found[0].to, before.size() + file.size()) << name;
    }
    const QByteArray jpeg = saved("JPG");
    for (const QByteArray &file : {jpeg, saved("PNG"), deflateZlib(jpeg)}) {
        const auto found = picturesIn(before + file + after + file + after, SearchIn::Mixture);
        ASSERT_EQ(found.size(), 2U);
        EXPECT_EQ(found[0].from, before.size());
        EXPECT_EQ(found[0].to, before.size() + file.size());
    }
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
