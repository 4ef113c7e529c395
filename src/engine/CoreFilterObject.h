#pragma once

#include <QColor>
#include <QPointF>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace hazelmark {

/// One snapshot of the effect settings, made on the main thread for every render and only read afterwards.
///
/// A number that was never set is empty, which is not the same as 0: restoring an archive leaves it so. Renders read
/// an empty number as 0.
class CoreFilterObject
{
public:
    using Number = std::optional<float>;

    /// Every field at its default.
    CoreFilterObject() = default;

    QString dateString;           ///< creation time of the preset, formatted; null until set
    Number blurAmount = 0.0f;     ///< drives the radius of the disc blur
    Number vignetteAmount = 1.0f; ///< darkening of the blurred region, at export only
    QColor colorVignette;         ///< carried, applied by no render
    Number contrastAmount = 0.0f; ///< carried, like all numbers below unless they say more
    Number highlightsAmount = 1.0f;
    Number saturationAmount = 0.0f;
    Number warmthAmount = 0.0f;
    Number motionBlurAmount =
        0.0f; ///< above 0 it switches on the edge clamp of the blur chain, which alone shows nothing
    Number motionRadialTwist = 0.0f;
    Number motionLinearAngle = 0.0f;
    QPointF motionblurCenter; ///< fractions of the picture's size
    int motionBlurType = 0;
    Number inFocusBrightness = 6500.0f; ///< a colour temperature in kelvin, whatever the name says
    Number inFocusSharpness = 0.0f;
    Number inFocusClarity = 0.0f;
    Number inFocusVividness = 1.0f;
    Number inFocusWarmth = 0.0f;
    std::optional<bool> isFavouriteOn = false;
    QString strPresetTitle = QStringLiteral("");

    /// Archives the record under keys equal to the property names. `warmthAmount`, `inFocusWarmth`, `colorVignette`,
    /// `motionblurCenter` and `motionBlurType` are not archived; empty fields are left out.
    QVariantMap encodeWithCoder() const;

    /// Restores a record without applying the defaults. The numbers are read under keys that encodeWithCoder() does
    /// not write (those of an older preset form), so a record that comes back keeps its title, date and favourite
    /// flag, and its numbers are empty.
    static CoreFilterObject initWithCoder(const QVariantMap &archive);

    bool operator==(const CoreFilterObject &) const = default;
};

} // namespace hazelmark
