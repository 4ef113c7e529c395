#include "SettingsTable.h"

namespace hazelmark {

const std::array<SettingRow, kSettingCount> &settingsTable()
{
    using S = Setting;
    constexpr auto kBrush = SettingRegion::Brush;
    constexpr auto kBlur = SettingRegion::Blur;
    constexpr auto kInFocus = SettingRegion::InFocus;
    // What has a neutral middle goes both ways; what is an amount starts at 0. The vignette is a fraction: 0.1 is one
    // stop of darkening.
    // clang-format off
    static constexpr std::array<SettingRow, kSettingCount> table{{
        {S::BrushDiameter, "BrushDiameter", "BRUSH_SIZE", "SLIDER_BRUSH_DIAMETER", 1, 300, 40, kBrush},
        {S::BrushHardness, "BrushHardness", "BRUSH_HARDNESS", "SLIDER_BRUSH_HARDNESS", 0, 100, 0, kBrush},
        {S::BlurAmount, "BlurAmount", "BLUR", "SLIDER_BLUR_AMOUNT", 0, 100, 60, kBlur},
        {S::Vignette, "Vignette", "SLIDER_VIGNETTE", "SLIDER_VIGNETTE", 0, 1, 0, kBlur},
        {S::Contrast, "Contrast", "SLIDER_CONTRAST", "SLIDER_CONTRAST", -100, 100, 0, kBlur},
        {S::Highlights, "Highlights", "SLIDER_HIGHLIGHTS", "SLIDER_HIGHLIGHTS", 0, 200, 100, kBlur},
        {S::Saturation, "Saturation", "SLIDER_SATURATION", "SLIDER_SATURATION", 0, 100, 50, kBlur},
        {S::Warmth, "Warmth", "SLIDER_WARMTH", "SLIDER_WARMTH", -100, 100, 0, kBlur},
        {S::MotionBlurAmount, "MotionBlurAmount", "SLIDER_MOTION_BLUR_AMOUNT", "SLIDER_MOTION_BLUR_AMOUNT", 0, 100, 0, kBlur},
        {S::MotionRadialTwist, "MotionRadialTwist", "SLIDER_MOTION_RADIAL_TWIST", "SLIDER_MOTION_RADIAL_TWIST", -100, 100, 0, kBlur},
        {S::MotionLinearAngle, "MotionLinearAngle", "SLIDER_MOTION_LINEAR_ANGLE", "SLIDER_MOTION_LINEAR_ANGLE", -100, 100, 0, kBlur},
        {S::InFocusBrightness, "InFocusBrightness", "SLIDER_IN_FOCUS_BRIGHTNESS", "SLIDER_IN_FOCUS_BRIGHTNESS", -100, 100, 0, kInFocus},
        {S::InFocusSharpness, "InFocusSharpness", "SLIDER_IN_FOCUS_SHARPNESS", "SLIDER_IN_FOCUS_SHARPNESS", 0, 100, 0, kInFocus},
        {S::InFocusClarity, "InFocusClarity", "SLIDER_IN_FOCUS_CLARITY", "SLIDER_IN_FOCUS_CLARITY", -100, 100, 0, kInFocus},
        {S::InFocusVividness, "InFocusVividness", "SLIDER_IN_FOCUS_VIVIDNESS", "SLIDER_IN_FOCUS_VIVIDNESS", 0, 100, 50, kInFocus},
        {S::InFocusWarmth, "InFocusWarmth", "SLIDER_WARMTH", "SLIDER_IN_FOCUS_WARMTH", -100, 100, 0, kInFocus},
        {S::BrushSizeAuto, "BrushSizeAuto", "SLIDER_BRUSH_SIZE_AUTO", "SLIDER_BRUSH_SIZE_AUTO", 1, 300, 40, kBrush},
        {S::EdgeBlurAmount, "EdgeBlurAmount", "SLIDER_EDGE_BLUR_AMOUNT", "SLIDER_EDGE_BLUR_AMOUNT", 0, 100, 0, kBlur},
    }};
    // clang-format on
    return table;
}

} // namespace hazelmark
