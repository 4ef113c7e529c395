#include "EmbeddedBlocks.h"

#include "Exiv2Session.h"
#include "JpegSegments.h"
#include "TiffBlock.h"
#include "ZlibStream.h"

#include <QFile>
#include <QMap>
#include <QtEndian>

#include <exiv2/exiv2.hpp>

#include <optional>

namespace hazelmark {

namespace {

/// Chunks, blocks and the like that a search goes through. A file of some megabytes can be made of millions; hundreds
/// of megabytes of picture data are tens of thousands.
constexpr int kMaxSteps = 250'000;

quint32 bigEndian32(const QByteArray &bytes, qsizetype offset)
{
    return qFromBigEndian<quint32>(bytes.constData() + offset);
}

QByteArray withoutExifLeadIn(const QByteArray &bytes)
{
    return bytes.startsWith(kExifLeadIn) ? bytes.mid(kExifLeadIn.size()) : bytes;
}

/// The IIM records in a run of image-resource blocks. Some writers store the records without such blocks.
QByteArray iptcOfResources(const QString &path, const QByteArray &resources)
{
    if (resources.startsWith(kIptcRecordMarker))
        return resources;
    QByteArray iptc;
    withExiv2(path, [&] {
        const Exiv2::byte *record = nullptr;
        uint32_t headerSize = 0;
        uint32_t dataSize = 0;
        const auto *start = reinterpret_cast<const Exiv2::byte *>(resources.constData());
        if (Exiv2::Photoshop::locateIptcIrb(start, long(resources.size()), &record, &headerSize, &dataSize) == 0)
            iptc = QByteArray(reinterpret_cast<const char *>(record + headerSize), dataSize);
    });
    return iptc;
}

class JpegWalk
{
public:
    explicit JpegWalk(QFile &file)
        : m_file(file)
    {
    }

    EmbeddedBlocks blocks()
    {
        m_file.seek(2);
        while (takeSegment()) {
        }
        m_blocks.iptc = iptcOfResources(m_file.fileName(), m_resources);
        m_blocks.extendedXmp = extension();
        return m_blocks;
    }

private:
    std::optional<int> nextMarker()
    {
        char byte = 0;
        do {
            if (!m_file.getChar(&byte))
                return std::nullopt;
        } while (quint8(byte) != 0xff);
        while (quint8(byte) == 0xff) {
            if (!m_file.getChar(&byte))
                return std::nullopt;
        }
        return quint8(byte);
    }

    /// False at the picture data, where the search ends, and at the end of the file.
    bool takeSegment()
    {
        constexpr int kApp1 = 0xe1;
        constexpr int kApp13 = 0xed;
        constexpr int kStartOfScan = 0xda;
        constexpr int kEndOfImage = 0xd9;
        const std::optional<int> marker = nextMarker();
        if (!marker || *marker == kStartOfScan || *marker == kEndOfImage)
            return false;
        const bool standsAlone = *marker <= 0x01 || (*marker >= 0xd0 && *marker <= 0xd8);
        if (standsAlone)
            return true;
        const QByteArray length = m_file.read(2);
        if (length.size() < 2 || qFromBigEndian<quint16>(length.constData()) < 2)
            return false;
        const qint64 size = qFromBigEndian<quint16>(length.constData()) - 2;
        if (*marker != kApp1 && *marker != kApp13)
            return m_file.seek(m_file.pos() + size);
        const QByteArray data = m_file.read(size);
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
            m_extensions[name][bigEndian32(piece, kNameSize + 4)] = piece.mid(kHeadSize);
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

    QFile &m_file;
    EmbeddedBlocks m_blocks;
    QByteArray m_resources;
    QMap<QByteArray, QMap<qsizetype, QByteArray>> m_extensions; ///< by name and place
    qsizetype m_extensionSize = 0;
};

/// The bytes of a raw profile in a PNG text: a name, the size in decimal, then hexadecimal digits.
QByteArray rawProfile(const QByteArray &text)
{
    const QByteArray trimmed = text.trimmed();
    const qsizetype nameEnd = trimmed.indexOf('\n');
    if (nameEnd < 0)
        return {};
    const QByteArray rest = trimmed.mid(nameEnd + 1).trimmed();
    const qsizetype sizeEnd = rest.indexOf('\n');
    return sizeEnd < 0 ? QByteArray() : QByteArray::fromHex(rest.mid(sizeEnd + 1));
}

class PngWalk
{
public:
    explicit PngWalk(QFile &file)
        : m_file(file)
    {
    }

    EmbeddedBlocks blocks()
    {
        constexpr qint64 kSignatureSize = 8;
        m_file.seek(kSignatureSize);
        for (int step = 0; step < kMaxSteps && takeChunk(); ++step) {
        }
        if (m_blocks.exif.isEmpty())
            m_blocks.exif = m_textExif;
        if (m_blocks.xmp.isEmpty())
            m_blocks.xmp = m_textXmp;
        return m_blocks;
    }

private:
    bool takeChunk()
    {
        const QByteArray head = m_file.read(8);
        if (head.size() < 8)
            return false;
        const qint64 size = bigEndian32(head, 0);
        const QByteArray type = head.mid(4);
        constexpr qint64 kChecksumSize = 4;
        const qint64 next = m_file.pos() + size + kChecksumSize;
        const bool isText = type == "tEXt" || type == "zTXt" || type == "iTXt";
        if ((type == "eXIf" || isText) && size <= kMaxBlockSize) {
            const QByteArray data = m_file.read(size);
            if (data.size() < size)
                return false;
            if (isText)
                takeText(type, data);
            else if (m_blocks.exif.isEmpty())
                m_blocks.exif = withoutExifLeadIn(data);
        }
        return type != "IEND" && m_file.seek(next) && !m_file.atEnd();
    }

    void takeText(const QByteArray &type, const QByteArray &data)
    {
        const qsizetype keywordEnd = data.indexOf('\0');
        if (keywordEnd < 0)
            return;
        const QByteArray keyword = data.left(keywordEnd);
        if (isRegisteredKeyword(keyword)) {
            takeRegistered(type, keyword, data.mid(keywordEnd + 1));
            return;
        }
        const QByteArray kind = keyword.startsWith("Raw profile type ") ? keyword.mid(17).toLower() : QByteArray();
        if (kind.isEmpty() && keyword != "XML:com.adobe.xmp")
            return;
        const QByteArray text = textOf(type, data.mid(keywordEnd + 1));
        if (kind.isEmpty())
            m_blocks.xmp = text;
        else
            takeRawProfile(kind, rawProfile(text));
    }

    void takeRegistered(const QByteArray &type, const QByteArray &keyword, const QByteArray &data)
    {
        constexpr size_t kMostTexts = 1000;
        const QByteArray content = textOf(type, data);
        if (content.isEmpty() || m_blocks.texts.size() >= kMostTexts)
            return;
        PngText text{keyword, {}, {}, {}};
        if (type == "iTXt") {
            text.text = QString::fromUtf8(content);
            const qsizetype languageEnd = data.indexOf('\0', 2);
            text.language = data.mid(2, languageEnd - 2);
            text.translatedKeyword = QString::fromUtf8(data.constData() + languageEnd + 1);
        } else {
            text.text = QString::fromLatin1(content);
        }
        m_blocks.texts.push_back(text);
    }

    /// All the texts together are given room for one: each could be a thousandth of its content.
    QByteArray inflated(const QByteArray &stream)
    {
        const QByteArray content = inflateZlib(stream, m_room);
        m_room -= content.isEmpty() ? m_room / 4 : content.size(); // a damaged one has taken who knows how much
        return content;
    }

    QByteArray textOf(const QByteArray &type, const QByteArray &data)
    {
        if (type == "tEXt")
            return data;
        if (type == "zTXt")
            return inflated(data.mid(1));
        // Compression flag and method, a language and a translated keyword each with a zero byte, the text.
        const qsizetype languageEnd = data.indexOf('\0', 2);
        const qsizetype translationEnd = languageEnd < 0 ? -1 : data.indexOf('\0', languageEnd + 1);
        if (translationEnd < 0)
            return {};
        const QByteArray text = data.mid(translationEnd + 1);
        return data.at(0) == 0 ? text : inflated(text);
    }

    void takeRawProfile(const QByteArray &kind, const QByteArray &bytes)
    {
        if (kind == "exif" || (kind == "app1" && bytes.startsWith(kExifLeadIn)))
            m_textExif = withoutExifLeadIn(bytes);
        else if (kind == "xmp")
            m_textXmp = bytes;
        else if (kind == "app1" && bytes.startsWith(kXmpLeadIn))
            m_textXmp = bytes.mid(kXmpLeadIn.size());
        else if (kind == "iptc" || kind == "8bim")
            m_blocks.iptc = iptcOfResources(m_file.fileName(), bytes);
    }

    QFile &m_file;
    EmbeddedBlocks m_blocks;
    QByteArray m_textExif; ///< the old form, which counts only where there is no eXIf chunk
    QByteArray m_textXmp;
    qsizetype m_room = kMaxBlockSize;
};

EmbeddedBlocks webpBlocks(QFile &file)
{
    constexpr qint64 kRiffHeaderSize = 12;
    EmbeddedBlocks blocks;
    file.seek(kRiffHeaderSize);
    for (int step = 0; step < kMaxSteps; ++step) {
        const QByteArray head = file.read(8);
        if (head.size() < 8)
            return blocks;
        const qint64 size = qFromLittleEndian<quint32>(head.constData() + 4);
        const qint64 next = file.pos() + size + size % 2;
        const QByteArray type = head.left(4);
        if ((type == "EXIF" || type == "XMP ") && size <= kMaxBlockSize) {
            const QByteArray data = file.read(size);
            if (data.size() < size)
                return blocks;
            (type == "EXIF" ? blocks.exif : blocks.xmp) = withoutExifLeadIn(data);
        }
        if (next >= file.size() || !file.seek(next))
            return blocks;
    }
    return blocks;
}

/// An XMP packet lies in an application block, not in parts with a length each as all else, but as it is, with a
/// trailer of 258 bytes that leads a reader who takes its characters for lengths out of it again.
class GifWalk
{
public:
    explicit GifWalk(QFile &file)
        : m_file(file)
    {
    }

    EmbeddedBlocks blocks()
    {
        constexpr qint64 kHeaderSize = 13;
        const QByteArray header = m_file.read(kHeaderSize);
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
            m_file.seek(m_file.pos() + (qint64(3) << ((flags & 0x07) + 1)));
    }

    bool skipParts()
    {
        char size = 0;
        while (++m_steps < kMaxSteps && m_file.getChar(&size)) {
            if (size == 0)
                return true;
            if (!m_file.seek(m_file.pos() + quint8(size)))
                return false;
        }
        return false;
    }

    bool takeBlock()
    {
        constexpr char kExtension = 0x21;
        constexpr char kImage = 0x2c;
        constexpr qint64 kImageHeadSize = 9;
        char kind = 0;
        if (!m_file.getChar(&kind))
            return false;
        if (kind == kExtension)
            return takeExtension();
        if (kind != kImage)
            return false;
        const QByteArray head = m_file.read(kImageHeadSize);
        if (head.size() < kImageHeadSize)
            return false;
        skipColors(head.back());
        char codeSize = 0;
        return m_file.getChar(&codeSize) && skipParts();
    }

    bool takeExtension()
    {
        constexpr char kApplication = char(0xff);
        constexpr qint64 kTrailerSize = 258;
        const QByteArray start = m_file.peek(13);
        const bool isXmp = start.startsWith(kApplication) && start.endsWith("XMP DataXMP");
        m_file.seek(m_file.pos() + (isXmp ? start.size() : 1));
        const qint64 from = m_file.pos();
        if (!skipParts())
            return false;
        const qint64 next = m_file.pos();
        const qint64 size = next - from - kTrailerSize;
        if (isXmp && size > 0 && size <= kMaxBlockSize && m_file.seek(from))
            m_blocks.xmp = m_file.read(size);
        return m_file.seek(next);
    }

    QFile &m_file;
    EmbeddedBlocks m_blocks;
    int m_steps = 0;
};

} // namespace

bool hasEmbeddedBlocks(const QByteArray &format)
{
    return format == "jpeg" || format == "png" || format == "webp" || format == "gif";
}

EmbeddedBlocks readEmbeddedBlocks(const QString &path, const QByteArray &format)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    if (format == "jpeg")
        return JpegWalk(file).blocks();
    if (format == "png")
        return PngWalk(file).blocks();
    if (format == "webp")
        return webpBlocks(file);
    if (format == "gif")
        return GifWalk(file).blocks();
    return {};
}

} // namespace hazelmark
