#pragma once

#include "Decoder.h"

#include <cstdint>
#include <cstdlib>

#include <sys/mman.h>
#include <unistd.h>

namespace hazelmark {

/// The path of a regular file in memory, the same one each time, with the fuzzer's bytes: the roads begin at a path,
/// and a disk would be the slowest part.
inline QString fuzzFile(const uint8_t *bytes, size_t size)
{
    static const int descriptor = ::memfd_create("picture", 0);
    if (::ftruncate(descriptor, 0) != 0 || ::pwrite(descriptor, bytes, size, 0) != ssize_t(size))
        std::abort();
    return QStringLiteral("/proc/self/fd/%1").arg(descriptor);
}

/// Pictures of more pixels only show that large pictures take long.
inline bool isSmall(const PictureInfo &info)
{
    constexpr qint64 kMostPixels = 1 << 20;
    return qint64(info.frames.front().width()) * info.frames.front().height() <= kMostPixels;
}

} // namespace hazelmark
