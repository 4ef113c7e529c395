#pragma once

#include "ForeignDecoder.h"

namespace hazelmark::glass {

/// A JPEG file that a camera has put beside its raw samples.
class EmbeddedJpeg
{
public:
    /// Reads its header. Nothing when it is none, or none in RGB or grey.
    static std::optional<EmbeddedJpeg> of(std::span<const std::byte> bytes);

    /// As stored.
    Size size() const { return m_size; }
    /// How it is to be turned, by its own tag; 0 where it says nothing.
    int orientation() const { return m_orientation; }
    const std::string &iccProfile() const { return m_iccProfile; }

    /// Turned by the EXIF orientation into the canvas, whose rows are Rgbx8. Throws NoPicture, also for what is cut
    /// off.
    Done decode(const Canvas &canvas, int orientation) const;

private:
    std::span<const std::byte> m_bytes;
    Size m_size;
    int m_orientation = 0;
    std::string m_iccProfile;
};

/// Of a picture that is turned by the EXIF orientation.
Size uprightSize(Size stored, int orientation);

} // namespace hazelmark::glass
