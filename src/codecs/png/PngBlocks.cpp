#include "BlockReaders.h"
#include "JpegSegments.h"
#include "SourceCursor.h"
#include "ZlibStream.h"

#include <QtEndian>

namespace hazelmark {

namespace {

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
    explicit PngWalk(const SourceFile &source)
        : m_cursor(source)
    {
    }

    EmbeddedBlocks blocks()
    {
        constexpr qint64 kSignatureSize = 8;
        m_cursor.seek(kSignatureSize);
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
        const QByteArray head = m_cursor.read(8);
        if (head.size() < 8)
            return false;
        const qint64 size = qFromBigEndian<quint32>(head.constData());
        const QByteArray type = head.mid(4);
        constexpr qint64 kChecksumSize = 4;
        const qint64 next = m_cursor.position() + size + kChecksumSize;
        const bool isText = type == "tEXt" || type == "zTXt" || type == "iTXt";
        if ((type == "eXIf" || isText) && size <= kMaxBlockSize) {
            const QByteArray data = m_cursor.read(size);
            if (data.size() < size)
                return false;
            if (isText)
                takeText(type, data);
            else if (m_blocks.exif.isEmpty())
                m_blocks.exif = withoutExifLeadIn(data);
        }
        m_cursor.seek(next);
        return type != "IEND" && !m_cursor.atEnd();
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
            m_blocks.iptc = iptcOfResources(bytes);
    }

    SourceCursor m_cursor;
    EmbeddedBlocks m_blocks;
    QByteArray m_textExif; ///< the old form, which counts only where there is no eXIf chunk
    QByteArray m_textXmp;
    qsizetype m_room = kMaxBlockSize;
};

} // namespace

EmbeddedBlocks readPngBlocks(const SourceFile &source)
{
    return PngWalk(source).blocks();
}

} // namespace hazelmark
