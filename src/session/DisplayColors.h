#pragma once

#include <QByteArray>
#include <QImage>

namespace hazelmark {

/// Turns pixels of a photo's colour profile into what one screen has to be sent to show them. For display only: what
/// is exported never passes here. A value; any thread.
class DisplayColors
{
public:
    /// `screenProfile`: ICC bytes; empty, or of a profile that cannot be used, for a screen that counts as sRGB.
    explicit DisplayColors(QByteArray screenProfile = {})
        : m_screenProfile(std::move(screenProfile))
    {
    }

    const QByteArray &screenProfile() const { return m_screenProfile; }

    /// `pixels`: RGBX8888, RGBA8888, RGBX64 or RGBA64, straight alpha; `profile`: ICC bytes, empty for sRGB. Pixels
    /// that nobody else holds are converted where they are. The result is RGB32, or ARGB32_Premultiplied for pixels
    /// with alpha: what painting takes without a conversion. A photo's profile that cannot be used counts as sRGB.
    QImage shown(QImage pixels, const QByteArray &profile) const;

private:
    QByteArray m_screenProfile;
};

} // namespace hazelmark
