#pragma once

#include <QByteArray>

namespace hazelmark {

/// Larger colour profiles than this are passed over.
inline constexpr qsizetype kMaxIccProfileSize = 64 * 1024 * 1024;

/// The content of a zlib stream; empty when the stream is damaged, cut off, or unpacks to more than `limit` bytes.
QByteArray inflateZlib(const QByteArray &stream, qsizetype limit);

/// The bytes as a zlib stream; empty when there is no memory.
QByteArray deflateZlib(const QByteArray &bytes);

} // namespace hazelmark
