#include "TiffPages.h"

#include "TiffBytes.h"

#include <optional>
#include <set>

#include <tiffio.h>

namespace hazelmark {

namespace {

/// Of all directories together: some twenty a page in files that have many pages.
constexpr uint64_t kMaxEntries = 250'000;

class PageWalk
{
public:
    explicit PageWalk(SourceFile &source)
        : m_source(source)
        , m_isBigEndian(source.head().startsWith('M'))
        , m_isBig(source.head().size() >= 16 && number<uint16_t>(source.head(), 2) == TIFF_VERSION_BIG)
    {
    }

    std::vector<TiffPage> pages()
    {
        std::vector<TiffPage> result;
        std::set<uint64_t> seen;
        uint64_t next = m_isBig ? number<uint64_t>(m_source.head(), 8) : number<uint32_t>(m_source.head(), 4);
        while (next != 0 && result.size() < kMaxFrames && seen.insert(next).second) {
            const std::optional<TiffPage> page = pageAt(next, next);
            if (!page)
                break;
            result.push_back(*page);
        }
        return result;
    }

private:
    template <typename Number>
    Number number(const QByteArray &bytes, qsizetype at) const
    {
        return at + qsizetype(sizeof(Number)) <= bytes.size() ? tiffNumber<Number>(bytes, at, m_isBigEndian)
                                                              : Number(0);
    }

    qsizetype entrySize() const { return m_isBig ? 20 : 12; }

    /// Nothing when no whole directory lies there. `next` becomes the place of the one that follows.
    std::optional<TiffPage> pageAt(uint64_t offset, uint64_t &next)
    {
        const qsizetype countSize = m_isBig ? 8 : 2;
        const QByteArray start = bytesAt(offset, countSize);
        const uint64_t count = m_isBig ? number<uint64_t>(start, 0) : number<uint16_t>(start, 0);
        if (start.size() < countSize || count == 0 || count > kMaxEntries - m_entries)
            return std::nullopt;
        m_entries += count;
        const qsizetype size = qsizetype(count) * entrySize();
        const QByteArray entries = bytesAt(offset + uint64_t(countSize), size + (m_isBig ? 8 : 4));
        if (entries.size() < size)
            return std::nullopt;
        next = m_isBig ? number<uint64_t>(entries, size) : number<uint32_t>(entries, size);
        TiffPage page{offset, count, 0, 0, false};
        for (qsizetype at = 0; at < size; at += entrySize())
            take(page, entries, at);
        return page;
    }

    QByteArray bytesAt(uint64_t offset, qint64 count)
    {
        return offset < uint64_t(m_source.size()) ? m_source.bytesAt(qint64(offset), count) : QByteArray();
    }

    void take(TiffPage &page, const QByteArray &entries, qsizetype at) const
    {
        const auto value = [&] { return valueOf(entries, at); };
        switch (number<uint16_t>(entries, at)) {
        case TIFFTAG_SUBFILETYPE:
            page.isReducedOrMask |= (value() & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) != 0;
            break;
        case TIFFTAG_OSUBFILETYPE:
            page.isReducedOrMask |= value() == OFILETYPE_REDUCEDIMAGE;
            break;
        case TIFFTAG_IMAGEWIDTH:
            page.width = value();
            break;
        case TIFFTAG_IMAGELENGTH:
            page.height = value();
            break;
        default:
            break;
        }
    }

    /// A whole number that stands in the entry itself; 0 for any other value.
    uint64_t valueOf(const QByteArray &entries, qsizetype at) const
    {
        const qsizetype value = at + (m_isBig ? 12 : 8);
        switch (number<uint16_t>(entries, at + 2)) {
        case TIFF_BYTE:
            return quint8(entries[value]);
        case TIFF_SHORT:
            return number<uint16_t>(entries, value);
        case TIFF_LONG:
            return number<uint32_t>(entries, value);
        case TIFF_LONG8:
            return m_isBig ? number<uint64_t>(entries, value) : 0;
        default:
            return 0;
        }
    }

    SourceFile &m_source;
    const bool m_isBigEndian;
    const bool m_isBig;
    uint64_t m_entries = 0;
};

} // namespace

std::vector<TiffPage> tiffPages(SourceFile &source)
{
    return PageWalk(source).pages();
}

} // namespace hazelmark
