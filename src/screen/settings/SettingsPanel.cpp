#include "SettingsPanel.h"

#include "ApplicationDelegate.h"
#include "ColorWell.h"
#include "DisclosureButton.h"
#include "FloatSlider.h"
#include "FormatString.h"
#include "HighlightButton.h"
#include "IMGButton.h"
#include "NumberText.h"
#include "PhotoFile.h"
#include "SettingRowView.h"
#include "Theme.h"

#include <QScrollArea>
#include <QTimer>

#include <chrono>

namespace hazelmark {

namespace {

constexpr std::chrono::milliseconds kTextEntryDelay{200};
constexpr double kStopsPerVignette = 10;

/// What typing into a field sets. The rows are compared in this order and the first one that names the field counts.
struct TextEntry
{
    Setting field;
    Setting slider;
    Setting valueField; ///< whose number the slider gets, after `field` was brought into the slider's range
};

constexpr TextEntry kTextEntries[] = {
    {Setting::BrushDiameter, Setting::BrushDiameter, Setting::BrushDiameter},
    // Hardness follows the diameter's field: the two are cross-wired, and stay so.
    {Setting::BrushHardness, Setting::BrushHardness, Setting::BrushDiameter},
    {Setting::BlurAmount, Setting::BlurAmount, Setting::BlurAmount},
    {Setting::Contrast, Setting::Contrast, Setting::Contrast},
    {Setting::Highlights, Setting::Highlights, Setting::Highlights},
    {Setting::Saturation, Setting::Saturation, Setting::Saturation},
    {Setting::Warmth, Setting::Warmth, Setting::Warmth},
    // Stands where the radial twist would. It names the saturation field again, which the row above takes first: the
    // radial twist cannot be typed.
    {Setting::Saturation, Setting::MotionRadialTwist, Setting::MotionRadialTwist},
    {Setting::InFocusBrightness, Setting::InFocusBrightness, Setting::InFocusBrightness},
    {Setting::InFocusSharpness, Setting::InFocusSharpness, Setting::InFocusSharpness},
    {Setting::InFocusClarity, Setting::InFocusClarity, Setting::InFocusClarity},
    {Setting::InFocusVividness, Setting::InFocusVividness, Setting::InFocusVividness},
    {Setting::InFocusWarmth, Setting::InFocusWarmth, Setting::InFocusWarmth},
};

} // namespace

FloatSlider *SettingsPanel::slider(Setting setting) const
{
    return m_rows[static_cast<size_t>(setting)]->slider();
}

QLineEdit *SettingsPanel::field(Setting setting) const
{
    return m_rows[static_cast<size_t>(setting)]->field();
}

HighlightButton *SettingsPanel::resetButton(ResetTag tag) const
{
    for (const Reset &reset : m_resets) {
        if (reset.tag == tag)
            return reset.button;
    }
    return nullptr;
}

QString SettingsPanel::lookup(const char *key) const
{
    return m_application.getLocalizedStringForKey(QLatin1String(key));
}

void SettingsPanel::showTool(bool eraser)
{
    m_toolIsEraser = eraser;
    m_btnPaint->setChecked(!eraser);
    m_btnEraser->setChecked(eraser);
    m_toolName->setText(lookup(eraser ? "ERASE" : "PAINT"));
}

void SettingsPanel::setBusyTest(const std::function<bool()> &isBusy)
{
    for (const SettingRow &row : settingsTable()) {
        if (row.region != SettingRegion::Brush)
            slider(row.setting)->setBusyTest(isBusy);
    }
}

void SettingsPanel::setAllTextsForSliders()
{
    for (const SettingRowView *row : m_rows) {
        const QString text = wholeNumberText(row->slider()->value());
        if (row->field()->text() != text) // a slider sends many moves, and each repaint costs
            row->field()->setText(text);
    }
    showVignetteStops();
}

void SettingsPanel::showVignetteStops()
{
    const double stops = kStopsPerVignette * slider(Setting::Vignette)->value();
    m_vignetteNote->setText(formatString(lookup("VIGNETTE_ON_EXPORT"), {QLocale().toString(stops, 'f', 1)}));
}

void SettingsPanel::setSliderAndText(Setting setting, double value)
{
    slider(setting)->setValue(value);
    field(setting)->setText(wholeNumberText(value));
}

void SettingsPanel::resetMaskingSliders()
{
    setSliderAndText(Setting::BrushDiameter, 40);
    setSliderAndText(Setting::BrushHardness, 0);
}

void SettingsPanel::resetBlurSliders()
{
    setSliderAndText(Setting::BlurAmount, 60);
    setSliderAndText(Setting::Contrast, 0);
    setSliderAndText(Setting::Highlights, 100);
    setSliderAndText(Setting::Saturation, 50);
    setSliderAndText(Setting::Warmth, 0);
}

void SettingsPanel::resetInFocusSliders()
{
    setSliderAndText(Setting::InFocusBrightness, 0);
    setSliderAndText(Setting::InFocusSharpness, 0);
    setSliderAndText(Setting::InFocusClarity, 0);
    setSliderAndText(Setting::InFocusVividness, 50);
    setSliderAndText(Setting::InFocusWarmth, 0);
}

void SettingsPanel::resetAllSlidersAndTextfields()
{
    resetMaskingSliders();
    resetInFocusSliders();
    resetBlurSliders();
    setAllTextsForSliders();
}

void SettingsPanel::btnResetSliderSettingsTapped(ResetTag tag)
{
    switch (tag) {
    case kResetMasking:
        resetMaskingSliders();
        emit brushValuesSet();
        break;
    case kResetBlur:
        resetBlurSliders();
        break;
    case kResetInFocus:
        resetInFocusSliders();
        break;
    case kResetNothing:
        break;
    }
    handleSliderBlurRegion();
}

void SettingsPanel::controlTextDidChange(QLineEdit *field)
{
    // Counts from the last change: a number that is still being typed is not taken apart.
    QTimer *&delay = m_textEntryDelays[field];
    if (!delay) {
        delay = new QTimer(this);
        delay->setSingleShot(true);
        delay->setInterval(kTextEntryDelay);
        connect(delay, &QTimer::timeout, this, [this, field] { changeSliderValuesAfterTextEdit(field); });
    }
    delay->start();
}

void SettingsPanel::changeSliderValuesAfterTextEdit(QLineEdit *edited)
{
    if (!isEnabled()) { // an export began in the meantime: nothing may move until it is done
        setAllTextsForSliders();
        return;
    }
    const auto entry = std::find_if(std::begin(kTextEntries), std::end(kTextEntries),
                                    [&](const TextEntry &e) { return field(e.field) == edited; });
    if (entry == std::end(kTextEntries)) {
        emit effectChanged();
        return;
    }
    const QString typed = edited->text();
    FloatSlider *slider = this->slider(entry->slider);
    const double x = numberInText(typed);
    if (slider->minValue() > x)
        edited->setText(wholeNumberText(slider->minValue()));
    else if (x > slider->maxValue())
        edited->setText(wholeNumberText(slider->maxValue()));
    slider->setValue(numberInText(field(entry->valueField)->text()));
    const QString shown = wholeNumberText(slider->value());
    // What is typed next replaces a number that was corrected, and continues one that stands as it was typed: so
    // neither is ever mixed with digits that nobody meant to belong to it.
    if (shown != typed) {
        edited->setText(shown);
        edited->selectAll();
    }
    if (settingsTable()[static_cast<size_t>(entry->field)].region == SettingRegion::Brush)
        emit brushValuesSet();
    else
        emit effectChanged();
}

void SettingsPanel::handleSliderBlurRegion()
{
    setAllTextsForSliders();
    emit effectChanged();
}

void SettingsPanel::handleSliderInFocusRegion()
{
    setAllTextsForSliders();
    emit effectChanged();
}

void SettingsPanel::sliderBlurAmountValueChange()
{
    setAllTextsForSliders();
    emit processWanted();
}

void SettingsPanel::vignetteColorChanged()
{
    emit processWanted();
}

void SettingsPanel::sendAction(Setting setting)
{
    switch (setting) {
    case Setting::BrushDiameter:
        emit brushDiameterSlid();
        break;
    case Setting::BrushHardness:
        emit brushHardnessSlid();
        break;
    case Setting::BrushSizeAuto:
        emit brushSizeAutoSlid();
        break;
    case Setting::BlurAmount:
        sliderBlurAmountValueChange();
        break;
    default:
        if (settingsTable()[static_cast<size_t>(setting)].region == SettingRegion::InFocus)
            handleSliderInFocusRegion();
        else
            handleSliderBlurRegion();
    }
}

CoreFilterObject SettingsPanel::createPresetObjectFromSettingWithTitle(const QString &title) const
{
    const auto value = [this](Setting setting) { return static_cast<float>(slider(setting)->value()); };
    CoreFilterObject record;
    record.strPresetTitle = title;
    record.dateString = PhotoFile::creationDateText(QDateTime::currentDateTime());
    record.blurAmount = value(Setting::BlurAmount);
    record.vignetteAmount = value(Setting::Vignette);
    record.contrastAmount = value(Setting::Contrast);
    record.highlightsAmount = value(Setting::Highlights);
    record.saturationAmount = value(Setting::Saturation);
    record.warmthAmount = value(Setting::Warmth);
    record.motionBlurAmount = value(Setting::MotionBlurAmount);
    record.inFocusBrightness = value(Setting::InFocusBrightness);
    record.inFocusSharpness = value(Setting::InFocusSharpness);
    record.inFocusClarity = value(Setting::InFocusClarity);
    record.inFocusVividness = value(Setting::InFocusVividness);
    record.inFocusWarmth = value(Setting::InFocusWarmth);
    record.colorVignette = m_colorPickerVignette->color();
    return record;
}

} // namespace hazelmark
