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

TEST(XmpPacket, PropertiesAreCarriedAndWhatShowsThePictureOrStandsBesideThemIsNot)
{
    const QByteArray title =
        "<dc:title><rdf:Alt><rdf:li xml:lang=\"x-default\">Ä &amp; B</rdf:li></rdf:Alt></dc:title>";
    const QByteArray thumbnails = "<xmp:Thumbnails><rdf:Alt><rdf:li rdf:parseType=\"Resource\"><xmpGImg:image>abc"
                                  "</xmpGImg:image></rdf:li></rdf:Alt></xmp:Thumbnails>";
    const struct
    {
        QByteArray properties;
        QByteArray attributes;
        QList<QByteArray> kept;
        QList<QByteArray> gone;
    } rows[] = {
        {"<!-- a remark -->loose text<dc:source>4<?pi x?></dc:source>" + title,
         "xmp:Label=\"x\"",
         {"<dc:source>4</dc:source>", "xmp:Label=\"x\"", "xml:lang=\"x-default\"", "Ä &amp; B",
          "<?xpacket begin=\"\xef\xbb\xbf\"", "<?xpacket end=\"w\"?>", "rdf:about=\"\""},
         {"remark", "loose", "<?pi", "behind"}},
        {thumbnails, {}, {}, {"humbnails"}},
        {{}, "GImage:Data=\"xyz\"", {}, {"GImage:Data"}},
        {{}, "xmlns:g=\"http://ns.adobe.com/hdr-gain-map/1.0/\" g:Version=\"1.0\"", {}, {"g:Version"}},
        {{}, "xmlns:c=\"http://ns.google.com/photos/1.0/camera/\" c:MotionPhoto=\"1\"", {}, {"MotionPhoto"}},
        {{}, "xmlns:c=\"http://ns.google.com/photos/1.0/camera/\" c:Other=\"1\"", {"c:Other"}, {}},
        // Only other sizes are corrected.
        {"<tiff:ImageWidth>400</tiff:ImageWidth><exif:PixelXDimension>40</exif:PixelXDimension>",
         "exif:PixelYDimension=\"17\" tiff:ImageLength=\"many\"",
         {"<tiff:ImageWidth>40</tiff:ImageWidth>", "<exif:PixelXDimension>40<", "exif:PixelYDimension=\"30\"",
          "tiff:ImageLength=\"many\""},
         {}},
    };
    for (const auto &[properties, attributes, kept, gone] : rows) {
        const QByteArray packet = xmpPacket(properties + "<xmp:Rating>4</xmp:Rating>", attributes);
        const QByteArray carried = carriedOf(packet + QByteArray(99, ' ') + "behind the end" + '\0');
        for (const QByteArray &part : kept + QList<QByteArray>{"<xmp:Rating>4</xmp:Rating>"})
            EXPECT_TRUE(carried.contains(part)) << part.constData() << " in " << carried.constData();
        for (const QByteArray &part : gone)
            EXPECT_FALSE(carried.contains(part)) << part.constData() << " in " << carried.constData();
        EXPECT_EQ(carriedOf(carried), carried) << "nothing is left to do";
    }
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
    const QByteArray without = carriedOf(main, extension.chopped(60));
    EXPECT_TRUE(without.contains("<xmp:Rating>4</xmp:Rating>"));
    EXPECT_FALSE(without.contains("far"));
}

TEST(XmpPacket, WhatCannotBeReadInAMomentIsNotCarried)
{
    const auto attributes = [](int count) {
        QByteArray all;
        for (int i = 0; i < count; ++i)
            all += "xmp:a" + QByteArray::number(i) + "=\"'>\" ";
        return xmpPacket({}, all);
    };
    const std::pair<QByteArray, bool> packets[] = {
        {"<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><unclosed>", false},
        {"<!DOCTYPE x [<!ENTITY a \"aaaaaaaaaa\">]><x>&a;</x>", false},
        {xmpPacket(QByteArray("<xmp:a>").repeated(60) + QByteArray("</xmp:a>").repeated(60)), true},
        {xmpPacket(QByteArray("<xmp:a>").repeated(70) + QByteArray("</xmp:a>").repeated(70)), false},
        {attributes(2'000), true},
        {attributes(40'000), false}};
    for (const auto &[packet, isRead] : packets)
        EXPECT_EQ(readXmp(packet, {}, kSize).has_value(), isRead) << packet.left(60).constData();
}

} // namespace hazelmark
