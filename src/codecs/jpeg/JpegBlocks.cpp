#include "BlockReaders.h"
#include "JpegSegments.h"
#include "SourceCursor.h"
#include "TiffBlock.h"

#include <QMap>
#include <QtEndian>

namespace hazelmark {

namespace {

class JpegWalk
{
public:
    explicit JpegWalk(const SourceFile &source)
        : m_cursor(source)
    {
    }

    EmbeddedBlocks blocks()
    {
        m_cursor.seek(2);
        while (takeSegment()) {
        }
        m_blocks.iptc = iptcOfResources(m_resources);
        m_blocks.extendedXmp = extension();
        return m_blocks;
    }

private:
    std::optional<quint8> nextMarker()
    {
        std::optional<quint8> byte = m_cursor.readByte();
        while (byte && *byte != 0xff)
            byte = m_cursor.readByte();
        while (byte && *byte == 0xff)
            byte = m_cursor.readByte();
        return byte;
    }

    /// False at the picture data, where the search ends, and at the end of the file.
    bool takeSegment()
    {
        constexpr int kApp1 = 0xe1;
        constexpr int kApp13 = 0xed;
        constexpr int kStartOfScan = 0xda;
        constexpr int kEndOfImage = 0xd9;
        const std::optional<quint8> marker = nextMarker();
        if (!marker || *marker == kStartOfScan || *marker == kEndOfImage)
            return false;
        const bool standsAlone = *marker <= 0x01 || (*marker >= 0xd0 && *marker <= 0xd8);
        if (standsAlone)
            return true;
        const QByteArray length = m_cursor.read(2);
        if (length.size() < 2 || qFromBigEndian<quint16>(length.constData()) < 2)
            return false;
        const qint64 size = qFromBigEndian<quint16>(length.constData()) - 2;
        if (*marker != kApp1 && *marker != kApp13) {
            m_cursor.skip(size);
            return true;
        }
        const QByteArray data = m_cursor.read(size);
        if (data.size() < size)
            return false;
        if (*marker == kApp1)
            takeApp1(data);
        else if (data.startsWith(kResourceLeadIn))
            append(m_resources, data.mid(kResourceLeadIn.size()));
        return true;
    }

    static void append(QByteArray &whole, const QByteArray &part)
    {
        if (whole.size() + part.size() <= kMaxBlockSize)
            whole += part;
    }

    void takeApp1(const QByteArray &data)
    {
        if (data.startsWith(kExifLeadIn)) {
            const QByteArray block = withoutExifLeadIn(data);
            // A block of more than a segment goes on in the next; a second block of its own is not looked at.
            if (m_blocks.exif.isEmpty() || !TiffBlock::isTiffStructure(block))
                append(m_blocks.exif, block);
        } else if (data.startsWith(kXmpLeadIn) && m_blocks.xmp.isEmpty()) {
            m_blocks.xmp = data.mid(kXmpLeadIn.size());
        } else if (data.startsWith(kExtendedXmpLeadIn)) {
            takeExtension(data.mid(kExtendedXmpLeadIn.size()));
        }
    }

    /// A piece: the 32 digits that the main packet names it by, the size of the whole, its own place, and the bytes.
    void takeExtension(const QByteArray &piece)
    {
        constexpr qsizetype kNameSize = 32;
        constexpr qsizetype kHeadSize = kNameSize + 8;
        constexpr qsizetype kMostNames = 16; // one is usual, and the packet is searched for each
        const QByteArray name = piece.left(kNameSize);
        m_extensionSize += piece.size();
        if (piece.size() > kHeadSize && m_extensionSize <= kMaxBlockSize &&
            (m_extensions.size() < kMostNames || m_extensions.contains(name)))
            m_extensions[name][qFromBigEndian<quint32>(piece.constData() + kNameSize + 4)] = piece.mid(kHeadSize);
    }

    /// The pieces come in any order; one that is missing makes the whole worthless.
    QByteArray extension() const
    {
        for (auto it = m_extensions.constBegin(); it != m_extensions.constEnd(); ++it) {
            if (!m_blocks.xmp.contains(it.key()))
                continue;
            QByteArray whole;
            for (auto piece = it->constBegin(); piece != it->constEnd() && piece.key() == whole.size(); ++piece)
                whole += *piece;
            return whole;
        }
        return {};
    }

    SourceCursor m_cursor;
    EmbeddedBlocks m_blocks;
    QByteArray m_resources;
    QMap<QByteArray, QMap<qsizetype, QByteArray>> m_extensions; ///< by name and place
    qsizetype m_extensionSize = 0;
};

} // namespace

EmbeddedBlocks readJpegBlocks(const SourceFile &source)
{
    return JpegWalk(source).blocks();
}

} // namespace hazelmark
