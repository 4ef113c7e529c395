#include "XmpPacket.h"

#include "SamplePhotos.h"

#include <gtest/gtest.h>

namespace hazelmark {

namespace {

constexpr QSize kSize(40, 30);

QByteArray carriedOf(const QByteArray &packet, const QByteArray &extension = {})
{
    const std::optional<XmpPacket> read = readXmp(packet, extension, kSize);
    return read ? read->carried : QByteArray();
}

} // namespace

TEST(XmpPacket, PropertiesAreCarriedAndWhatStandsBesideThemIsNot)
{
    const QByteArray title =
        "<dc:title><rdf:Alt><rdf:li xml:lang=\"x-default\">Ä &amp; B</rdf:li></rdf:Alt></dc:title>";
    const QByteArray packet =
        xmpPacket("<!-- a remark -->loose text<xmp:Rating>4<?pi x?></xmp:Rating>" + title, "xmp:Label=\"x\"") +
        QByteArray(99, ' ') + "behind the end" + '\0';
    const QByteArray carried = carriedOf(packet);
    for (const char *kept : {"<xmp:Rating>4</xmp:Rating>", "xmp:Label=\"x\"", "xml:lang=\"x-default\"", "Ä &amp; B",
                             "<?xpacket begin=\"\xef\xbb\xbf\"", "<?xpacket end=\"w\"?>", "rdf:about=\"\""})
        EXPECT_TRUE(carried.contains(kept)) << kept << " in " << carried.constData();
    for (const char *gone : {"remark", "loose", "<?pi", "behind"})
        EXPECT_FALSE(carried.contains(gone)) << gone;
    EXPECT_EQ(carriedOf(carried), carried);
}

TEST(XmpPacket, RenditionsAreTakenOutAndTheRestStays)
{
    const QByteArray thumbnails = "<xmp:Thumbnails><rdf:Alt><rdf:li rdf:parseType=\"Resource\"><xmpGImg:image>abc"
                                  "</xmpGImg:image></rdf:li></rdf:Alt></xmp:Thumbnails>";
    struct Case
    {
        QByteArray properties;
        QByteArray attributes;
        QByteArray gone;
    };
    for (const Case &c :
         {Case{thumbnails, {}, "humbnails"}, Case{{}, "GImage:Data=\"xyz\"", "GImage:Data"},
          Case{{}, "xmlns:g=\"http://ns.adobe.com/hdr-gain-map/1.0/\" g:Version=\"1.0\"", "g:Version"},
          Case{{}, "xmlns:c=\"http://ns.google.com/photos/1.0/camera/\" c:MotionPhoto=\"1\"", "MotionPhoto"}}) {
        const QByteArray carried = carriedOf(xmpPacket(c.properties + "<xmp:Rating>4</xmp:Rating>", c.attributes));
        EXPECT_FALSE(carried.contains(c.gone)) << carried.constData();
        EXPECT_TRUE(carried.contains("<xmp:Rating>4</xmp:Rating>")) << carried.constData();
    }
}

TEST(XmpPacket, OnlyOtherSizesAreCorrected)
{
    const QByteArray carried =
        carriedOf(xmpPacket("<tiff:ImageWidth>400</tiff:ImageWidth><exif:PixelXDimension>40</exif:PixelXDimension>",
                            "exif:PixelYDimension=\"17\" tiff:ImageLength=\"many\""));
    for (const char *part : {"<tiff:ImageWidth>40</tiff:ImageWidth>", "<exif:PixelXDimension>40<",
                             "exif:PixelYDimension=\"30\"", "tiff:ImageLength=\"many\""})
        EXPECT_TRUE(carried.contains(part)) << part;
}

TEST(XmpPacket, AnExtensionIsJoined)
{
    const QByteArray main = xmpPacket("<xmp:Rating>4</xmp:Rating>", "xmpNote:HasExtendedXMP=\"0123\"");
    const QByteArray extension = xmpPacket("<dc:source>far</dc:source><GImage:Data>xyz</GImage:Data>");
    const QByteArray joined = carriedOf(main, extension);
    EXPECT_FALSE(joined.contains("HasExtendedXMP"));
    EXPECT_FALSE(joined.contains("xyz"));
    EXPECT_TRUE(joined.contains("<dc:source>far</dc:source>")) << joined.constData();
    EXPECT_EQ(joined.count("<rdf:RDF"), 1);
    EXPECT_EQ(carriedOf(joined), joined); // well-formed, and nothing is left to do

    // One that is cut off is left out as a whole.
    const QByteArray without = carriedOf(main, extension.left(extension.size() - 60));
    EXPECT_TRUE(without.contains("<xmp:Rating>4</xmp:Rating>"));
    EXPECT_FALSE(without.contains("far"));
}

TEST(XmpPacket, WhatCannotBeReadInAMomentIsNotCarried)
{
    EXPECT_FALSE(readXmp("<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><unclosed>", {}, kSize));
    EXPECT_FALSE(readXmp("<!DOCTYPE x [<!ENTITY a \"aaaaaaaaaa\">]><x>&a;</x>", {}, kSize));
    EXPECT_FALSE(readXmp(xmpPacket(QByteArray("<xmp:a>").repeated(30'000)), {}, kSize));
    const auto withAttributes = [](int count) {
        QByteArray attributes;
        for (int i = 0; i < count; ++i)
            attributes += "xmp:a" + QByteArray::number(i) + "=\"'>\" ";
        return readXmp(xmpPacket({}, attributes), {}, kSize).has_value();
    };
    EXPECT_TRUE(withAttributes(2'000));
    EXPECT_FALSE(withAttributes(40'000));
}

} // namespace hazelmark
