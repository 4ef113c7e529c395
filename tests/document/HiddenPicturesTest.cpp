
#include "OpenPhotos.h"
#include "SamplePhotos.h"
#include "TiffMaker.h"
#include "ZlibStream.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>

namespace hazelmark {

namespace {

constexpr QSize kSize(40, 30);

QByteArray noise(int size)
{
    std::mt19937 random(11);
    QByteArray bytes(size, Qt::Uninitialized);
    for (char &byte : bytes)
        byte = char(random() % 255 + 1); // without zeros, which stand anywhere
    return bytes;
}

/// What is hidden, in the forms that the tests below do not need to tell apart.
QByteArray jpeg()
{
    QByteArray scan = noise(600);
    scan.replace('\xff', 'x');
    return QByteArray("\xff\xd8\xff\xe0\0\x08JFIF\0\0\xff\xda\0\x08\x01\x01\0\0\x3f\0", 22) + scan + "\xff\xd9";
}

QByteArray webp()
{
    return QByteArray("RIFF\x60\x02\0\0WEBPVP8 ", 16) + noise(600);
}

struct Tag
{
    enum Directory { Image, Photo, Gps, Interoperability } directory;
    quint16 tag;
    TiffMaker::Type type;
    QByteArray lead; ///< stands before what is hidden
    bool hasNote = false;
};

MetadataBlocks exifWith(const Tag &hidden, const QByteArray &value)
{
    TiffMaker block;
    TiffEntries entries[4];
    block.set(entries[Tag::Image], 0x010f, TiffMaker::kAscii, QByteArray("Acme kept", 10));
    block.set(entries[Tag::Photo], 0x9000, TiffMaker::kUndefined, "0230");
    if (hidden.hasNote)
        block.set(entries[Tag::Photo], 0x927c, TiffMaker::kUndefined, QByteArray("ACME\0\1\2 note", 12));
    const QByteArray whole = hidden.lead + value;
    block.set(entries[hidden.directory], hidden.tag, hidden.type, whole + QByteArray(whole.size() % 2, '\0'));
    const auto lead = [&](quint16 tag, Tag::Directory to, Tag::Directory from) {
        if (!entries[to].empty())
            block.set(entries[from], tag, TiffMaker::kLong, block.place(block.directory(entries[to])));
    };
    lead(0xa005, Tag::Interoperability, Tag::Photo);
    lead(0x8769, Tag::Photo, Tag::Image);
    lead(0x8825, Tag::Gps, Tag::Image);
    MetadataBlocks blocks;
    blocks.exif = block.startingAt(block.directory(entries[Tag::Image]));
    return blocks;
}

/// A directory of a picture, behind the first one or below it, and a note that keeps what nothing refers to.
MetadataBlocks exifWithPicture(bool isBelow, quint16 offsetTag, const QByteArray &value)
{
    TiffMaker block;
    TiffEntries picture;
    TiffEntries photo;
    TiffEntries image;
    block.set(image, 0x010f, TiffMaker::kAscii, QByteArray("Acme kept", 10));
    block.set(photo, 0x927c, TiffMaker::kUndefined, QByteArray("ACME\0\1\2 note", 12));
    block.set(picture, offsetTag, TiffMaker::kLong, block.place(block.add(value)));
    block.set(picture, offsetTag == 0x0201 ? 0x0202 : 0x0117, TiffMaker::kLong, block.place(quint64(value.size())));
    const quint64 place = block.directory(picture);
    block.set(image, 0x8769, TiffMaker::kLong, block.place(block.directory(photo)));
    if (isBelow)
        block.set(image, 0x014a, TiffMaker::kLong, block.place(place));
    MetadataBlocks blocks;
    blocks.exif = block.startingAt(block.directory(image, isBelow ? 0 : place));
    return blocks;
}

QByteArray dataSet(int record, int number, const QByteArray &value)
{
    return QByteArray("\x1c") + char(record) + char(number) + tiffBytes(quint16(value.size()), true) + value;
}

MetadataBlocks iptcWith(const QByteArray &rest)
{
    MetadataBlocks blocks;
    blocks.iptc = dataSet(2, 5, "kept") + rest;
    return blocks;
}

MetadataBlocks xmpWith(const QByteArray &properties, const QByteArray &attributes = {}, const QByteArray &behind = {})
{
    MetadataBlocks blocks;
    blocks.xmp =
        xmpPacket("<xmp:Label>kept</xmp:Label>" + properties, "xmlns:v=\"http://example.org/v/\" " + attributes) +
        behind;
    return blocks;
}

QByteArray inPieces(const QByteArray &text, const QByteArray &before, const QByteArray &after)
{
    QByteArray pieces;
    for (qsizetype at = 0; at < text.size(); at += 200)
        pieces += before + text.mid(at, 200) + after;
    return pieces;
}

struct Hiding
{
    const char *name;
    MetadataBlocks (*blocks)(const QByteArray &hidden);
    bool isText = false; ///< holds texts alone
};

QByteArray coded(const QByteArray &text)
{
    return QByteArray("ASCII\0\0\0", 8) + text;
}

const Hiding kHidings[] = {
    {"Description",
     [](const QByteArray &h) {
         return exifWith({Tag::Image, 0x010e, TiffMaker::kAscii, "seen "}, h);
     }},
    {"WindowsComment",
     [](const QByteArray &h) {
         return exifWith({Tag::Image, 0x9c9c, TiffMaker::kByte, {}}, h);
     }},
    {"Numbers",
     [](const QByteArray &h) {
         return exifWith({Tag::Image, 0xc618, TiffMaker::kShort, "ab"}, h);
     }},
    {"UnknownTag",
     [](const QByteArray &h) {
         return exifWith({Tag::Image, 0xc8f0, TiffMaker::kUndefined, {}}, h);
     }},
    {"LargeUnknownTag",
     [](const QByteArray &h) {
         return exifWith({Tag::Image, 0xc8f0, TiffMaker::kUndefined, QByteArray(8000, 'a')},
                         h.toHex().replace('f', "\xf0\xf1"));
     }},
    {"Manifest",
     [](const QByteArray &h) {
         return exifWith({Tag::Image, 0xcd41, TiffMaker::kUndefined, "jumb"}, h.mid(30));
     }},
    {"PrivateData",
     [](const QByteArray &h) {
         return exifWith({Tag::Image, 0xc634, TiffMaker::kByte, "Acme"}, h.mid(30));
     }},
    {"OldThumbnail",
     [](const QByteArray &h) {
         return exifWith({Tag::Image, 0x501b, TiffMaker::kByte, {}}, h.mid(30));
     }},
    {"PacketInExif",
     [](const QByteArray &h) {
         return exifWith({Tag::Photo, 0x02bc, TiffMaker::kByte, "<x>"}, h.mid(30));
     }},
    {"ResourcesInExif",
     [](const QByteArray &h) {
         return exifWith({Tag::Photo, 0x8649, TiffMaker::kByte, "8BIM"}, h.mid(30));
     }},
    {"UserComment",
     [](const QByteArray &h) {
         return exifWith({Tag::Photo, 0x9286, TiffMaker::kUndefined, coded("")}, h);
     }},
    {"MisplacedTag",
     [](const QByteArray &h) {
         return exifWith({Tag::Photo, 0x010e, TiffMaker::kAscii, {}}, h);
     }},
    {"UnknownExifTagBesideANote",
     [](const QByteArray &h) {
         return exifWith({Tag::Photo, 0xa999, TiffMaker::kUndefined, {}, true}, h);
     }},
    {"Note",
     [](const QByteArray &h) {
         return exifWith({Tag::Photo, 0x927c, TiffMaker::kUndefined, "ACME\1\2\3 a"}, h + "z");
     }},
    {"GpsMethod",
     [](const QByteArray &h) {
         return exifWith({Tag::Gps, 0x001b, TiffMaker::kUndefined, coded("")}, h);
     }},
    {"Interoperability",
     [](const QByteArray &h) {
         return exifWith({Tag::Interoperability, 0x4001, TiffMaker::kUndefined, {}}, h);
     }},
    {"Thumbnail", [](const QByteArray &h) { return exifWithPicture(false, 0x0201, h.mid(30)); }},
    {"PlainThumbnail", [](const QByteArray &h) { return exifWithPicture(false, 0x0111, h.mid(30)); }},
    {"PictureBelow", [](const QByteArray &h) { return exifWithPicture(true, 0x0111, h.mid(30)); }},
    {"Caption", [](const QByteArray &h) { return iptcWith(dataSet(2, 120, h)); }},
    {"IptcPreview", [](const QByteArray &h) { return iptcWith(dataSet(2, 202, h.mid(30))); }},
    {"IptcObject", [](const QByteArray &h) { return iptcWith(dataSet(8, 10, h.mid(30))); }},
    {"IptcUnknown", [](const QByteArray &h) { return iptcWith(dataSet(2, 250, h + QByteArray(4096, 'a'))); }},
    {"BehindIptc", [](const QByteArray &h) { return iptcWith("8BIM\4\x0c" + h.mid(30)); }},
    {"BehindBrokenIptc", [](const QByteArray &h) { return iptcWith("\x1c\2\5\x7f\xff" + h.mid(30)); }},
    {"XmpAttribute", [](const QByteArray &h) { return xmpWith({}, "v:a=\"" + h + "\""); }, true},
    {"XmpElement", [](const QByteArray &h) { return xmpWith("<v:a>" + h + "</v:a>"); }, true},
    {"XmpInCdata", [](const QByteArray &h) { return xmpWith("<v:a>" + inPieces(h, "<![CDATA[", "]]>") + "</v:a>"); },
     true},
    {"XmpAroundComments",
     [](const QByteArray &h) { return xmpWith("<v:a>" + inPieces(h, "", "<!-- x -->") + "</v:a>"); }, true},
    {"XmpList", [](const QByteArray &h) { return xmpWith("<v:a>" + inPieces(h, "<v:b>", "</v:b>") + "</v:a>"); }, true},
    {"XmpComment", [](const QByteArray &h) { return xmpWith("<!--" + h.mid(60) + "-->"); }, true},
    {"XmpInstruction", [](const QByteArray &h) { return xmpWith("<?a " + h.mid(60) + "?>"); }, true},
    {"XmpBesideProperties", [](const QByteArray &h) { return xmpWith(h.mid(60)); }, true},
    {"BehindXmp", [](const QByteArray &h) { return xmpWith({}, {}, h.mid(60)); }, true},
    {"XmpNamespace", [](const QByteArray &h) { return xmpWith("<q:a xmlns:q=\"" + h + "\">x</q:a>"); }, true},
    {"PngText",
     [](const QByteArray &h) {
         MetadataBlocks blocks;
         blocks.texts = {{"Title", QStringLiteral("kept"), {}, {}}, {"Comment", QString::fromLatin1(h), {}, {}}};
         return blocks;
     }},
};

class HiddenPictures : public testing::TestWithParam<Hiding>
{
};

} // namespace

TEST_P(HiddenPictures, AreNotCarriedAndTheRestIs)
{
    const auto url = QByteArray::Base64UrlEncoding;
    const std::vector<QByteArray> encoded = {webp().toBase64(), "data:image/jpeg;base64," + jpeg().toBase64(url),
                                             jpeg().toHex(' '), deflateZlib(jpeg()).toBase64()};
    const std::vector<QByteArray> plain = {jpeg(), webp(), deflateZlib(jpeg()), jpeg().toBase64()};
    for (const QByteArray &hidden : GetParam().isText ? encoded : plain) {
        const MetadataBlocks source = GetParam().blocks(hidden);
        const QTemporaryDir folder;
        const WriteFormat format =
            source.exif.isEmpty() && source.iptc.isEmpty() ? WriteFormat::Png : WriteFormat::Jpeg;
        const QString path = writePhoto(folder, format, source, kSize);
        for (const WriteFormat target : {WriteFormat::Jpeg, WriteFormat::Png, WriteFormat::Tiff}) {
            const MetadataBlocks carried = carriedOf(path, kSize, target);
            QByteArray all = carried.exif + carried.iptc + carried.xmp;
            for (const PngText &text : carried.texts)
                all += text.text.toLatin1();
            const bool isKept = target == WriteFormat::Png || source.texts.empty();
            EXPECT_EQ(all.contains("kept"), isKept) << int(target);
            for (qsizetype at = 100; at + 40 < hidden.size(); at += 40)
                ASSERT_FALSE(all.contains(hidden.mid(at, 20))) << int(target) << " at " << at;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Places, HiddenPictures, testing::ValuesIn(kHidings),
                         [](const auto &info) { return std::string(info.param.name); });

} // namespace hazelmark
