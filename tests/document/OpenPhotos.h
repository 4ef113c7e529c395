#pragma once

#include "Photo.h"

namespace hazelmark {

/// What a written file carries of the photo at `path`; nothing when it is none.
inline MetadataBlocks carriedOf(const QString &path, QSize size, WriteFormat format)
{
    const Outcome<PhotoPtr> photo = Photo::open(path);
    return photo ? (*photo)->carriedMetadata(size, format) : MetadataBlocks();
}

/// Absent when the file at `path` is no photo.
inline std::optional<QVariantMap> dictionaryOf(const QString &path)
{
    const Outcome<PhotoPtr> photo = Photo::open(path);
    return photo ? std::optional((*photo)->dictionary()) : std::nullopt;
}

} // namespace hazelmark
