#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

#include <memory>

namespace hazelmark {

// Colour profiles as the bytes that files embed. Everywhere empty bytes stand for sRGB. What is made of the same bytes
// is the same bytes: no time of creation is put into a profile.

/// An RGB profile in which equal channels look as the same levels do in `grayProfile`: its tone curve and white with
/// the primaries of sRGB. A profile that is an RGB one already comes back as it is (some grey files embed one); empty
/// when the profile cannot be used.
QByteArray rgbProfileForGray(const QByteArray &grayProfile);

/// The name that the profile gives itself, in English where it has several; empty when it has none.
QString profileDescription(const QByteArray &iccProfile);

/// The profile as it is put into a file: byte for byte, unless a picture is found in it. Then the private tag that
/// holds it goes, and what no tag refers to is zeroed; empty when it is in a tag that the profile cannot be without.
QByteArray profileWithoutPictures(const QByteArray &iccProfile);

/// `pixels` (RGBX8888, RGBA8888, RGBX64 or RGBA64; straight alpha, which stays) from the RGB profile in sRGB. Pixels
/// that are sRGB already, or whose profile cannot be used, come back as they are. Throws std::bad_alloc.
QImage convertedToSrgb(const QImage &pixels, const QByteArray &iccProfile);

/// Turns straight RGB(A) pixels of one RGB profile into those of another. Immutable: any number of threads may convert
/// ranges of rows with the same object at once.
class ColorTransform
{
public:
    /// For pictures of the given format (RGBX8888, RGBA8888, RGBX64 or RGBA64). Null when a profile cannot be used.
    static std::shared_ptr<const ColorTransform> between(const QByteArray &sourceProfile,
                                                         const QByteArray &targetProfile, QImage::Format format);
    ~ColorTransform();

    /// Whether no 8-bit value would change by the conversion, so that it is better left out.
    bool isIdentity() const { return m_isIdentity; }

    /// Rows of `width` pixels, strides in bytes; the fourth sample of each pixel is copied. `target` may be `source`.
    void convertRows(const uchar *source, qsizetype sourceStride, uchar *target, qsizetype targetStride, int width,
                     int rowCount) const;

private:
    explicit ColorTransform(void *transform);

    void *m_transform;
    bool m_isIdentity = false;
};

} // namespace hazelmark
