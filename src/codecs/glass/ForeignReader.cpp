#include "ForeignReader.h"

#include "CodedColors.h"
#include "DecoderProcess.h"
#include "Log.h"
#include "TiffBlock.h"

#include <QRegularExpression>

#include <algorithm>

namespace hazelmark {

namespace {

using namespace std::chrono_literals;

/// What a decoder takes that decodes a picture of one pixel: its library's tables, the stacks of its threads.
constexpr qint64 kBaseMemory = 512LL * 1024 * 1024;
constexpr auto kBaseTime = 5s;

QByteArray bytesOf(const std::string &text)
{
    return QByteArray(text.data(), qsizetype(text.size()));
}

/// What a library says goes into sentences: one line of plain letters.
QString textOf(const std::string &text)
{
    QString plain = QString::fromUtf8(text.data(), qsizetype(text.size())).simplified();
    plain.removeIf([](QChar c) { return !c.isPrint(); });
    return plain.left(200);
}

QImage::Format formatOf(glass::Layout layout)
{
    switch (layout) {
    case glass::Layout::Gray8:
        return QImage::Format_Grayscale8;
    case glass::Layout::Gray16:
        return QImage::Format_Grayscale16;
    case glass::Layout::Rgbx8:
        return QImage::Format_RGBX8888;
    case glass::Layout::Rgba8:
        return QImage::Format_RGBA8888;
    case glass::Layout::Rgbx16:
        return QImage::Format_RGBX64;
    case glass::Layout::Rgba16:
        return QImage::Format_RGBA64;
    }
    Q_UNREACHABLE();
}

Failure::Reason reasonOf(glass::Trouble trouble)
{
    switch (trouble) {
    case glass::Trouble::NotAPicture:
        return Failure::Reason::NotAPicture;
    case glass::Trouble::Damaged:
        return Failure::Reason::Damaged;
    case glass::Trouble::Truncated:
        return Failure::Reason::Truncated;
    case glass::Trouble::Unsupported:
        return Failure::Reason::UnsupportedFormat;
    case glass::Trouble::OutOfMemory:
        return Failure::Reason::OutOfMemory;
    case glass::Trouble::TooLarge:
        return Failure::Reason::TooLarge;
    }
    Q_UNREACHABLE();
}

/// The tag that says how the stored picture is to be turned, once it has been.
void setUpright(EmbeddedBlocks &blocks)
{
    constexpr quint16 kOrientation = 0x112;
    if (std::optional<TiffBlock> exif = TiffBlock::of(blocks.exif)) {
        const auto directory = exif->directoryAt(exif->firstDirectoryOffset());
        if (const TiffEntry *entry = directory ? directory->find(kOrientation) : nullptr)
            exif->setNumber(*entry, 1);
        blocks.exif = exif->bytes();
    }
    static const QRegularExpression stated(QStringLiteral("tiff:Orientation(?:\\s*=\\s*[\"']|>)\\s*\\K[1-8]"));
    blocks.xmp = QString::fromUtf8(blocks.xmp).replace(stated, QStringLiteral("1")).toUtf8();
}

EmbeddedBlocks blocksOf(const glass::Header &header)
{
    EmbeddedBlocks blocks;
    blocks.exif = bytesOf(header.exif);
    blocks.xmp = bytesOf(header.xmp);
    blocks.iptc = bytesOf(header.iptc);
    return blocks;
}

class ForeignReader : public PictureReader
{
public:
    ForeignReader(SourceFile &source, const ForeignKind &kind)
        : m_source(source)
        , m_kind(kind)
    {
    }

    std::optional<Failure> readHeader() override;
    PictureInfo info() override { return m_info; }
    std::optional<EmbeddedBlocks> blocks() override { return m_blocks; }
    DecodeCost cost(QSize) override;
    Outcome<Picture> decode(QSize) override;

private:
    /// What came in place of the message that was waited for.
    Failure failureOf(const glass::Message &message) const;
    Failure lie() const;
    void takeHeader();
    void note(const std::string &text) const;
    double megapixels() const;
    qint64 ownMemory() const;

    SourceFile &m_source;
    const ForeignKind &m_kind;
    std::unique_ptr<DecoderProcess> m_process;
    glass::Header m_header;
    PictureInfo m_info;
    std::optional<EmbeddedBlocks> m_blocks;
};

Failure ForeignReader::lie() const
{
    qCWarning(lcCodecs).noquote() << m_source.path() + QStringLiteral(": its decoder says what cannot be");
    return m_source.failure(Failure::Reason::Damaged, QStringLiteral("its decoder says what cannot be"));
}

Failure ForeignReader::failureOf(const glass::Message &message) const
{
    const std::optional<glass::Excuse> excuse =
        message.kind == glass::Kind::Excuse ? glass::excuseOf(message.body) : std::nullopt;
    if (!excuse)
        return lie();
    return m_source.failure(reasonOf(excuse->trouble), textOf(excuse->text));
}

void ForeignReader::note(const std::string &text) const
{
    if (!text.empty())
        qCInfo(lcCodecs).noquote() << m_source.path() + QStringLiteral(": ") + textOf(text);
}

double ForeignReader::megapixels() const
{
    return double(m_header.frames.front().width) * m_header.frames.front().height / 1e6;
}

std::optional<Failure> ForeignReader::readHeader()
{
    if (!m_kind.isBuilt) {
        return m_source.failure(
            Failure::Reason::UnsupportedFormat,
            QStringLiteral("%1: built without %2").arg(QLatin1String(m_kind.title), QLatin1String(m_kind.library)));
    }
    Outcome<std::unique_ptr<DecoderProcess>> process = DecoderProcess::start(m_source, m_kind.name);
    if (!process)
        return process.failure();
    m_process = std::move(*process);
    const Outcome<glass::Message> message = m_process->receive(kBaseTime);
    if (!message)
        return message.failure();
    if (message->kind != glass::Kind::Header)
        return failureOf(*message);
    std::optional<glass::Header> header = glass::headerOf(message->body);
    if (!header || header->frames.empty())
        return lie();
    m_header = std::move(*header);
    const glass::Size size = m_header.frames.front();
    if (const std::optional<Failure> failure = m_source.checkSize(size.width, size.height))
        return failure;
    takeHeader();
    return std::nullopt;
}

void ForeignReader::takeHeader()
{
    m_info.format = bytesOf(m_header.format);
    for (const glass::Size &frame : m_header.frames) {
        if (!m_source.checkSize(frame.width, frame.height))
            m_info.frames.emplace_back(int(frame.width), int(frame.height));
    }
    m_info.colorModel = m_header.isGray ? ColorModel::Gray : ColorModel::Rgb;
    m_info.bitsPerChannel = m_header.bitsPerChannel;
    m_info.hasAlpha = m_header.hasAlpha;
    m_info.isTurnedUpright = m_header.isTurned;
    m_info.isEmbeddedPreview = m_header.isPreview;
    if (m_header.isPreview)
        note("the colours of its camera are not known: its embedded JPEG is shown");
    if (m_header.dotsPerInchX > 0.0 && m_header.dotsPerInchY > 0.0)
        m_info.dpi = QSizeF(m_header.dotsPerInchX, m_header.dotsPerInchY);
    m_info.iccProfile = bytesOf(m_header.iccProfile);
    if (m_info.iccProfile.isEmpty() && !m_header.isConverted)
        m_info.iccProfile = profileOfCodes(m_header.colors.primaries, m_header.colors.transfer, m_header.isGray);
    if (&m_kind != &kindOfQtPlugins()) { // of whose formats the blocks are found here
        m_blocks = blocksOf(m_header);
        if (m_header.isTurned)
            setUpright(*m_blocks);
    }
    note(m_header.note);
    for (std::string *block : {&m_header.iccProfile, &m_header.exif, &m_header.xmp, &m_header.iptc})
        *block = {};
}

qint64 ForeignReader::ownMemory() const
{
    const qint64 perPixel = m_kind.bytesPerPixel * (m_header.bitsPerChannel > 8 ? 2 : 1);
    return qint64(megapixels() * 1e6) * perPixel;
}

/// The limit is wide; what a decoder is known to need is about a third of it.
DecodeCost ForeignReader::cost(QSize)
{
    const glass::Size size = m_header.frames.front();
    return {glass::rowBytes(m_header.layout, size.width) * size.height, ownMemory() / 3};
}

Outcome<Picture> ForeignReader::decode(QSize)
{
    const glass::Size size = m_header.frames.front();
    const qint64 rowBytes = glass::rowBytes(m_header.layout, size.width);
    const auto allowance = kBaseTime + std::chrono::seconds(qint64(megapixels() * m_kind.secondsPerMegapixel));
    if (const auto failure = m_process->go(rowBytes * size.height, kBaseMemory + ownMemory(), allowance))
        return *failure;
    const Outcome<glass::Message> message = m_process->receive(allowance);
    if (!message)
        return message.failure();
    if (message->kind != glass::Kind::Done)
        return failureOf(*message);
    const std::optional<glass::Done> done = glass::doneOf(message->body);
    if (!done)
        return lie();
    note(done->note);
    const QSize pixels(int(size.width), int(size.height));
    Outcome<QImage> image = m_process->takePixels(pixels, qsizetype(rowBytes), formatOf(m_header.layout));
    if (!image)
        return image.failure();
    m_process.reset();
    Picture picture;
    picture.pixels = std::move(*image);
    picture.iccProfile = m_info.iccProfile;
    picture.fileColorModel = m_info.colorModel;
    picture.isPartlyDamaged = done->isPartlyDamaged;
    return picture;
}

} // namespace

std::unique_ptr<PictureReader> makeForeignReader(SourceFile &source, const ForeignKind &kind)
{
    return std::make_unique<ForeignReader>(source, kind);
}

EmbeddedBlocks readForeignBlocks(const SourceFile &source)
{
    const Outcome<std::unique_ptr<DecoderProcess>> process = DecoderProcess::start(source, "metadata");
    const Outcome<glass::Message> message = process ? (*process)->receive(kBaseTime) : process.failure();
    const std::optional<glass::Header> header =
        message && message->kind == glass::Kind::Header ? glass::headerOf(message->body) : std::nullopt;
    if (!header)
        qCWarning(lcCodecs).noquote() << source.path() + QStringLiteral(": its metadata could not be read");
    else if (!header->note.empty())
        qCInfo(lcCodecs).noquote() << source.path() + QStringLiteral(": ") + textOf(header->note);
    return header ? blocksOf(*header) : EmbeddedBlocks();
}

} // namespace hazelmark
