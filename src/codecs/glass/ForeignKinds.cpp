#include "ForeignKinds.h"

#include "TiffCursor.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QPluginLoader>

#include <algorithm>
#include <array>

#ifndef HAZELMARK_HAS_HEIF
#define HAZELMARK_HAS_HEIF 0
#endif
#ifndef HAZELMARK_HAS_JXL
#define HAZELMARK_HAS_JXL 0
#endif
#ifndef HAZELMARK_HAS_JP2
#define HAZELMARK_HAS_JP2 0
#endif
#ifndef HAZELMARK_HAS_RAW
#define HAZELMARK_HAS_RAW 0
#endif

namespace hazelmark {

namespace {

constexpr ForeignKind kHeif = {"heif", "HEIF", "libheif", HAZELMARK_HAS_HEIF, "heic heif hif avif", 40, 3.0};
constexpr ForeignKind kJxl = {"jxl", "JPEG XL", "libjxl", HAZELMARK_HAS_JXL, "jxl", 60, 3.0};
constexpr ForeignKind kJp2 = {"jp2", "JPEG 2000", "OpenJPEG", HAZELMARK_HAS_JP2, "jp2 j2k jpf jpx j2c jpc", 40, 6.0};
constexpr ForeignKind kRaw = {
    "raw",
    "camera raw",
    "LibRaw",
    HAZELMARK_HAS_RAW,
    "dng cr2 cr3 crw nef nrw arw sr2 srf raf rw2 orf pef srw x3f 3fr fff iiq mrw erf mef mos kdc dcr rwl raw",
    60,
    6.0};
constexpr ForeignKind kQt = {"qt", "this format", "Qt", true, "", 12, 2.0};

/// Whether a file in the ISO base media format has one of the brands, the first or a compatible one.
bool hasBrand(const QByteArray &head, const QByteArrayList &brands)
{
    if (head.mid(4, 4) != "ftyp")
        return false;
    const qsizetype size = std::min<qsizetype>(quint8(head[2]) << 8 | quint8(head[3]), head.size());
    if (brands.contains(head.mid(8, 4)))
        return true;
    for (qsizetype at = 16; at + 4 <= size; at += 4) {
        if (brands.contains(head.mid(at, 4)))
            return true;
    }
    return false;
}

bool beginsWithOneOf(const QByteArray &head, std::initializer_list<QByteArray> marks)
{
    return std::any_of(marks.begin(), marks.end(), [&](const QByteArray &mark) { return head.startsWith(mark); });
}

/// What a TIFF structure says of itself: a camera's samples as they came from its sensor.
class RawMarks
{
public:
    explicit RawMarks(const TiffCursor &cursor)
        : m_cursor(cursor)
    {
    }

    bool found()
    {
        quint64 next = m_cursor.firstDirectoryOffset();
        while (next != 0 && m_looks < kMostLooks) {
            const std::optional<TiffDirectory> directory = lookAt(next);
            if (!directory)
                return m_found;
            next = directory->next;
        }
        return m_found;
    }

private:
    static constexpr int kMostLooks = 32;
    enum Tag { Photometric = 262, SubDirectories = 330, DngVersion = 50706 };
    enum Samples { ColorFilterArray = 32803, LinearRaw = 34892 };

    std::optional<TiffDirectory> lookAt(quint64 offset)
    {
        ++m_looks;
        const std::optional<TiffDirectory> directory = m_cursor.directoryAt(offset);
        if (!directory)
            return std::nullopt;
        m_found = m_found || directory->find(DngVersion);
        if (const TiffEntry *entry = directory->find(Photometric)) {
            const quint64 samples = m_cursor.number(*entry).value_or(0);
            m_found = m_found || samples == ColorFilterArray || samples == LinearRaw;
        }
        if (const TiffEntry *entry = directory->find(SubDirectories); entry && !m_isBelow) {
            m_isBelow = true;
            for (const quint64 below : m_cursor.numbers(*entry, kMostLooks)) {
                if (m_looks < kMostLooks)
                    lookAt(below);
            }
            m_isBelow = false;
        }
        return directory;
    }

    const TiffCursor &m_cursor;
    int m_looks = 0;
    bool m_isBelow = false;
    bool m_found = false;
};

} // namespace

bool isCameraRaw(const SourceFile &source)
{
    const QByteArray &head = source.head();
    if (beginsWithOneOf(head, {"FUJIFILMCCD-RAW", "IIRO", "IIRS", "MMOR", QByteArray("IIU\0", 4), "FOVb",
                               QByteArray("\0MRM", 4)}) ||
        head.mid(6, 8) == "HEAPCCDR" || hasBrand(head, {"crx "}))
        return true;
    if (beginsWithOneOf(head, {QByteArray("II*\0", 4), QByteArray("MM\0*", 4)}) && head.mid(8, 2) == "CR")
        return true;
    const std::optional<TiffCursor> cursor = TiffCursor::of(source);
    return cursor && RawMarks(*cursor).found();
}

const ForeignKind *foreignKindOf(const SourceFile &source)
{
    const QByteArray &head = source.head();
    if (isCameraRaw(source))
        return &kRaw;
    if (hasBrand(head, {"heic", "heix", "hevc", "hevx", "heim", "heis", "mif1", "msf1", "avif", "avis"}))
        return &kHeif;
    if (beginsWithOneOf(head, {"\xff\x0a", QByteArray("\0\0\0\x0cJXL \r\n\x87\n", 12)}))
        return &kJxl;
    if (beginsWithOneOf(head, {"\xff\x4f\xff\x51", QByteArray("\0\0\0\x0cjP  \r\n\x87\n", 12)}))
        return &kJp2;
    return nullptr;
}

const ForeignKind &kindOfQtPlugins()
{
    return kQt;
}

bool isRefusedQtFormat(const QByteArray &format)
{
    // Not pictures of pixels (svg, pdf); recognised by so little that any file of zeros is taken for one (wbmp); read
    // upside down (tga); filled with white where the data ends (xbm); animations through a library that nobody keeps
    // any more (mng); or read by decoders of our own, which have found that the file is none.
    constexpr std::array kRefused = {"svg",  "svgz", "pdf", "wbmp", "tga",  "xbm", "mng",
                                     "jpeg", "jpg",  "png", "tif",  "tiff", "gif"};
    return std::find(kRefused.begin(), kRefused.end(), format) != kRefused.end();
}

QList<QByteArray> foreignExtensions()
{
    QList<QByteArray> extensions;
    for (const ForeignKind *kind : {&kHeif, &kJxl, &kJp2, &kRaw}) {
        if (kind->isBuilt)
            extensions += QByteArray(kind->extensions).split(' ');
    }
    QList<QByteArray> formats = {"bmp", "pbm", "pgm", "ppm", "xpm"}; // which Qt has built in
    for (const QString &path : QCoreApplication::libraryPaths()) {
        const QDir folder(path + QStringLiteral("/imageformats"));
        for (const QString &name : folder.entryList({QStringLiteral("*.so")}, QDir::Files)) {
            const QJsonObject plugin = QPluginLoader(folder.filePath(name)).metaData();
            const QJsonObject data = plugin[QLatin1String("MetaData")].toObject();
            for (const QJsonValue &key : data[QLatin1String("Keys")].toArray())
                formats << key.toString().toLatin1();
        }
    }
    formats.removeIf(isRefusedQtFormat);
    for (const QByteArray &format : formats) {
        if (!extensions.contains(format))
            extensions << format;
    }
    return extensions;
}

} // namespace hazelmark
