#pragma once

#include "DecoderMessages.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>

namespace hazelmark::glass {

/// Thrown by decoders: there is no picture.
class NoPicture : public std::runtime_error
{
public:
    NoPicture(Trouble trouble, const std::string &text)
        : std::runtime_error(text)
        , m_trouble(trouble)
    {
    }
    Trouble trouble() const { return m_trouble; }

private:
    Trouble m_trouble;
};

/// The file, mapped. One that is cut meanwhile ends this process, which is what it is for.
struct Photo
{
    std::span<const std::byte> bytes;
    int descriptor; ///< open for reading

    const uint8_t *data() const { return reinterpret_cast<const uint8_t *>(bytes.data()); }
};

/// Where the pixels go: rows of the header's layout, `stride` bytes apart. All zero at first.
struct Canvas
{
    std::byte *memory;
    size_t stride;
    Size size;
    unsigned threads;
    /// 0..1; as often as the library tells.
    std::function<void(double done)> tellProgress;

    uint8_t *row8(uint32_t y) const { return reinterpret_cast<uint8_t *>(memory + y * stride); }
    uint16_t *row16(uint32_t y) const { return reinterpret_cast<uint16_t *>(memory + y * stride); }
};

/// One library at work on one file: what it is first, then its pixels, each once. Both throw NoPicture, and may throw
/// std::bad_alloc.
class ForeignDecoder
{
public:
    virtual ~ForeignDecoder() = default;
    virtual Header readHeader() = 0;
    virtual Done decode(const Canvas &canvas) = 0;
};

/// What a shared object with a decoder has under the name `makeForeignDecoder`. It is called before the process gives
/// up its rights: it readies whatever the library loads or asks the system for, and looks at no byte of the photo,
/// which outlives the decoder.
using MakeForeignDecoder = ForeignDecoder *(*)(const Photo &photo);

/// round(value * 65535 / (2^bits - 1)), the whole range onto the whole range.
inline uint16_t scaledTo16(uint32_t value, uint32_t most)
{
    return uint16_t((uint64_t(value > most ? most : value) * 65535u + most / 2) / most);
}

} // namespace hazelmark::glass
