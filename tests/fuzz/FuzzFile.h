#pragma once

#include "Decoder.h"

#include <cstdint>
#include <cstdlib>

#include <sys/mman.h>
#include <unistd.h>

namespace hazelmark {

/// A regular file in memory with the fuzzer's bytes: the roads begin at a path, and a disk would be the slowest part.
class FuzzFile
{
public:
    FuzzFile(const uint8_t *bytes, size_t size)
    {
        if (::ftruncate(descriptor(), 0) != 0 || ::pwrite(descriptor(), bytes, size, 0) != ssize_t(size))
            std::abort();
    }
    static QString path() { return QStringLiteral("/proc/self/fd/%1").arg(descriptor()); }

    /// Pictures of more pixels only show that large pictures take long.
    static bool isSmall()
    {
        constexpr qint64 kMostPixels = 1 << 20;
        const Outcome<PictureInfo> info = readPictureInfo(path());
        return info && qint64(info->frames.front().width()) * info->frames.front().height() <= kMostPixels;
    }

private:
    static int descriptor()
    {
        static const int descriptor = ::memfd_create("picture", 0);
        return descriptor;
    }
};

} // namespace hazelmark
