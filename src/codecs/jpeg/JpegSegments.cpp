#include "JpegSegments.h"

#include "EmbeddedBlocks.h"
#include "Log.h"
#include "TiffBytes.h"

#include <QCryptographicHash>
#include <QtEndian>

namespace hazelmark {

namespace {

constexpr int kApp1 = 0xe1;
constexpr int kApp2 = 0xe2;
constexpr int kApp13 = 0xed;

/// A segment's 16-bit length counts itself.
constexpr qsizetype kMaxSegmentData = 65535 - 2;

const QByteArray kIccLeadIn("ICC_PROFILE", 12); // with its closing zero byte

/// The packet without its wrapper ("<?xpacket ...?>") and the blank padding before the closing one.
QByteArray withoutPacketWrapper(const QByteArray &packet)
{
    QByteArray xmp = packet.trimmed();
    if (xmp.startsWith("<?xpacket"))
        xmp = xmp.mid(xmp.indexOf("?>") + 2);
    const qsizetype closing = xmp.lastIndexOf("<?xpacket end");
    if (closing >= 0)
        xmp.truncate(closing);
    return xmp.trimmed();
}

/// The standard packet only refers to the extended one, which holds everything: readers merge the two.
void appendExtendedXmp(std::vector<JpegSegment> &segments, const QByteArray &xmp)
{
    const QByteArray guid = QCryptographicHash::hash(xmp, QCryptographicHash::Md5).toHex().toUpper();
    segments.push_back({kApp1, kXmpLeadIn +
                                   "<?xpacket begin=\"\xef\xbb\xbf\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>"
                                   "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">"
                                   "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
                                   "<rdf:Description rdf:about=\"\" xmlns:xmpNote=\"http://ns.adobe.com/xmp/note/\""
                                   " xmpNote:HasExtendedXMP=\"" +
                                   guid + "\"/></rdf:RDF></x:xmpmeta><?xpacket end=\"w\"?>"});
    const qsizetype room = kMaxSegmentData - kExtendedXmpLeadIn.size() - guid.size() - 8;
    for (qsizetype offset = 0; offset < xmp.size(); offset += room) {
        segments.push_back({kApp1, kExtendedXmpLeadIn + guid + tiffBytes(quint32(xmp.size()), true) +
                                       tiffBytes(quint32(offset), true) + xmp.mid(offset, room)});
    }
}

void appendXmp(std::vector<JpegSegment> &segments, const QByteArray &packet)
{
    const qsizetype room = kMaxSegmentData - kXmpLeadIn.size();
    if (packet.size() <= room) {
        segments.push_back({kApp1, kXmpLeadIn + packet});
        return;
    }
    // Often most of a large packet is padding.
    const QByteArray xmp = withoutPacketWrapper(packet);
    if (xmp.size() <= room)
        segments.push_back({kApp1, kXmpLeadIn + xmp});
    else
        appendExtendedXmp(segments, xmp);
}

void appendIptc(std::vector<JpegSegment> &segments, const QByteArray &iptc)
{
    const QByteArray block = iptcResourceBlock(iptc);
    const qsizetype room = kMaxSegmentData - kResourceLeadIn.size();
    for (qsizetype offset = 0; offset < block.size(); offset += room)
        segments.push_back({kApp13, kResourceLeadIn + block.mid(offset, room)});
}

void appendProfile(std::vector<JpegSegment> &segments, const QByteArray &profile)
{
    constexpr qsizetype kMaxSegments = 255;
    const qsizetype room = kMaxSegmentData - kIccLeadIn.size() - 2;
    const qsizetype count = (profile.size() + room - 1) / room;
    if (count > kMaxSegments) {
        qCWarning(lcCodecs) << "The colour profile is too large for a JPEG file and is left out.";
        return;
    }
    for (qsizetype index = 0; index < count; ++index) {
        segments.push_back({kApp2, kIccLeadIn + char(index + 1) + char(count) + profile.mid(index * room, room)});
    }
}

} // namespace

QByteArray iptcResourceBlock(const QByteArray &iptc)
{
    // Number 0x0404, an empty name padded to two bytes, and the size; data is padded to an even length.
    QByteArray block = QByteArray("8BIM\x04\x04\0\0", 8) + tiffBytes(quint32(iptc.size()), true) + iptc;
    if (block.size() % 2 != 0)
        block += '\0';
    return block;
}

QByteArray iptcOfResources(const QByteArray &resources)
{
    constexpr quint16 kIptcNumber = 0x0404;
    if (resources.startsWith(kIptcRecordMarker))
        return resources;
    const auto number = [&](qsizetype at) { return qsizetype(qFromBigEndian<quint32>(resources.constData() + at)); };
    // A signature of four bytes, the number, a name with its length in front, and the size; both padded to even
    // lengths.
    for (qsizetype at = 0; at + 12 <= resources.size();) {
        const qsizetype nameSize = (quint8(resources[at + 6]) + 2) / 2 * 2;
        const qsizetype start = at + 6 + nameSize + 4;
        if (start > resources.size() || number(start - 4) > resources.size() - start)
            return {};
        const qsizetype size = number(start - 4);
        if (qFromBigEndian<quint16>(resources.constData() + at + 4) == kIptcNumber)
            return resources.mid(start, size);
        at = start + size + size % 2;
    }
    return {};
}

QByteArray withoutExifLeadIn(const QByteArray &bytes)
{
    return bytes.startsWith(kExifLeadIn) ? bytes.mid(kExifLeadIn.size()) : bytes;
}

std::vector<JpegSegment> metadataSegments(const MetadataBlocks &metadata)
{
    std::vector<JpegSegment> segments;
    if (metadata.exif.size() > kMaxSegmentData - kExifLeadIn.size())
        qCWarning(lcCodecs) << "The EXIF block is too large for a JPEG file and is left out.";
    else if (!metadata.exif.isEmpty())
        segments.push_back({kApp1, kExifLeadIn + metadata.exif});
    if (!metadata.xmp.isEmpty())
        appendXmp(segments, metadata.xmp);
    if (!metadata.iptc.isEmpty())
        appendIptc(segments, metadata.iptc);
    if (!metadata.iccProfile.isEmpty())
        appendProfile(segments, metadata.iccProfile);
    return segments;
}

} // namespace hazelmark
