#include "SettingsTable.h"

namespace hazelmark {

const std::array<SettingRow, kSettingCount> &settingsTable()
{
    using S = Setting;
    constexpr auto kBrush = SettingRegion::Brush;
    constexpr auto kBlur = SettingRegion::Blur;
    constexpr auto kInFocus = SettingRegion::InFocus;
    // What has a neutral middle goes both ways; what is an amount starts at 0. The vignette is a fraction: 0.1 is one
    // stop of darkening, and beyond three nothing is left to see.
    // clang-format off
    static constexpr std::array<SettingRow, kSettingCount> table{{
        {S::BrushDiameter, "BrushDiameter", "BRUSH_SIZE", 1, 300, 40, kBrush, true},
        {S::BrushHardness, "BrushHardness", "BRUSH_HARDNESS", 0, 100, 0, kBrush, true},
        {S::BlurAmount, "BlurAmount", "BLUR", 0, 100, 60, kBlur, true},
        {S::Vignette, "Vignette", "SLIDER_VIGNETTE", 0, 0.3, 0, kBlur, false},
        {S::Contrast, "Contrast", "SLIDER_CONTRAST", -100, 100, 0, kBlur, true},
        {S::Highlights, "Highlights", "SLIDER_HIGHLIGHTS", 0, 200, 100, kBlur, true},
        {S::Saturation, "Saturation", "SLIDER_SATURATION", 0, 100, 50, kBlur, true},
        {S::Warmth, "Warmth", "SLIDER_WARMTH", -100, 100, 0, kBlur, true},
        {S::MotionBlurAmount, "MotionBlurAmount", "SLIDER_MOTION_BLUR_AMOUNT", 0, 100, 0, kBlur, false},
        {S::MotionRadialTwist, "MotionRadialTwist", "SLIDER_MOTION_RADIAL_TWIST", -100, 100, 0, kBlur, false},
        {S::MotionLinearAngle, "MotionLinearAngle", "SLIDER_MOTION_LINEAR_ANGLE", -100, 100, 0, kBlur, false},
        {S::InFocusBrightness, "InFocusBrightness", "SLIDER_IN_FOCUS_BRIGHTNESS", -100, 100, 0, kInFocus, true},
        {S::InFocusSharpness, "InFocusSharpness", "SLIDER_IN_FOCUS_SHARPNESS", 0, 100, 0, kInFocus, true},
        {S::InFocusClarity, "InFocusClarity", "SLIDER_IN_FOCUS_CLARITY", -100, 100, 0, kInFocus, true},
        {S::InFocusVividness, "InFocusVividness", "SLIDER_IN_FOCUS_VIVIDNESS", 0, 100, 50, kInFocus, true},
        {S::InFocusWarmth, "InFocusWarmth", "SLIDER_WARMTH", -100, 100, 0, kInFocus, true},
        {S::BrushSizeAuto, "BrushSizeAuto", "SLIDER_BRUSH_SIZE_AUTO", 1, 300, 40, kBrush, false},
        {S::EdgeBlurAmount, "EdgeBlurAmount", "SLIDER_EDGE_BLUR_AMOUNT", 0, 100, 0, kBlur, false},
    }};
    // clang-format on
    return table;
}

} // namespace hazelmark
