#include "SettingsPanel.h"

#include "../controls/WidgetEvents.h"
#include "../support/ScreenApplication.h"
#include "ColorWell.h"
#include "CoreFilterObject.h"
#include "DisclosureButton.h"
#include "FloatSlider.h"
#include "HighlightButton.h"
#include "IMGButton.h"
#include "NumberText.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>
#include <map>

using namespace hazelmark;

namespace {

class SettingsPanelTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_panel.resize(250, 900);
        m_panel.show();
        m_panel.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_panel));
    }

    /// Types as a person does and waits until the panel has taken it.
    void type(Setting setting, const char *text)
    {
        QLineEdit *field = m_panel.field(setting);
        field->selectAll();
        m_effect.clear();
        m_brush.clear();
        *text ? QTest::keyClicks(field, QString::fromUtf8(text)) : QTest::keyClick(field, Qt::Key_Delete);
        ASSERT_TRUE(QTest::qWaitFor([&] { return m_effect.size() + m_brush.size() > 0; }));
    }
    double value(Setting setting) const { return m_panel.slider(setting)->value(); }
    QString shown(Setting setting) const { return m_panel.field(setting)->text(); }
    /// Moves every slider to a fraction of its range.
    void setAll(double fraction)
    {
        for (const SettingRow &row : settingsTable())
            m_panel.slider(row.setting)->setValue(row.minValue + fraction * (row.maxValue - row.minValue));
    }

    ScreenApplication m_application;
    SettingsPanel m_panel{m_application};
    QSignalSpy m_effect{&m_panel, &SettingsPanel::effectChanged};
    QSignalSpy m_process{&m_panel, &SettingsPanel::processWanted};
    QSignalSpy m_brush{&m_panel, &SettingsPanel::brushValuesSet};
};

} // namespace

TEST_F(SettingsPanelTest, ShowsWhatWorksAtFirstAndSendsItsAction)
{
    setAll(0.5);
    m_panel.setAllTextsForSliders();
    EXPECT_TRUE(m_effect.isEmpty() && m_process.isEmpty() && m_brush.isEmpty()) << "only a person's change sends one";
    qsizetype effects = 0;
    for (const SettingRow &row : settingsTable()) {
        const FloatSlider *slider = m_panel.slider(row.setting);
        const QLineEdit *field = m_panel.field(row.setting);
        const bool works = row.region == SettingRegion::Brush || row.setting == Setting::BlurAmount ||
                           row.setting == Setting::Vignette;
        for (const bool unfolded : {true, false}) {
            m_panel.setAllSettingsShown(unfolded);
            EXPECT_EQ(slider->isVisible(), works || unfolded) << row.name;
        }
        EXPECT_EQ(field->text(), wholeNumberText(slider->value())) << row.name;
        m_panel.slider(row.setting)->stepBy(1);
        if (row.region != SettingRegion::Brush) {
            EXPECT_EQ(field->text(), wholeNumberText(slider->value())) << row.name;
            effects += row.setting == Setting::BlurAmount ? 0 : 1;
        }
        EXPECT_EQ(m_effect.size(), effects) << row.name;
    }
    EXPECT_EQ(m_process.size(), 1) << "one request a move of the blur slider";
}

TEST_F(SettingsPanelTest, WhatIsTypedIsClampedAndRoundedAndChangesNothingElse)
{
    using S = Setting;
    const double diameter = value(S::BrushDiameter);
    // Where it is typed, what; the slider's value and the field's text afterwards.
    const std::tuple<S, const char *, double, const char *> entries[]{
        {S::BlurAmount, "500", 100, "100"},
        {S::BlurAmount, "12.6", 12.6, "13"},
        {S::BlurAmount, "-5", 0, "0"},
        {S::BlurAmount, "b[2c5", 25, "25"}, // a letter stays out
        {S::BlurAmount, "", 0, "0"},
        {S::Contrast, "-250", -100, "-100"},
        // Cross-wired: hardness takes the number in the diameter's field, up to its own maximum.
        {S::BrushHardness, "10", diameter, "40"},
        {S::BrushDiameter, "0", 1, "1"},
        {S::BrushDiameter, "12.6", 12.6, "13"},
        {S::BrushDiameter, "250", 250, "250"},
        {S::BrushHardness, "10", 100, "100"},
    };
    for (const auto &[setting, typed, number, text] : entries) {
        std::map<S, double> expected;
        for (const SettingRow &row : settingsTable())
            expected[row.setting] = row.setting == setting ? number : value(row.setting);
        type(setting, typed);
        for (const auto &[other, wanted] : expected)
            EXPECT_DOUBLE_EQ(value(other), wanted) << typed << int(other);
        EXPECT_EQ(shown(setting).toStdString(), text);
        EXPECT_TRUE(m_process.isEmpty());
    }
}

TEST_F(SettingsPanelTest, AFieldTakesNumbersThatAreTypedSlowlyAndStepsItsSlider)
{
    QLineEdit *field = m_panel.field(Setting::BlurAmount);
    const auto takes = [&](double number) {
        return QTest::qWaitFor([&] { return value(Setting::BlurAmount) == number; });
    };
    field->setFocus();
    type(Setting::BlurAmount, "4");
    QTest::keyClicks(field, QStringLiteral("5"));
    EXPECT_EQ(value(Setting::BlurAmount), 4) << "it waits for the next key";
    EXPECT_TRUE(takes(45));
    type(Setting::BlurAmount, "45");
    m_effect.clear();
    QTest::keyClicks(field, QStringLiteral("0"));
    m_panel.setEnabled(false); // an export begins
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown(Setting::BlurAmount) == QStringLiteral("45"); }));
    m_panel.setEnabled(true);
    field->setFocus();
    // A corrected number gives way to what is typed next.
    type(Setting::BlurAmount, "450");
    EXPECT_EQ(field->selectedText(), QStringLiteral("100"));
    QTest::keyClicks(field, QStringLiteral("7"));
    EXPECT_TRUE(takes(7));
    for (const auto &[key, number] : {std::pair{Qt::Key_Up, "8"},
                                      {Qt::Key_PageUp, "18"},
                                      {Qt::Key_Down, "17"},
                                      {Qt::Key_PageDown, "7"},
                                      {Qt::Key_Up, "8"}}) {
        QTest::keyClick(field, key);
        EXPECT_EQ(shown(Setting::BlurAmount), QLatin1String(number));
    }
    wheel(*field, 120);
    EXPECT_EQ(value(Setting::BlurAmount), 9);
    wheel(*m_panel.field(Setting::BrushHardness),
          120); // not what the person works in: scrolling past it changes nothing
    EXPECT_EQ(value(Setting::BrushHardness), 0);
}

TEST_F(SettingsPanelTest, TheVignettesColourIsChosenInAWindowThatBlocksNothing)
{
    m_panel.setAllSettingsShown(true);
    ColorWell &well = *m_panel.colorPickerVignette();
    well.setColor({});
    well.click();
    well.click();
    ASSERT_EQ(well.findChildren<QColorDialog *>().size(), 1);
    QColorDialog &colors = *well.colorPanel();
    EXPECT_TRUE(colors.isVisible() && !colors.isModal());
    EXPECT_EQ(colors.windowTitle(), QStringLiteral("VIGNETTE_COLOR %@"));
    EXPECT_EQ(colors.options(), QColorDialog::DontUseNativeDialog | QColorDialog::NoButtons);
    for (const QColor &color : {QColor(Qt::red), QColor(Qt::red), QColor(0x40, 0x40, 0x40)})
        colors.setCurrentColor(color);
    EXPECT_EQ(m_process.size(), 2) << "changes only";
    EXPECT_EQ(m_panel.createPresetObjectFromSettingWithTitle({}).colorVignette, QColor(0x40, 0x40, 0x40));
    well.closeColorPanel();
    EXPECT_TRUE(QTest::qWaitFor([&] { return well.colorPanel() == nullptr; }));
    QTest::keyClick(m_panel.findChild<DisclosureButton *>(), Qt::Key_Return);
    EXPECT_FALSE(m_panel.isUnfolded());
}

TEST_F(SettingsPanelTest, EveryResetRestoresItsGroupAndAsksForAPreview)
{
    using S = Setting;
    using P = SettingsPanel;
    const std::pair<P::ResetTag, std::vector<S>> groups[]{
        {P::kResetMasking, {S::BrushDiameter, S::BrushHardness}},
        {P::kResetBlur, {S::BlurAmount, S::Contrast, S::Highlights, S::Saturation, S::Warmth}},
        {P::kResetInFocus,
         {S::InFocusBrightness, S::InFocusSharpness, S::InFocusClarity, S::InFocusVividness, S::InFocusWarmth}}};
    m_panel.setAllSettingsShown(true);
    for (const auto &[tag, group] : groups) {
        setAll(1);
        m_panel.setAllTextsForSliders();
        m_effect.clear();
        m_brush.clear();
        QTest::mouseClick(m_panel.resetButton(tag), Qt::LeftButton);
        for (const SettingRow &row : settingsTable()) {
            const bool isReset = std::ranges::find(group, row.setting) != group.end();
            EXPECT_EQ(value(row.setting), isReset ? row.initialValue : row.maxValue) << row.name << tag;
            EXPECT_EQ(shown(row.setting), wholeNumberText(value(row.setting))) << row.name;
        }
        EXPECT_EQ(m_effect.size(), 1) << tag;
        EXPECT_EQ(m_brush.size(), tag == P::kResetMasking ? 1 : 0) << tag;
    }
    setAll(1);
    m_panel.resetAllSlidersAndTextfields();
    EXPECT_EQ(value(S::Vignette), 0.3) << "opening a photo keeps the vignette";
    EXPECT_EQ(value(S::BrushDiameter) + value(S::InFocusVividness) + value(S::BlurAmount), 40 + 50 + 60);
}

TEST(NumberTextTest, ReadsTheNumberThatATextBeginsWithAndWritesWholeOnes)
{
    const QLocale c = QLocale::c();
    const QLocale french(QLocale::French, QLocale::France);
    const std::pair<const char *, double> texts[] = {
        {" +3.5x7", 3.5}, {"12,5", 12}, {".5e1 ", 5}, {"-1e-999", 0}, {"１２．５", 12.5}, {"−7", -7}, {"", 0},
        {"x1", 0},        {"-", 0},     {".", 0},     {"e5", 0},      {"inf", 0},         {"nan", 0}, {"--1", 0}};
    for (const auto &[text, number] : texts)
        EXPECT_EQ(numberInText(QString::fromUtf8(text), c), number) << text;
    for (const char *text : {"12,5", "12.5"})
        EXPECT_EQ(numberInText(QLatin1String(text), french), 12.5);
    EXPECT_TRUE(std::isinf(numberInText(QStringLiteral("1e999"), c)));
    for (const auto &[number, text] : {std::pair{12.5, "12"}, {13.5, "14"}, {-0.4, "0"}, {-99.6, "-100"}})
        EXPECT_EQ(wholeNumberText(number).toStdString(), text);
}
