#pragma once

#include <array>

namespace hazelmark {

/// The eighteen sliders of the settings panel, in the order in which their texts are written.
enum class Setting {
    BrushDiameter,
    BrushHardness,
    BlurAmount,
    Vignette,
    Contrast,
    Highlights,
    Saturation,
    Warmth,
    MotionBlurAmount,
    MotionRadialTwist,
    MotionLinearAngle,
    InFocusBrightness,
    InFocusSharpness,
    InFocusClarity,
    InFocusVividness,
    InFocusWarmth,
    BrushSizeAuto,
    EdgeBlurAmount,
};

inline constexpr int kSettingCount = 18;

/// What a change of a slider is about, and so which action it sends.
enum class SettingRegion { Brush, Blur, InFocus };

struct SettingRow
{
    Setting setting;
    const char *name;     ///< the slider is named "slider" + name, the field "txt" + name
    const char *labelKey; ///< the text beside the slider, and what assistive technology calls both
    double minValue;
    double maxValue;
    double initialValue;
    SettingRegion region;
    bool isTyped; ///< a number that is typed into the field is applied; the other fields only show theirs
};

/// In the order of Setting.
const std::array<SettingRow, kSettingCount> &settingsTable();

} // namespace hazelmark
