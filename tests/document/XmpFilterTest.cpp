#include "XmpFilter.h"

#include "SamplePhotos.h"

#include <gtest/gtest.h>

namespace hazelmark {

namespace {

constexpr QSize kSize(40, 30);
const QByteArray kPicture = "/9j/" + QByteArray(400, 'A');

} // namespace

TEST(XmpFilter, APacketWithoutPicturesComesBackByteForByte)
{
    for (const QByteArray &packet :
         {xmpPacket("<xmp:Rating>4</xmp:Rating>\n<!-- a remark -->", "exif:PixelXDimension=\"40\""),
          xmpPacket("<tiff:ImageLength>30</tiff:ImageLength>") + QByteArray(2048, ' '),
          xmpPacket("<dc:format>image/jpeg</dc:format>") + QByteArray(1, '\0')})
        EXPECT_EQ(filteredXmp(packet, {}, kSize), packet);
}

TEST(XmpFilter, WhatShowsThePictureIsTakenOutAndTheRestStays)
{
    const QByteArray rest = "<xmp:Rating>4</xmp:Rating><dc:title><rdf:Alt><rdf:li xml:lang=\"x-default\">Ä &amp; B"
                            "</rdf:li></rdf:Alt></dc:title>";
    const QByteArray thumbnails = "<xmp:Thumbnails><rdf:Alt><rdf:li rdf:parseType=\"Resource\"><xmpGImg:image>abc"
                                  "</xmpGImg:image></rdf:li></rdf:Alt></xmp:Thumbnails>";
    const QByteArray unknown = "<v:blob xmlns:v=\"http://example.org/v/\">" + kPicture + "</v:blob>";
    struct Case
    {
        QByteArray properties;
        QByteArray attributes;
        QByteArray gone;
    };
    for (const Case &c :
         {Case{thumbnails, {}, "humbnails"}, Case{unknown, {}, kPicture},
          Case{{}, "GImage:Data=\"xyz\"", "GImage:Data"},
          Case{{}, "xmlns:v=\"http://example.org/v/\" v:blob=\"" + kPicture + "\"", kPicture},
          Case{{}, "xmlns:g=\"http://ns.adobe.com/hdr-gain-map/1.0/\" g:Version=\"1.0\"", "g:Version"},
          Case{{}, "xmlns:c=\"http://ns.google.com/photos/1.0/camera/\" c:MotionPhoto=\"1\"", "MotionPhoto"}}) {
        const auto filtered = filteredXmp(xmpPacket(c.properties + rest, c.attributes + " xmp:Label=\"x\""), {}, kSize);
        ASSERT_TRUE(filtered);
        EXPECT_FALSE(filtered->contains(c.gone)) << filtered->constData();
        for (const char *kept : {"<xmp:Rating>4</xmp:Rating>", "xmp:Label=\"x\"", "xml:lang=\"x-default\"", "Ä &amp; B",
                                 "<?xpacket begin=\"\xef\xbb\xbf\"", "<?xpacket end=\"w\"?>", "rdf:about=\"\""})
            EXPECT_TRUE(filtered->contains(kept)) << kept << " in " << filtered->constData();
    }
}

TEST(XmpFilter, OnlyOtherSizesAreCorrected)
{
    const auto filtered =
        filteredXmp(xmpPacket("<tiff:ImageWidth>400</tiff:ImageWidth><exif:PixelXDimension>40</exif:PixelXDimension>",
                              "exif:PixelYDimension=\"17\" tiff:ImageLength=\"many\""),
                    {}, kSize);
    ASSERT_TRUE(filtered);
    for (const char *part : {"<tiff:ImageWidth>40</tiff:ImageWidth>", "<exif:PixelXDimension>40<",
                             "exif:PixelYDimension=\"30\"", "tiff:ImageLength=\"many\""})
        EXPECT_TRUE(filtered->contains(part)) << part;
}

TEST(XmpFilter, AnExtensionIsJoinedWithoutItsPictures)
{
    const QByteArray main = xmpPacket("<xmp:Rating>4</xmp:Rating>", "xmpNote:HasExtendedXMP=\"0123\"");
    const QByteArray extension = xmpPacket("<dc:source>far</dc:source><GImage:Data>xyz</GImage:Data>"
                                           "<v:a xmlns:v=\"http://example.org/v/\"><rdf:Seq><rdf:li>" +
                                           kPicture + "</rdf:li><rdf:li>kept</rdf:li></rdf:Seq></v:a>");
    const auto joined = filteredXmp(main, extension, kSize);
    ASSERT_TRUE(joined);
    EXPECT_FALSE(joined->contains("HasExtendedXMP"));
    EXPECT_FALSE(joined->contains("xyz"));
    EXPECT_FALSE(joined->contains(kPicture));
    EXPECT_TRUE(joined->contains("<dc:source>far</dc:source>")) << joined->constData();
    EXPECT_TRUE(joined->contains("<rdf:li>kept</rdf:li>"));
    EXPECT_EQ(joined->count("<rdf:RDF"), 1);
    EXPECT_EQ(filteredXmp(*joined, {}, kSize), joined); // well-formed, and nothing is left to do

    // Once, however many such elements the packet has.
    const QByteArray rdf = "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"></rdf:RDF>";
    const auto once = filteredXmp("<x>" + rdf + rdf + rdf + "</x>", extension, kSize);
    ASSERT_TRUE(once);
    EXPECT_EQ(once->count("far"), 1);

    // One that is cut off is left out as a whole.
    const auto without = filteredXmp(main, extension.left(extension.size() - 40), kSize);
    ASSERT_TRUE(without);
    EXPECT_TRUE(without->contains("<xmp:Rating>4</xmp:Rating>"));
    EXPECT_FALSE(without->contains("far"));
}

TEST(XmpFilter, WhatCannotBeSearchedIsNotCarried)
{
    EXPECT_FALSE(filteredXmp("<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><unclosed>", {}, kSize));
    EXPECT_FALSE(filteredXmp("<!DOCTYPE x [<!ENTITY a \"aaaaaaaaaa\">]><x>&a;</x>", {}, kSize));
    QByteArray deep;
    for (int i = 0; i < 30'000; ++i)
        deep += "<a>";
    EXPECT_FALSE(filteredXmp(deep, {}, kSize));
}

} // namespace hazelmark
