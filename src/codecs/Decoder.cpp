#include "Decoder.h"

#include "AvailableMemory.h"
#include "ForeignReader.h"
#include "PictureFormat.h"
#include "SourceFile.h"

#include <algorithm>
#include <iterator>
#include <new>

namespace hazelmark {

namespace {

constexpr const PictureFormat *kFormats[] = {&kJpegFormat, &kPngFormat, &kTiffFormat, &kGifFormat};

/// Camera raw files are TIFF files too.
std::unique_ptr<PictureReader> makeReader(SourceFile &source)
{
    if (const ForeignKind *kind = foreignKindOf(source))
        return makeForeignReader(source, *kind);
    const auto format = std::find_if(std::begin(kFormats), std::end(kFormats),
                                     [&](const PictureFormat *row) { return row->recognises(source.head()); });
    return format != std::end(kFormats) ? (*format)->makeReader(source) : makeForeignReader(source, kindOfQtPlugins());
}

QString inGigabytes(qint64 bytes)
{
    return QString::number(double(bytes) / 1e9, 'f', 1) + QStringLiteral(" GB");
}

/// Nothing when there is memory for it, and for a second bitmap of the kind: nothing can be done with a picture without
/// one, be it only to turn it upright.
std::optional<Failure> checkMemory(const SourceFile &source, const DecodeCost &cost)
{
    const qint64 needed = cost.bitmap + std::max(cost.working, cost.bitmap);
    const qint64 available = availableMemory();
    if (needed <= available)
        return std::nullopt;
    return source.failure(
        Failure::Reason::OutOfMemory,
        QStringLiteral("it takes %1, and %2 are free").arg(inGigabytes(needed), inGigabytes(available)));
}

} // namespace

Decoder::Decoder(SourceFile &source, std::unique_ptr<PictureReader> reader)
    : m_source(&source)
    , m_reader(std::move(reader))
{
}

Decoder::Decoder(Decoder &&) noexcept = default;
Decoder &Decoder::operator=(Decoder &&) noexcept = default;
Decoder::~Decoder() = default;

Outcome<Decoder> Decoder::open(SourceFile &source)
try {
    std::unique_ptr<PictureReader> reader = makeReader(source);
    if (const std::optional<Failure> failure = reader->readHeader())
        return *failure;
    return Decoder(source, std::move(reader));
} catch (const std::bad_alloc &) {
    return source.failure(Failure::Reason::OutOfMemory);
}

Outcome<PictureInfo> Decoder::info()
try {
    PictureInfo info = m_reader->info();
    // Exports are scaled to the last one's size.
    std::erase_if(info.frames, [&](QSize size) { return m_source->checkSize(size.width(), size.height()); });
    return info;
} catch (const std::bad_alloc &) {
    return m_source->failure(Failure::Reason::OutOfMemory);
}

std::optional<EmbeddedBlocks> Decoder::blocks()
{
    return m_reader->blocks();
}

Outcome<Picture> Decoder::decode(QSize atLeast)
try {
    if (const std::optional<Failure> failure = checkMemory(*m_source, m_reader->cost(atLeast)))
        return *failure;
    return m_reader->decode(atLeast);
} catch (const std::bad_alloc &) {
    return m_source->failure(Failure::Reason::OutOfMemory);
}

namespace {

/// What `read` makes of a decoder on the file.
template <typename Result, typename Read>
Outcome<Result> readFile(const QString &path, const Read &read)
{
    const Outcome<std::unique_ptr<SourceFile>> source = SourceFile::open(path);
    if (!source)
        return source.failure();
    Outcome<Decoder> decoder = Decoder::open(**source);
    return decoder ? read(*decoder) : decoder.failure();
}

} // namespace

Outcome<PictureInfo> readPictureInfo(const QString &path)
{
    return readFile<PictureInfo>(path, [](Decoder &decoder) { return decoder.info(); });
}

Outcome<Picture> decodePicture(const QString &path, QSize atLeast)
{
    return readFile<Picture>(path, [=](Decoder &decoder) { return decoder.decode(atLeast); });
}

} // namespace hazelmark
