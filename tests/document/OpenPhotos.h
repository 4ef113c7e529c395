#pragma once

#include "Photo.h"

#include <random>

namespace hazelmark {

/// What a written file of 40 by 30 pixels carries of the photo at `path`; nothing when it is none.
inline MetadataBlocks carriedOf(const QString &path, WriteFormat format)
{
    const Outcome<PhotoPtr> photo = Photo::open(path);
    return photo ? (*photo)->carriedMetadata({40, 30}, format) : MetadataBlocks();
}

/// Empty when the file at `path` is no photo.
inline QVariantMap dictionaryOf(const QString &path)
{
    const Outcome<PhotoPtr> photo = Photo::open(path);
    return photo ? (*photo)->dictionary() : QVariantMap();
}

/// A JPEG file of 22 bytes and a scan of 600, any twenty of which occur nowhere else.
inline QByteArray hiddenJpeg(unsigned seed = 11)
{
    std::mt19937 random(seed);
    QByteArray scan(600, Qt::Uninitialized);
    for (char &byte : scan)
        byte = char(random() % 254 + 1); // neither zeros nor marks, which stand anywhere
    return QByteArray("\xff\xd8\xff\xe0\0\x08JFIF\0\0\xff\xda\0\x08\x01\x01\0\0\x3f\0", 22) + scan + "\xff\xd9";
}

} // namespace hazelmark
