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

/// Each packet is carried as another that has in it what is to be left of the first, which stays as it is.
TEST(XmpPacket, PropertiesAreCarriedAndWhatShowsThePictureOrStandsBesideThemIsNot)
{
    const QByteArray title =
        "<dc:title><rdf:Alt><rdf:li xml:lang=\"x-default\">Ä &amp; B</rdf:li></rdf:Alt></dc:title>";
    const QByteArray thumbnails = "<xmp:Thumbnails><rdf:Alt><rdf:li rdf:parseType=\"Resource\"><xmpGImg:image>abc"
                                  "</xmpGImg:image></rdf:li></rdf:Alt></xmp:Thumbnails>";
    const QByteArray nested = "<dc:a><dc:b>1</dc:b>%1</dc:a>";
    const QByteArray gainMap = "xmlns:g=\"http://ns.adobe.com/hdr-gain-map/1.0/\" ";
    const QByteArray camera = "xmlns:c=\"http://ns.google.com/photos/1.0/camera/\" ";
    const struct
    {
        QByteArray properties, attributes, leftProperties, leftAttributes;
    } rows[] = {
        {"<!-- a remark -->loose text<dc:source>4<?pi x?></dc:source>" + title, "xmp:Label=\"x\"",
         "<dc:source>4</dc:source>" + title, "xmp:Label=\"x\""},
        {thumbnails, {}, {}, {}},
        {QByteArray(nested).replace("%1", thumbnails), {}, QByteArray(nested).replace("%1", ""), {}},
        {{}, "GImage:Data=\"xyz\"", {}, {}},
        {"<q:a xmlns:q=\"urn:q\" q:b=\"1\" c=\"2\"/>", {}, "<q:a xmlns:q=\"urn:q\" q:b=\"1\" c=\"2\"/>", {}},
        {{}, gainMap + "g:Version=\"1.0\"", {}, gainMap},
        {{}, camera + "c:MotionPhoto=\"1\" c:Other=\"1\"", {}, camera + "c:Other=\"1\""},
        // Only other sizes are corrected.
        {"<tiff:ImageWidth>400</tiff:ImageWidth><exif:PixelXDimension> 40</exif:PixelXDimension>",
         "exif:PixelYDimension=\"17\" tiff:ImageLength=\"many\"",
         "<tiff:ImageWidth>40</tiff:ImageWidth><exif:PixelXDimension> 40</exif:PixelXDimension>",
         "exif:PixelYDimension=\"30\" tiff:ImageLength=\"many\""},
    };
    for (const auto &[properties, attributes, leftProperties, leftAttributes] : rows) {
        const QByteArray carried = carriedOf(xmpPacket(properties, attributes) + QByteArray(9, ' ') + "behind" + '\0');
        EXPECT_EQ(carried, carriedOf(xmpPacket(leftProperties, leftAttributes)));
        EXPECT_EQ(carriedOf(carried), carried) << "nothing is left to do";
        EXPECT_TRUE(carried.contains(leftProperties) && carried.contains(leftAttributes.split(' ').back()))
            << carried.constData();
    }
}

TEST(XmpPacket, AnExtensionIsJoinedAndOfSeveralValuesTheFirstCounts)
{
    const QByteArray list = "<dc:subject><rdf:Bag><rdf:li>Berg</rdf:li><rdf:li>Tal</rdf:li></rdf:Bag></dc:subject>";
    const QByteArray main =
        xmpPacket(list + "<dc:source x='1'>4</dc:source><dc:source>5</dc:source><dc:a><dc:b>1</dc:b></dc:a>",
                  "xmp:Label=\"x\" xmpNote:HasExtendedXMP=\"0123\"");
    const QByteArray extension = xmpPacket("<dc:far>2</dc:far><GImage:Data>xyz</GImage:Data>");
    const auto read = readXmp(main, extension, kSize);
    QStringList values;
    for (auto value = read->values.begin(); value != read->values.end(); ++value)
        values += value.key().second + u'=' + value->join(u',');
    EXPECT_EQ(values.join(u' ').toStdString(), "Label=x far=2 source=4 subject=Berg,Tal about=");
    const QByteArray joined = read->carried;
    EXPECT_FALSE(joined.contains("HasExtendedXMP") || joined.contains("xyz"));
    EXPECT_TRUE(joined.contains("<dc:far>2</dc:far>")) << joined.constData();
    EXPECT_EQ(joined.count("<rdf:RDF"), 1);
    EXPECT_EQ(carriedOf(joined), joined); // well-formed, and nothing is left to do
    // One that is cut off is left out as a whole.
    const QByteArray without = carriedOf(main, extension.chopped(60));
    EXPECT_TRUE(without.contains("<dc:source>5</dc:source>"));
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
        {xmpPacket("<!-- <a> = --><![CDATA[ <b> ]]>" + QByteArray("<xmp:a/>").repeated(100'000)), true},
        {xmpPacket(QByteArray("<xmp:a/>").repeated(600'000)), false},
        {xmpPacket(QByteArray("<xmp:a xmlns:b='c'/>").repeated(2'100)), false},
        {attributes(2'000), true},
        {attributes(40'000), false}};
    for (const auto &[packet, isRead] : packets)
        EXPECT_EQ(readXmp(packet, {}, kSize).has_value(), isRead) << packet.left(60).constData();
}

} // namespace hazelmark
