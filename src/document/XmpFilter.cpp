#include "XmpFilter.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <array>

namespace hazelmark {

namespace {

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

bool isRendition(QStringView space, QStringView name)
{
    if (space == kXmp)
        return name == QLatin1String("Thumbnails");
    if (space == kXmpNote)
        return name == QLatin1String("HasExtendedXMP"); // what it names is joined to the packet
    if (space == kCamera) {
        return std::any_of(kRenditionCameraPrefixes.begin(), kRenditionCameraPrefixes.end(),
                           [name](QLatin1String prefix) { return name.startsWith(prefix); });
    }
    const bool isGainMap =
        space.contains(QLatin1String("gain-map")) || space.contains(QLatin1String("GainMap"), Qt::CaseInsensitive);
    return isGainMap || std::any_of(kRenditionNamespaces.begin(), kRenditionNamespaces.end(),
                                    [space](QLatin1String prefix) { return space.startsWith(prefix); });
}

/// Whether a property's text is a picture in Base64, in whatever namespace. The beginnings are those of JPEG, PNG, RIFF
/// (WebP), the two TIFF headers, and the boxes that HEIF and AVIF files begin with.
bool isEncodedPicture(QStringView text)
{
    constexpr qsizetype kLeastLength = 256;
    const QStringView start = text.trimmed();
    if (start.size() < kLeastLength)
        return false;
    for (const QLatin1String magic : {QLatin1String("/9j/"), QLatin1String("iVBORw0KGgo"), QLatin1String("UklGR"),
                                      QLatin1String("SUkqA"), QLatin1String("TU0AK")}) {
        if (start.startsWith(magic))
            return true;
    }
    return start.startsWith(QLatin1String("AAAA")) && start.mid(5, 6).contains(QLatin1String("Z0eX"));
}

/// Copies a packet token by token, and another one's descriptions into it.
class XmpCopy
{
public:
    explicit XmpCopy(QSize size)
        : m_size(size)
        , m_writer(&m_result)
    {
    }

    /// False when the packet is not well-formed or has a document type, which no packet needs.
    bool copy(const QByteArray &packet, const QByteArray &extension)
    {
        QXmlStreamReader reader(packet);
        bool isToBeJoined = !extension.isEmpty();
        while (!reader.atEnd() && !m_hasFailed) {
            reader.readNext();
            if (isToBeJoined && reader.isEndElement() && isRdf(reader)) {
                isToBeJoined = false; // once, however many such elements a packet has
                copyDescriptions(extension);
            }
            take(reader);
        }
        return !m_hasFailed && !reader.hasError();
    }

    bool hasChanged() const { return m_hasChanged; }
    const QByteArray &result() const { return m_result; }

private:
    /// An element of which only the start has been read: its text decides whether it is written.
    struct Pending
    {
        QXmlStreamNamespaceDeclarations namespaces;
        QString space;
        QString name;
        QXmlStreamAttributes attributes;
    };

    static bool isRdf(const QXmlStreamReader &reader)
    {
        return reader.namespaceUri() == kRdf && reader.name() == QLatin1String("RDF");
    }

    /// A packet that cannot be read to its end is left out as a whole.
    void copyDescriptions(const QByteArray &packet)
    {
        m_hasChanged = true;
        if (!XmpCopy(m_size).copy(packet, {}))
            return;
        QXmlStreamReader reader(packet);
        QXmlStreamNamespaceDeclarations outer;
        while (!reader.atEnd() && !(reader.isStartElement() && isRdf(reader))) {
            reader.readNext();
            if (reader.isStartElement())
                outer += reader.namespaceDeclarations();
        }
        while (reader.readNextStartElement()) {
            m_outerNamespaces = outer;
            copyElement(reader);
        }
        m_outerNamespaces.clear();
    }

    void copyElement(QXmlStreamReader &reader)
    {
        for (int depth = 0; !reader.atEnd(); reader.readNext()) {
            depth += reader.isStartElement() ? 1 : 0;
            take(reader); // which may go on to the end of an element that it leaves out
            depth -= reader.isEndElement() ? 1 : 0;
            if (depth == 0)
                return;
        }
    }

    void take(QXmlStreamReader &reader)
    {
        switch (reader.tokenType()) {
        case QXmlStreamReader::StartElement:
            takeStart(reader);
            break;
        case QXmlStreamReader::Characters:
            takeText(reader);
            break;
        case QXmlStreamReader::EndElement:
            flush();
            m_writer.writeEndElement();
            break;
        case QXmlStreamReader::ProcessingInstruction:
            flush();
            m_writer.writeProcessingInstruction(reader.processingInstructionTarget().toString(),
                                                reader.processingInstructionData().toString());
            break;
        case QXmlStreamReader::DTD:
        case QXmlStreamReader::EntityReference:
            m_hasFailed = true;
            break;
        default:
            break;
        }
    }

    void takeStart(QXmlStreamReader &reader)
    {
        flush();
        if (isRendition(reader.namespaceUri(), reader.name())) {
            leaveOut(reader);
            return;
        }
        m_pending = Pending{reader.namespaceDeclarations(), reader.namespaceUri().toString(), reader.name().toString(),
                            reader.attributes()};
        m_pending->namespaces += m_outerNamespaces;
        m_outerNamespaces.clear();
    }

    void takeText(QXmlStreamReader &reader)
    {
        if (m_pending && isEncodedPicture(reader.text())) {
            m_pending.reset();
            leaveOut(reader);
            return;
        }
        QString text = reader.text().toString();
        if (m_pending)
            correctSize(m_pending->space, m_pending->name, text);
        flush();
        m_writer.writeCharacters(text);
    }

    void leaveOut(QXmlStreamReader &reader)
    {
        m_hasChanged = true;
        reader.skipCurrentElement();
    }

    void flush()
    {
        if (!m_pending)
            return;
        for (const QXmlStreamNamespaceDeclaration &declaration : std::as_const(m_pending->namespaces)) {
            if (declaration.prefix().isEmpty())
                m_writer.writeDefaultNamespace(declaration.namespaceUri().toString());
            else
                m_writer.writeNamespace(declaration.namespaceUri().toString(), declaration.prefix().toString());
        }
        m_writer.writeStartElement(m_pending->space, m_pending->name);
        for (const QXmlStreamAttribute &attribute : std::as_const(m_pending->attributes))
            writeAttribute(attribute);
        m_pending.reset();
    }

    void writeAttribute(const QXmlStreamAttribute &attribute)
    {
        if (isRendition(attribute.namespaceUri(), attribute.name()) || isEncodedPicture(attribute.value())) {
            m_hasChanged = true;
            return;
        }
        QString value = attribute.value().toString();
        correctSize(attribute.namespaceUri(), attribute.name(), value);
        if (attribute.namespaceUri().isEmpty())
            m_writer.writeAttribute(attribute.name().toString(), value);
        else
            m_writer.writeAttribute(attribute.namespaceUri().toString(), attribute.name().toString(), value);
    }

    void correctSize(QStringView space, QStringView name, QString &text)
    {
        const bool isWidth = (space == kExif && name == QLatin1String("PixelXDimension")) ||
                             (space == kTiff && name == QLatin1String("ImageWidth"));
        const bool isHeight = (space == kExif && name == QLatin1String("PixelYDimension")) ||
                              (space == kTiff && name == QLatin1String("ImageLength"));
        if (!isWidth && !isHeight)
            return;
        const int side = isWidth ? m_size.width() : m_size.height();
        bool isNumber = false;
        const int stated = text.trimmed().toInt(&isNumber);
        if (!isNumber || stated == side)
            return;
        text = QString::number(side);
        m_hasChanged = true;
    }

    const QSize m_size;
    QByteArray m_result;
    QXmlStreamWriter m_writer;
    std::optional<Pending> m_pending;
    QXmlStreamNamespaceDeclarations m_outerNamespaces; ///< to be declared with the next element
    bool m_hasChanged = false;
    bool m_hasFailed = false;
};

} // namespace

std::optional<QByteArray> filteredXmp(const QByteArray &packet, const QByteArray &extension, QSize size)
{
    // Some writers put a zero byte behind the packet.
    QByteArray trimmed = packet;
    while (trimmed.endsWith('\0'))
        trimmed.chop(1);
    XmpCopy copy(size);
    if (!copy.copy(trimmed, extension))
        return std::nullopt;
    return copy.hasChanged() ? copy.result() : packet;
}

} // namespace hazelmark
