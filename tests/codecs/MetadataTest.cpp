#include "TestFiles.h"

#include <QCryptographicHash>
#include <QtEndian>

#include <map>

namespace hazelmark {

namespace {

struct Block
{
    QByteArray type; ///< a JPEG marker in hexadecimal, or a PNG chunk's name
    QByteArray data;
};

/// The segments before the picture data.
std::vector<Block> jpegSegments(const QByteArray &file)
{
    std::vector<Block> segments;
    for (qsizetype at = 2; at + 4 <= file.size() && file[at] == char(0xff) && file[at + 1] != char(0xda);) {
        const qsizetype length = qFromBigEndian<quint16>(file.constData() + at + 2);
        segments.push_back({file.mid(at + 1, 1).toHex(), file.mid(at + 4, length - 2)});
        at += 2 + length;
    }
    return segments;
}

std::vector<Block> pngChunks(const QByteArray &file)
{
    std::vector<Block> chunks;
    for (qsizetype at = 8; at + 12 <= file.size();) {
        const qsizetype length = qFromBigEndian<quint32>(file.constData() + at);
        chunks.push_back({file.mid(at + 4, 4), file.mid(at + 8, length)});
        at += 12 + length;
    }
    return chunks;
}

quint32 bigEndianAt(const QByteArray &bytes, qsizetype offset)
{
    return qFromBigEndian<quint32>(bytes.constData() + offset);
}

} // namespace

class Metadata : public FolderTest
{
protected:
    QByteArray encoded(WriteFormat format, const MetadataBlocks &metadata) const
    {
        return FolderTest::encoded(makePicture(20, 10, QImage::Format_RGBX8888), optionsFor(format, metadata));
    }
    PictureInfo infoOfWritten(WriteFormat format, const MetadataBlocks &metadata) const
    {
        return read(encoded(format, metadata)).info;
    }
    std::vector<Block> segments(const MetadataBlocks &metadata) const
    {
        return jpegSegments(encoded(WriteFormat::Jpeg, metadata));
    }
    /// What follows `leadIn` in the segments of this marker that begin with it.
    static std::vector<QByteArray> payloads(const std::vector<Block> &segments, const char *marker,
                                            const QByteArray &leadIn)
    {
        std::vector<QByteArray> found;
        for (const Block &segment : segments) {
            if (segment.type == marker && segment.data.startsWith(leadIn))
                found.push_back(segment.data.mid(leadIn.size()));
        }
        return found;
    }
    const QByteArray m_exifLeadIn{"Exif\0", 6};
    const QByteArray m_xmpLeadIn{"http://ns.adobe.com/xap/1.0/", 29};
    const QByteArray m_extendedLeadIn{"http://ns.adobe.com/xmp/extension/", 35};
    const QByteArray m_resourceLeadIn{"Photoshop 3.0", 14};
};

TEST_F(Metadata, JpegCarriesEachBlockInItsSegment)
{
    MetadataBlocks metadata;
    metadata.exif = noiseBytes(65527, 1); // the most that fits
    metadata.xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'>packet</x:xmpmeta>";
    metadata.iptc = noiseBytes(31, 2);
    metadata.iccProfile = noiseBytes(140001, 3);
    metadata.dpi = QSizeF(299.6, 72);
    const QByteArray file = encoded(WriteFormat::Jpeg, metadata);
    EXPECT_EQ(payloads(jpegSegments(file), "e1", m_exifLeadIn), std::vector{metadata.exif});
    EXPECT_EQ(payloads(jpegSegments(file), "e1", m_xmpLeadIn), std::vector{metadata.xmp});
    EXPECT_EQ(payloads(jpegSegments(file), "ed", m_resourceLeadIn),
              std::vector{QByteArray("8BIM\x04\x04\0\0\0\0\0\x1f", 12) + metadata.iptc + '\0'});
    EXPECT_EQ(infoOf(file).iccProfile, metadata.iccProfile);
    EXPECT_EQ(infoOf(file).dpi, QSizeF(300, 72));
}

TEST_F(Metadata, JpegWithoutMetadataHasNoSegmentsForIt)
{
    for (const Block &segment : segments({}))
        EXPECT_TRUE(segment.type == "e0" || !segment.type.startsWith('e')) << segment.type.toStdString();
    EXPECT_EQ(infoOfWritten(WriteFormat::Jpeg, {}).dpi, std::nullopt);
}

TEST_F(Metadata, ExifThatDoesNotFitIntoJpegIsLeftOutAndTheRestKept)
{
    MetadataBlocks metadata;
    metadata.exif = noiseBytes(65528, 1);
    metadata.iptc = noiseBytes(10, 2);
    EXPECT_TRUE(payloads(segments(metadata), "e1", m_exifLeadIn).empty());
    EXPECT_EQ(payloads(segments(metadata), "ed", m_resourceLeadIn).size(), 1U);
}

TEST_F(Metadata, PaddingOfALargeXmpPacketIsDropped)
{
    MetadataBlocks metadata;
    const QByteArray content = "<x:xmpmeta xmlns:x='adobe:ns:meta/'>packet</x:xmpmeta>";
    metadata.xmp = "<?xpacket begin='' id='x'?>\n" + content + QByteArray(70000, ' ') + "<?xpacket end='w'?>";
    EXPECT_EQ(payloads(segments(metadata), "e1", m_xmpLeadIn), std::vector{content});
}

TEST_F(Metadata, XmpOverOneSegmentIsWrittenInTheExtendedForm)
{
    MetadataBlocks metadata;
    const QByteArray content = "<x:xmpmeta xmlns:x='adobe:ns:meta/'>" + noiseBytes(80000, 4).toHex() + "</x:xmpmeta>";
    metadata.xmp = "<?xpacket begin='' id='x'?>" + content + "<?xpacket end='w'?>";
    const QByteArray guid = QCryptographicHash::hash(content, QCryptographicHash::Md5).toHex().toUpper();
    const auto standard = payloads(segments(metadata), "e1", m_xmpLeadIn);
    ASSERT_EQ(standard.size(), 1U);
    EXPECT_TRUE(standard[0].contains("xmpNote:HasExtendedXMP=\"" + guid + '"'));
    QByteArray joined;
    for (const QByteArray &part : payloads(segments(metadata), "e1", m_extendedLeadIn + guid)) {
        EXPECT_EQ(bigEndianAt(part, 0), content.size());
        EXPECT_EQ(bigEndianAt(part, 4), joined.size());
        joined += part.mid(8);
    }
    EXPECT_EQ(joined, content);
}

TEST_F(Metadata, IptcOverOneSegmentIsSplit)
{
    MetadataBlocks metadata;
    metadata.iptc = noiseBytes(150000, 5);
    QByteArray joined;
    for (const QByteArray &part : payloads(segments(metadata), "ed", m_resourceLeadIn))
        joined += part;
    ASSERT_EQ(bigEndianAt(joined, 8), 150000U);
    EXPECT_EQ(joined.mid(12), metadata.iptc);
}

TEST_F(Metadata, PngCarriesEachBlockInItsChunkBeforeThePicture)
{
    MetadataBlocks metadata;
    metadata.exif = noiseBytes(100000, 1);
    metadata.xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'>\xc3\xa4</x:xmpmeta>";
    metadata.iptc = noiseBytes(101, 2);
    metadata.iccProfile = noiseBytes(5000, 3);
    metadata.dpi = QSizeF(300, 72);
    std::map<QByteArray, QByteArray> chunks;
    const QByteArray file = encoded(WriteFormat::Png, metadata);
    for (const Block &chunk : pngChunks(file)) {
        if (chunk.type == "IDAT")
            break;
        chunks[chunk.type] = chunk.data;
    }
    EXPECT_EQ(chunks["eXIf"], metadata.exif);
    EXPECT_EQ(chunks["iTXt"], QByteArray("XML:com.adobe.xmp\0\0\0\0\0", 22) + metadata.xmp);
    const QByteArray keyword("Raw profile type iptc\0\0", 23);
    ASSERT_TRUE(chunks["zTXt"].startsWith(keyword));
    const QByteArray text = qUncompress(QByteArray(4, '\0') + chunks["zTXt"].mid(keyword.size()));
    ASSERT_TRUE(text.startsWith("\niptc\n     114\n"));
    EXPECT_EQ(QByteArray::fromHex(text.mid(15)), QByteArray("8BIM\x04\x04\0\0\0\0\0\x65", 12) + metadata.iptc + '\0');
    const PictureInfo info = infoOf(file);
    EXPECT_EQ(info.iccProfile, metadata.iccProfile);
    ASSERT_TRUE(info.dpi);
    EXPECT_NEAR(info.dpi->width(), 300, 0.02);
    EXPECT_NEAR(info.dpi->height(), 72, 0.02);
}

TEST_F(Metadata, TiffKeepsProfileAndResolutionAndBmpTheResolution)
{
    MetadataBlocks metadata;
    metadata.iccProfile = noiseBytes(5001, 3);
    metadata.dpi = QSizeF(300, 72.5);
    const PictureInfo tiff = infoOfWritten(WriteFormat::Tiff, metadata);
    EXPECT_EQ(tiff.iccProfile, metadata.iccProfile);
    EXPECT_EQ(tiff.dpi, metadata.dpi);
    metadata.iccProfile.clear();
    const PictureInfo bmp = infoOfWritten(WriteFormat::Bmp, metadata);
    ASSERT_TRUE(bmp.dpi);
    EXPECT_NEAR(bmp.dpi->width(), 300, 0.02);
    EXPECT_NEAR(bmp.dpi->height(), 72.5, 0.02);
}

TEST_F(Metadata, ResolutionThatNoFieldHoldsIsLeftOut)
{
    for (const QSizeF dpi : {QSizeF(0, 0), QSizeF(-5, 5), QSizeF(1e12, 1e12), QSizeF(qQNaN(), 1)}) {
        MetadataBlocks metadata;
        metadata.dpi = dpi;
        for (const WriteFormat format : {WriteFormat::Jpeg, WriteFormat::Png, WriteFormat::Bmp})
            EXPECT_EQ(infoOfWritten(format, metadata).dpi, std::nullopt) << dpi.width() << " in " << int(format);
    }
}

} // namespace hazelmark
