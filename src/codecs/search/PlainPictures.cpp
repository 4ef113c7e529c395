#include "PictureSearch.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <bitset>
#include <optional>

namespace hazelmark {

namespace {

constexpr int kEndOfImage = 0xd9;
constexpr int kStartOfScan = 0xda;
constexpr int kQuantisation = 0xdb;
constexpr int kHuffman = 0xc4;

/// Marks that only one kind of file begins with and that nothing else holds by accident.
struct Mark
{
    QByteArrayView bytes;
    qsizetype before; ///< bytes of the file in front of the mark
    const char *kind;
};
constexpr std::array kMarks = {
    Mark{{"\x89PNG", 4}, 0, "PNG"},
    Mark{{"PNG\r\n\x1a\n", 7}, 1, "PNG"},
    Mark{{"\x8aMNG", 4}, 0, "MNG"},
    Mark{{"\x8bJNG", 4}, 0, "JNG"},
    Mark{{"WEBPVP8", 7}, 8, "WebP"},
    Mark{{"AVI LIST", 8}, 8, "film"},
    Mark{{"jP  \r\n\x87\n", 8}, 4, "JPEG 2000"},
    Mark{{"\xff\x4f\xff\x51", 4}, 0, "JPEG 2000"},
    Mark{{"JXL \r\n\x87\n", 8}, 4, "JPEG XL"},
    Mark{{"II\xbc\x01", 4}, 0, "JPEG XR"},
    Mark{{"8BPS\0", 5}, 0, "PSD"},
    Mark{{"%PDF-", 5}, 0, "PDF"},
    Mark{{"%!PS-", 5}, 0, "PostScript"},
    Mark{{"\x76\x2f\x31\x01", 4}, 0, "OpenEXR"},
    Mark{{"BPG\xfb", 4}, 0, "BPG"},
    Mark{{"FUJIFILMCCD-RAW", 15}, 0, "raw"},
    Mark{{"\x1a\x45\xdf\xa3", 4}, 0, "film"},
};

/// Looks at every place of some bytes whether a picture begins there.
class PlainSearch
{
public:
    PlainSearch(QByteArrayView bytes, SearchIn where)
        : m_bytes(bytes)
        , m_where(where)
    {
        for (const Mark &mark : kMarks)
            m_isFirst.set(quint8(mark.bytes[0]));
        for (const int first : {0xff, 0xd8, int('I'), int('M'), int('G'), int('B'), int('f'), 0x28})
            m_isFirst.set(size_t(first));
    }

    std::vector<FoundPicture> all()
    {
        std::vector<FoundPicture> found;
        qsizetype free = 0; // what lies before belongs to a picture
        for (qsizetype at = 0; at < m_bytes.size(); ++at) {
            if (!m_isFirst[quint8(m_bytes[at])])
                continue;
            std::optional<FoundPicture> picture = pictureAt(at);
            if (!picture)
                continue;
            picture->from = std::max(picture->from, free);
            if (m_where != SearchIn::Mixture)
                picture->to = m_bytes.size();
            found.push_back(*picture);
            free = picture->to;
            at = picture->to - 1;
        }
        return found;
    }

private:
    // Numbers of the file; beyond its end they are -1 or 0, which no header has where it matters.
    int byteAt(qsizetype at) const { return at >= 0 && at < m_bytes.size() ? quint8(m_bytes[at]) : -1; }
    bool has(qsizetype at, qsizetype count) const { return at >= 0 && at + count <= m_bytes.size(); }
    template <typename Number>
    quint64 number(qsizetype at, bool isBigEndian) const
    {
        if (!has(at, sizeof(Number)))
            return 0;
        const char *from = m_bytes.data() + at;
        return isBigEndian ? qFromBigEndian<Number>(from) : qFromLittleEndian<Number>(from);
    }
    quint64 little16(qsizetype at) const { return number<quint16>(at, false); }
    quint64 little32(qsizetype at) const { return number<quint32>(at, false); }
    qsizetype end() const { return m_bytes.size(); }

    std::optional<FoundPicture> pictureAt(qsizetype at)
    {
        const int first = byteAt(at);
        if (first == 0xff && isJpegAt(at))
            return FoundPicture{at, jpegEnd(at), "JPEG"};
        if (first == 0xd8 && segmentsFrom(at + 1, 2)) // the first byte is overwritten in the previews of some makers
            return FoundPicture{std::max<qsizetype>(at - 1, 0), jpegEnd(at - 1), "JPEG"};
        if (first == 0xff && isJpegXlAt(at))
            return FoundPicture{at, end(), "JPEG XL"};
        if (first == 'I' && isPngHeaderAt(at - 4))
            return FoundPicture{std::max<qsizetype>(at - 12, 0), pngEnd(at - 4), "PNG"};
        if ((first == 'I' || first == 'M') && isTiffAt(at))
            return FoundPicture{at, end(), "TIFF"};
        if (first == 'G' && isGifAt(at))
            return FoundPicture{at, end(), "GIF"};
        if ((first == 'B' && byteAt(at + 1) == 'M' && isBitmapAt(at + 14)) || (first == 0x28 && isPlainBitmapAt(at)))
            return FoundPicture{at, end(), "BMP"};
        if (first == 'f' && isFileTypeBoxAt(at - 4))
            return FoundPicture{at - 4, end(), "HEIF"};
        for (const Mark &mark : kMarks) {
            if (!m_bytes.sliced(at).startsWith(mark.bytes))
                continue;
            const qsizetype from = std::max<qsizetype>(at - mark.before, 0);
            const bool isPng = qstrcmp(mark.kind, "PNG") == 0;
            return FoundPicture{from, isPng ? pngEnd(from + 8) : end(), mark.kind};
        }
        return std::nullopt;
    }

    // JPEG

    bool isJpegAt(qsizetype at)
    {
        if (byteAt(at + 1) == 0xd8 && byteAt(at + 2) == 0xff)
            return m_where == SearchIn::Value || lastScan() > at || segmentsFrom(at + 2, 1);
        return isTableAt(at) && lastScan() > at;
    }

    /// Whether so many whole segments follow each other, and a marker or the end follows them.
    bool segmentsFrom(qsizetype at, int count) const
    {
        for (; count > 0; --count) {
            while (byteAt(at) == 0xff && byteAt(at + 1) == 0xff)
                ++at;
            const qsizetype length = qsizetype(number<quint16>(at + 2, true));
            if (byteAt(at) != 0xff || byteAt(at + 1) < 0xc0 || length < 2)
                return false;
            at += 2 + length;
        }
        return at == end() || byteAt(at) == 0xff;
    }

    /// Quantisation or Huffman tables or the head of a frame, with contents that such have.
    bool isTableAt(qsizetype at) const
    {
        const int marker = byteAt(at + 1);
        const int length = int(number<quint16>(at + 2, true));
        const int first = byteAt(at + 4);
        if (marker == kQuantisation)
            return first >> 4 <= 1 && (first & 15) <= 3 && (length - 2) % (first >> 4 ? 129 : 65) == 0 && length > 2;
        if (marker == kHuffman) {
            int codes = 0;
            for (int i = 0; i < 16; ++i)
                codes += std::max(byteAt(at + 5 + i), 0);
            return first >> 4 <= 1 && (first & 15) <= 3 && codes > 0 && codes <= 256 && length >= 2 + 17 + codes;
        }
        const bool isFrame = marker >= 0xc0 && marker <= 0xcf && marker != 0xc8 && marker != 0xcc;
        const int components = byteAt(at + 9);
        return isFrame && components >= 1 && components <= 4 && length == 8 + 3 * components && first >= 2 &&
               first <= 16;
    }

    bool isScanAt(qsizetype at) const
    {
        const int components = byteAt(at + 4);
        if (byteAt(at + 1) != kStartOfScan || components < 1 || components > 4 ||
            number<quint16>(at + 2, true) != quint64(6 + 2 * components))
            return false;
        for (int i = 0; i < components; ++i) {
            const int tables = byteAt(at + 6 + 2 * i);
            if (tables >> 4 > 3 || (tables & 15) > 3)
                return false;
        }
        const qsizetype spectrum = at + 5 + 2 * components;
        return byteAt(spectrum) >= 0 && byteAt(spectrum) <= 63 && byteAt(spectrum + 1) >= 0 &&
               byteAt(spectrum + 1) <= 63;
    }

    /// Place of the last head of a scan; -1 for none.
    qsizetype lastScan()
    {
        if (!m_lastScan) {
            qsizetype at = end() - 1;
            while (at >= 0 && !(byteAt(at) == 0xff && isScanAt(at)))
                --at;
            m_lastScan = at;
        }
        return *m_lastScan;
    }

    /// Behind the end marker that follows a scan, whatever lies between the segments; the end of the bytes without one.
    qsizetype jpegEnd(qsizetype at) const
    {
        bool hasScan = false;
        while (at + 1 < end()) {
            const int marker = byteAt(at + 1);
            if (byteAt(at) != 0xff || marker == 0 || marker == 0xff || (marker >= 0xd0 && marker <= 0xd8)) {
                ++at;
                continue;
            }
            if (marker == kEndOfImage && hasScan)
                return at + 2;
            hasScan = hasScan || marker == kStartOfScan;
            const qsizetype length = qsizetype(number<quint16>(at + 2, true));
            const bool hasLength = marker != kEndOfImage && marker >= 0xc0 && length >= 2 && has(at, 2 + length);
            at += 2 + (hasLength ? length : 0);
        }
        return end();
    }

    // The other kinds

    /// `at`: the place of the chunk's length.
    bool isPngHeaderAt(qsizetype at) const
    {
        constexpr std::array kDepths = {1, 2, 4, 8, 16};
        return number<quint32>(at, true) == 13 && m_bytes.sliced(at + 4).startsWith("IHDR") &&
               std::find(kDepths.begin(), kDepths.end(), byteAt(at + 16)) != kDepths.end();
    }

    qsizetype pngEnd(qsizetype at) const
    {
        constexpr int kBytesAroundData = 12;
        while (has(at, kBytesAroundData)) {
            const bool isLast = m_bytes.sliced(at + 4).startsWith("IEND");
            at += kBytesAroundData + qsizetype(number<quint32>(at, true));
            if (isLast)
                return std::min(at, end());
        }
        return end();
    }

    bool isGifAt(qsizetype at) const
    {
        const QByteArrayView rest = m_bytes.sliced(at);
        if (!rest.startsWith("GIF87a") && !rest.startsWith("GIF89a"))
            return false;
        const int flags = byteAt(at + 10);
        const qsizetype colors = flags & 0x80 ? qsizetype(3) << ((flags & 7) + 1) : 0;
        const int introducer = byteAt(at + 13 + colors);
        return introducer == 0x21 || introducer == 0x2c || introducer == 0x3b;
    }

    /// `at`: the place of the header's size.
    bool isBitmapAt(qsizetype at) const
    {
        constexpr std::array kSizes = {12, 16, 40, 52, 56, 64, 108, 124};
        const quint64 size = little32(at);
        if (std::find(kSizes.begin(), kSizes.end(), size) == kSizes.end())
            return false;
        const qsizetype planes = size == 12 ? at + 8 : at + 12;
        return little16(planes) == 1 && isDepth(little16(planes + 2));
    }

    static bool isDepth(quint64 bits)
    {
        constexpr std::array kDepths = {0, 1, 2, 4, 8, 16, 24, 32};
        return std::find(kDepths.begin(), kDepths.end(), bits) != kDepths.end();
    }

    /// Without the header of the file, as it lies in memory.
    bool isPlainBitmapAt(qsizetype at) const
    {
        constexpr qint32 kMostPixels = 65535;
        const auto width = qint32(little32(at + 4));
        const auto height = qint32(little32(at + 8));
        return little32(at) == 40 && isBitmapAt(at) && little16(at + 14) > 0 && little32(at + 16) <= 6 && width > 0 &&
               width <= kMostPixels && height != 0 && height >= -kMostPixels && height <= kMostPixels;
    }

    /// The box that begins most files of boxes. `at`: the place of its size.
    bool isFileTypeBoxAt(qsizetype at) const
    {
        constexpr quint64 kMostSize = 4096;
        if (!has(at, 12) || !m_bytes.sliced(at + 4).startsWith("ftyp"))
            return false;
        const quint64 size = number<quint32>(at, true);
        const auto isPrintable = [](char c) { return c >= ' ' && c <= '~'; };
        return (size <= 1 || (size >= 12 && size <= kMostSize)) &&
               std::all_of(m_bytes.begin() + at + 8, m_bytes.begin() + at + 12, isPrintable);
    }

    /// A TIFF structure with a directory that leads to pixels. (Makers' notes and EXIF blocks are such structures too.)
    bool isTiffAt(qsizetype at) const
    {
        const QByteArrayView rest = m_bytes.sliced(at);
        const bool isBigEndian = rest.startsWith("MM");
        const bool isPlain = rest.startsWith(QByteArrayView("II*\0", 4)) || rest.startsWith(QByteArrayView("MM\0*", 4));
        const bool isLarge = rest.startsWith(QByteArrayView("II+\0", 4)) || rest.startsWith(QByteArrayView("MM\0+", 4));
        if (!isPlain && !isLarge)
            return false;
        constexpr int kMostDirectories = 4;
        quint64 offset = isLarge ? number<quint64>(at + 8, isBigEndian) : number<quint32>(at + 4, isBigEndian);
        for (int i = 0; i < kMostDirectories && offset > 0 && offset < quint64(end() - at); ++i) {
            const qsizetype directory = at + qsizetype(offset);
            const quint64 count =
                isLarge ? number<quint64>(directory, isBigEndian) : number<quint16>(directory, isBigEndian);
            const qsizetype entrySize = isLarge ? 20 : 12;
            const qsizetype entries = directory + (isLarge ? 8 : 2);
            if (count == 0 || count > quint64(end() / entrySize))
                return false;
            if (leadsToPixels(entries, count, entrySize, isBigEndian))
                return true;
            const qsizetype next = entries + qsizetype(count) * entrySize;
            offset = isLarge ? number<quint64>(next, isBigEndian) : number<quint32>(next, isBigEndian);
        }
        return false;
    }

    bool leadsToPixels(qsizetype entries, quint64 count, qsizetype entrySize, bool isBigEndian) const
    {
        constexpr std::array kPixelTags = {0x0111, 0x0144, 0x014a, 0x0201, 0xbcc0};
        constexpr quint64 kMostLooked = 64; // they are in ascending order, and these are among the first
        constexpr quint64 kLastType = 18;
        for (quint64 i = 0; i < std::min(count, kMostLooked); ++i) {
            const qsizetype entry = entries + qsizetype(i) * entrySize;
            const quint64 type = number<quint16>(entry + 2, isBigEndian);
            if (type == 0 || type > kLastType)
                return false;
            const quint64 tag = number<quint16>(entry, isBigEndian);
            if (std::find(kPixelTags.begin(), kPixelTags.end(), tag) != kPixelTags.end())
                return true;
        }
        return false;
    }

    /// The bare form begins with two bytes that stand in every longer run of noise, as which the enciphered parts of
    /// makers' notes look. At the start of a value the size that follows them must make sense or the data look packed;
    /// elsewhere both, and what stands before must look otherwise.
    bool isJpegXlAt(qsizetype at) const
    {
        if (byteAt(at + 1) != 0x0a || m_where == SearchIn::Numbers)
            return false;
        constexpr qsizetype kLeast = 32;
        constexpr qsizetype kMostBefore = 64;
        if (at <= kMostBefore && at + kLeast <= end() && textBefore(at, at) == at)
            return hasJpegXlSize(at + 2) || looksPacked(at + 2, 2 * kLeast);
        return textBefore(at, kLeast) >= std::min(at, kLeast) * 5 / 8 && hasJpegXlSize(at + 2) &&
               looksPacked(at + 2, m_where == SearchIn::Value ? 2 * kLeast : 8 * kLeast);
    }

    /// How many of the `count` bytes before `at` are letters or zeros.
    qsizetype textBefore(qsizetype at, qsizetype count) const
    {
        const auto isTextOrZero = [](char c) { return c == 0 || (c >= ' ' && c <= '~'); };
        const qsizetype from = std::max<qsizetype>(at - count, 0);
        return std::count_if(m_bytes.begin() + from, m_bytes.begin() + at, isTextOrZero);
    }

    bool hasJpegXlSize(qsizetype at) const
    {
        constexpr quint64 kMostPixels = 65536;
        quint64 bits = number<quint64>(at, false);
        const auto take = [&](int count) {
            const quint64 value = bits & ((quint64(1) << count) - 1);
            bits >>= count;
            return value;
        };
        const bool isSmall = take(1) == 1;
        const auto side = [&] {
            constexpr std::array kBits = {9, 13, 18, 30};
            return isSmall ? (take(5) + 1) * 8 : take(kBits[take(2)]) + 1;
        };
        const quint64 height = side();
        const bool hasRatio = take(3) != 0;
        return has(at, 8) && height <= kMostPixels && (hasRatio || side() <= kMostPixels);
    }

    bool looksPacked(qsizetype at, qsizetype least) const
    {
        constexpr qsizetype kWindow = 256;
        const qsizetype count = std::min(kWindow, end() - at);
        if (count < least)
            return false;
        std::bitset<256> seen;
        for (qsizetype i = 0; i < count; ++i)
            seen.set(size_t(byteAt(at + i)));
        const auto zeros = std::count(m_bytes.begin() + at, m_bytes.begin() + at + count, '\0');
        return qsizetype(seen.count()) > count / 2 && zeros <= 2 + count / 32;
    }

    const QByteArrayView m_bytes;
    const SearchIn m_where;
    std::bitset<256> m_isFirst;
    std::optional<qsizetype> m_lastScan;
};

} // namespace

std::vector<FoundPicture> plainPicturesIn(QByteArrayView bytes, SearchIn where)
{
    return PlainSearch(bytes, where).all();
}

} // namespace hazelmark
