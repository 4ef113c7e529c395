#include "BlockReaders.h"
#include "SourceCursor.h"

namespace hazelmark {

namespace {

/// An XMP packet lies in an application block, not in parts with a length each as all else, but as it is, with a
/// trailer of 258 bytes that leads a reader who takes its characters for lengths out of it again.
class GifWalk
{
public:
    explicit GifWalk(const SourceFile &source)
        : m_source(source)
        , m_cursor(source)
    {
    }

    EmbeddedBlocks blocks()
    {
        constexpr qint64 kHeaderSize = 13;
        const QByteArray header = m_cursor.read(kHeaderSize);
        if (header.size() < kHeaderSize)
            return {};
        skipColors(header.at(10));
        while (takeBlock()) {
        }
        return m_blocks;
    }

private:
    void skipColors(char flags)
    {
        const bool hasColors = flags & 0x80;
        if (hasColors)
            m_cursor.skip(qint64(3) << ((flags & 0x07) + 1));
    }

    bool skipParts()
    {
        while (++m_steps < kMaxSteps) {
            const std::optional<quint8> size = m_cursor.readByte();
            if (!size || *size == 0)
                return size.has_value();
            m_cursor.skip(*size);
        }
        return false;
    }

    bool takeBlock()
    {
        constexpr quint8 kExtension = 0x21;
        constexpr quint8 kImage = 0x2c;
        constexpr qint64 kImageHeadSize = 9;
        const std::optional<quint8> kind = m_cursor.readByte();
        if (kind == kExtension)
            return takeExtension();
        if (kind != kImage)
            return false;
        const QByteArray head = m_cursor.read(kImageHeadSize);
        if (head.size() < kImageHeadSize)
            return false;
        skipColors(head.back());
        m_cursor.skip(1); // bits of a code
        return skipParts();
    }

    bool takeExtension()
    {
        constexpr char kApplication = char(0xff);
        constexpr qint64 kTrailerSize = 258;
        const qint64 begin = m_cursor.position();
        const QByteArray start = m_cursor.read(13);
        const bool isXmp = start.startsWith(kApplication) && start.endsWith("XMP DataXMP");
        const qint64 from = begin + (isXmp ? start.size() : 1);
        m_cursor.seek(from);
        if (!skipParts())
            return false;
        const qint64 size = m_cursor.position() - from - kTrailerSize;
        if (isXmp && size > 0 && size <= kMaxBlockSize)
            m_blocks.xmp = m_source.bytesAt(from, size);
        return true;
    }

    const SourceFile &m_source;
    SourceCursor m_cursor;
    EmbeddedBlocks m_blocks;
    int m_steps = 0;
};

} // namespace

EmbeddedBlocks readGifBlocks(const SourceFile &source)
{
    return GifWalk(source).blocks();
}

} // namespace hazelmark
