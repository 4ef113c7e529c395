#include "Photo.h"

#include "CarriedMetadata.h"
#include "Decoder.h"
#include "ObjectText.h"
#include "PhotoMetadata.h"
#include "PropertyDictionary.h"

namespace hazelmark {

Outcome<PhotoPtr> Photo::open(const QString &path)
try {
    Outcome<std::unique_ptr<SourceFile>> source = SourceFile::open(path);
    if (!source)
        return source.failure();
    Outcome<Decoder> decoder = Decoder::open(**source);
    if (!decoder)
        return decoder.failure();
    const Outcome<PictureInfo> info = decoder->info();
    if (!info)
        return info.failure();
    if (info->frames.empty())
        return (*source)->failure(Failure::Reason::NotAPicture);
    return PhotoPtr(new Photo(std::move(*source), std::move(*decoder), *info));
} catch (const std::bad_alloc &) {
    return Failure{Failure::Reason::OutOfMemory, path, {}};
}

Photo::Photo(std::unique_ptr<SourceFile> source, Decoder decoder, PictureInfo info)
    : m_path(source->path())
    , m_identity(source->identity())
    , m_source(std::move(source))
    , m_decoder(std::move(decoder))
    , m_info(std::move(info))
    , m_uprightSizes(m_info.frames)
{
    m_metadata = std::make_unique<PhotoMetadata>(readPhotoMetadata(*m_source, m_info, m_decoder->blocks()));
    m_dictionary = propertyDictionary(m_path, m_info, *m_metadata);
    if (m_info.format == "tiff")
        keepPhotoTags(*m_metadata);
    m_orientation = integerValue(m_dictionary.value(QStringLiteral("Orientation")));
    if (isTurnedByAQuarter()) {
        for (QSize &size : m_uprightSizes)
            size.transpose();
    }
}

Photo::~Photo() = default;

std::optional<Failure> Photo::reopen()
{
    if (m_source)
        return std::nullopt;
    Outcome<std::unique_ptr<SourceFile>> again = SourceFile::open(m_path);
    if (!again)
        return again.failure();
    if ((*again)->identity() != m_identity)
        return (*again)->failure(Failure::Reason::SourceChanged);
    m_source = std::move(*again);
    return std::nullopt;
}

MetadataBlocks Photo::carriedMetadata(QSize size, WriteFormat format)
{
    const std::lock_guard lock(m_mutex);
    if (m_metadata->blocks.lacksNote && !reopen())
        readDistantNote(*m_source, m_info.frames.back(), *m_metadata);
    return hazelmark::carriedMetadata(m_path, m_info, *m_metadata, size, format);
}

Outcome<Picture> Photo::decode(QSize atLeast)
{
    const std::lock_guard lock(m_mutex);
    if (const std::optional<Failure> failure = reopen())
        return *failure;
    if (!m_decoder) {
        Outcome<Decoder> decoder = Decoder::open(*m_source);
        if (!decoder)
            return decoder.failure();
        m_decoder = std::move(*decoder);
    }
    Outcome<Picture> picture = m_decoder->decode(atLeast);
    m_decoder.reset();
    if (!picture)
        return picture;
    if (atLeast.isEmpty()) // as for an export
        readDistantNote(*m_source, m_info.frames.back(), *m_metadata);
    m_source.reset();
    return picture;
}

void Photo::release()
{
    const std::lock_guard lock(m_mutex);
    m_decoder.reset();
    m_source.reset();
}

} // namespace hazelmark
