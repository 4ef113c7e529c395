#include "XmpPacket.h"

#include "PictureSearch.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <array>

namespace hazelmark {

namespace {

constexpr QLatin1String kMeta("adobe:ns:meta/");
constexpr QLatin1String kRdf("http://www.w3.org/1999/02/22-rdf-syntax-ns#");
constexpr QLatin1String kXmp("http://ns.adobe.com/xap/1.0/");
constexpr QLatin1String kXmpNote("http://ns.adobe.com/xmp/note/");
constexpr QLatin1String kTiff("http://ns.adobe.com/tiff/1.0/");
constexpr QLatin1String kExif("http://ns.adobe.com/exif/1.0/");
constexpr QLatin1String kCamera("http://ns.google.com/photos/1.0/camera/");

/// Of these namespaces nothing is carried: they hold pictures or describe pictures that are not carried either.
constexpr std::array kRenditionNamespaces = {
    QLatin1String("http://ns.adobe.com/xap/1.0/g/img/"),
    QLatin1String("http://ns.google.com/photos/1.0/image/"),
    QLatin1String("http://ns.google.com/photos/1.0/depthmap/"),
    QLatin1String("http://ns.google.com/photos/1.0/container/"),
    QLatin1String("http://ns.google.com/photos/dd/1.0/"),
};

/// Of the camera namespace the properties that speak of a film behind the picture, or hold a picture.
constexpr std::array kRenditionCameraPrefixes = {
    QLatin1String("MicroVideo"),
    QLatin1String("MotionPhoto"),
    QLatin1String("RelitInputImage"),
};

constexpr int kDeepest = 64;

/// Less than this is no picture that shows anything, in whatever letters.
constexpr qsizetype kLeastSearched = 64;

template <typename List>
bool startsWithAny(QStringView text, const List &prefixes)
{
    return std::any_of(prefixes.begin(), prefixes.end(), [text](QLatin1String p) { return text.startsWith(p); });
}

bool isRendition(QStringView space, QStringView name)
{
    if (space == kXmp)
        return name == QLatin1String("Thumbnails");
    if (space == kXmpNote)
        return name == QLatin1String("HasExtendedXMP"); // what it names is joined to the packet
    if (space == kCamera)
        return startsWithAny(name, kRenditionCameraPrefixes);
    const bool isGainMap =
        space.contains(QLatin1String("gain-map")) || space.contains(QLatin1String("GainMap"), Qt::CaseInsensitive);
    return isGainMap || startsWithAny(space, kRenditionNamespaces);
}

bool holdsPicture(QStringView text)
{
    return text.size() >= kLeastSearched && hazelmark::holdsPicture(text.toUtf8());
}

/// Whether the packet can be read in a moment. The reader compares every attribute of an element with each other one.
bool isModest(const QByteArray &packet)
{
    constexpr qint64 kMostParts = 500'000;
    constexpr qint64 kMostComparisons = 50'000'000;
    constexpr qsizetype kMostNamespaces = 2000;
    qint64 parts = 0;
    qint64 comparisons = 0;
    const auto skipTo = [&](qsizetype at, const char *end) {
        const qsizetype found = packet.indexOf(end, at);
        return found < 0 ? packet.size() : found;
    };
    for (qsizetype at = packet.indexOf('<'); at >= 0 && at < packet.size(); at = packet.indexOf('<', at)) {
        const auto rest = QByteArrayView(packet).sliced(at);
        ++parts;
        if (rest.startsWith("<!--") || rest.startsWith("<![CDATA[") || rest.startsWith("<?")) {
            at = skipTo(at + 2, rest[1] == '?' ? "?>" : rest[2] == '-' ? "-->" : "]]>");
            continue;
        }
        qint64 attributes = 0;
        char quote = 0;
        for (++at; at < packet.size() && (quote || packet[at] != '>'); ++at) {
            const char c = packet[at];
            if (quote)
                quote = c == quote ? char(0) : quote;
            else if (c == '"' || c == '\'')
                quote = c;
            else if (c == '=')
                ++attributes;
        }
        parts += attributes;
        comparisons += attributes * attributes;
    }
    return parts <= kMostParts && comparisons <= kMostComparisons && packet.count("xmlns") <= kMostNamespaces;
}

/// Copies the descriptions of one packet.
class Copy
{
public:
    Copy(QSize size, XmpPacket &result)
        : m_size(size)
        , m_result(result)
        , m_writer(&m_text)
    {
        m_writer.writeNamespace(kMeta, QStringLiteral("x"));
        m_writer.writeNamespace(kRdf, QStringLiteral("rdf"));
        m_writer.writeStartElement(kRdf, QStringLiteral("RDF"));
        m_writer.writeCharacters(QString());
        m_start = m_text.size();
    }

    /// False when the packet is not well-formed to the end of its root, or has a document type, which none needs. What
    /// stands behind the root is not looked at.
    bool read(const QByteArray &packet)
    {
        QXmlStreamReader reader(packet);
        int depth = 0;
        while (!reader.atEnd() && !m_hasFailed) {
            const auto token = reader.readNext();
            if (token == QXmlStreamReader::DTD || token == QXmlStreamReader::EntityReference)
                return false;
            if (token == QXmlStreamReader::EndElement && --depth == 0)
                return true;
            if (token != QXmlStreamReader::StartElement)
                continue;
            ++depth;
            addOuter(reader);
            if (reader.namespaceUri() == kRdf && reader.name() == QLatin1String("RDF")) {
                takeDescriptions(reader);
                if (--depth == 0)
                    return !m_hasFailed && !reader.hasError();
            }
        }
        return false;
    }

    /// The descriptions, as they stand in the packet's frame.
    QString descriptions() const { return m_text.mid(m_start); }
    /// The name of the program that wrote the packet.
    const QString &toolkit() const { return m_toolkit; }

private:
    void addOuter(const QXmlStreamReader &reader)
    {
        m_outer += reader.namespaceDeclarations();
        const QString toolkit = reader.attributes().value(kMeta, QLatin1String("xmptk")).toString();
        if (!toolkit.isEmpty() && toolkit.size() < kLeastSearched)
            m_toolkit = toolkit;
    }

    void takeDescriptions(QXmlStreamReader &reader)
    {
        while (!m_hasFailed && reader.readNextStartElement()) {
            constexpr qsizetype kMostDeclared = 100'000;
            m_declared += m_outer.size();
            m_hasFailed = m_hasFailed || m_declared > kMostDeclared;
            declare(m_outer);
            m_isInProperty = false;
            writeStart(reader);
            m_writer.writeCharacters(QString()); // ends the start tag
            m_isInProperty = true;
            while (!m_hasFailed && reader.readNextStartElement())
                takeProperty(reader);
            m_writer.writeEndElement();
        }
    }

    void takeProperty(QXmlStreamReader &reader)
    {
        const QString space = reader.namespaceUri().toString();
        const QString name = reader.name().toString();
        if (isRendition(space, name)) {
            leaveOut(reader);
            return;
        }
        const qsizetype start = m_text.size();
        m_value.clear();
        m_items.clear();
        m_isStructure = false;
        copyElement(reader, 0);
        const QStringView written = QStringView(m_text).sliced(start);
        if (!holdsPicture(written) && !holdsPicture(m_value)) { // the value may be broken by elements
            if (!m_isStructure)
                keep(space, name, m_items.isEmpty() ? QStringList(m_value) : m_items);
            return;
        }
        m_result.leftOut.add(QStringLiteral("XMP property with a picture"), written.size());
        m_text.truncate(start);
    }

    void copyElement(QXmlStreamReader &reader, int depth)
    {
        const bool isItem = reader.namespaceUri() == kRdf && reader.name() == QLatin1String("li");
        const qsizetype valueStart = m_value.size();
        const int side = statedSide(reader.namespaceUri(), reader.name());
        m_isStructure = m_isStructure || (depth > 0 && reader.namespaceUri() != kRdf);
        m_hasFailed = m_hasFailed || depth > kDeepest;
        writeStart(reader);
        while (!m_hasFailed && reader.readNext() != QXmlStreamReader::EndElement) {
            if (reader.isStartElement() && isRendition(reader.namespaceUri(), reader.name()))
                leaveOut(reader);
            else if (reader.isStartElement())
                copyElement(reader, depth + 1);
            else if (reader.isCharacters())
                writeText(corrected(reader.text().toString(), side));
            else if (!reader.isComment() && !reader.isProcessingInstruction())
                m_hasFailed = true;
        }
        if (isItem)
            m_items += m_value.mid(valueStart);
        m_writer.writeEndElement();
    }

    void leaveOut(QXmlStreamReader &reader)
    {
        const qint64 start = reader.characterOffset();
        const QString name = reader.qualifiedName().toString();
        reader.skipCurrentElement();
        m_result.leftOut.add(QStringLiteral("XMP ") + name, reader.characterOffset() - start);
    }

    void writeText(const QString &text)
    {
        m_writer.writeCharacters(text);
        m_value += text;
    }

    void declare(const QXmlStreamNamespaceDeclarations &declarations)
    {
        for (const QXmlStreamNamespaceDeclaration &declaration : declarations) {
            const QStringView space = declaration.namespaceUri();
            m_hasFailed = m_hasFailed || (!m_isInProperty && holdsPicture(space));
            if (space == kRdf || space == kMeta)
                continue;
            if (declaration.prefix().isEmpty())
                m_writer.writeDefaultNamespace(space.toString());
            else
                m_writer.writeNamespace(space.toString(), declaration.prefix().toString());
        }
    }

    void writeStart(const QXmlStreamReader &reader)
    {
        declare(reader.namespaceDeclarations());
        m_writer.writeStartElement(reader.namespaceUri().toString(), reader.name().toString());
        const QXmlStreamAttributes attributes = reader.attributes();
        for (const QXmlStreamAttribute &attribute : attributes)
            writeAttribute(attribute);
    }

    void writeAttribute(const QXmlStreamAttribute &attribute)
    {
        const QString space = attribute.namespaceUri().toString();
        const QString name = attribute.name().toString();
        if (isRendition(space, name) || holdsPicture(attribute.value())) {
            m_result.leftOut.add(QStringLiteral("XMP ") + attribute.qualifiedName().toString(),
                                 attribute.value().size());
            return;
        }
        const QString value = corrected(attribute.value().toString(), statedSide(space, name));
        if (space.isEmpty())
            m_writer.writeAttribute(name, value);
        else
            m_writer.writeAttribute(space, name, value);
        if (!m_isInProperty)
            keep(space, name, {value});
    }

    /// The first of several values counts.
    void keep(const QString &space, const QString &name, const QStringList &value)
    {
        if (!m_result.values.contains({space, name}))
            m_result.values.insert({space, name}, value);
    }

    /// What the property should state, where it is a side of the picture; else 0.
    int statedSide(QStringView space, QStringView name) const
    {
        if ((space == kExif && name == QLatin1String("PixelXDimension")) ||
            (space == kTiff && name == QLatin1String("ImageWidth")))
            return m_size.width();
        if ((space == kExif && name == QLatin1String("PixelYDimension")) ||
            (space == kTiff && name == QLatin1String("ImageLength")))
            return m_size.height();
        return 0;
    }

    static QString corrected(const QString &text, int side)
    {
        bool isNumber = false;
        const int stated = side > 0 ? text.trimmed().toInt(&isNumber) : 0;
        return isNumber && stated != side ? QString::number(side) : text;
    }

    const QSize m_size;
    XmpPacket &m_result;
    QString m_text;
    QXmlStreamWriter m_writer;
    qsizetype m_start = 0;
    QXmlStreamNamespaceDeclarations m_outer; ///< of the elements around the descriptions
    QString m_toolkit;
    QString m_value;     ///< all the text of the property that is copied
    QStringList m_items; ///< of the list that it is
    bool m_isStructure = false;
    bool m_isInProperty = false;
    qsizetype m_declared = 0; ///< namespaces of the outer elements, with each description anew
    bool m_hasFailed = false;
};

QByteArray framed(const QString &descriptions, const QString &toolkit)
{
    const QString program =
        toolkit.isEmpty() ? QString() : QStringLiteral(" x:xmptk=\"%1\"").arg(toolkit.toHtmlEscaped());
    return "<?xpacket begin=\"\xef\xbb\xbf\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"" +
           program.toUtf8() + ">\n<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n" +
           descriptions.toUtf8() + "\n</rdf:RDF>\n</x:xmpmeta>\n<?xpacket end=\"w\"?>";
}

} // namespace

std::optional<XmpPacket> readXmp(const QByteArray &packet, const QByteArray &extension, QSize size)
{
    XmpPacket result;
    Copy copy(size, result);
    if (!isModest(packet) || !copy.read(packet))
        return std::nullopt;
    QString descriptions = copy.descriptions();
    if (!extension.isEmpty()) {
        XmpPacket joined = result;
        Copy further(size, joined);
        const bool isRead = isModest(extension) && further.read(extension);
        if (isRead) {
            result = joined;
            descriptions += further.descriptions();
        } else {
            result.leftOut.add(QStringLiteral("XMP extension"), extension.size());
        }
    }
    if (!descriptions.isEmpty())
        result.carried = framed(descriptions, copy.toolkit());
    return result;
}

} // namespace hazelmark
