#pragma once

#include "TiffBytes.h"

namespace hazelmark {

/// A box of the ISO base media file format; the content begins with its type.
inline QByteArray boxOf(const QByteArray &content)
{
    return tiffBytes(quint32(4 + content.size()), true) + content;
}

} // namespace hazelmark
