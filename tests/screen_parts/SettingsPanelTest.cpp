#include "SettingsPanel.h"

#include "../support/Timers.h"

#include "ColorWell.h"
#include "FakeApplication.h"
#include "FloatSlider.h"
#include "HighlightButton.h"
#include "IMGButton.h"
#include "NumberText.h"

#include <QApplication>
#include <QLabel>
#include <QScrollArea>
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
    void type(Setting setting, const QString &text)
    {
        QLineEdit *field = m_panel.field(setting);
        QSignalSpy effect(&m_panel, &SettingsPanel::effectChanged);
        QSignalSpy brush(&m_panel, &SettingsPanel::brushValuesSet);
        field->selectAll();
        if (text.isEmpty())
            QTest::keyClick(field, Qt::Key_Delete);
        else
            QTest::keyClicks(field, text);
        ASSERT_TRUE(QTest::qWaitFor([&] { return effect.size() + brush.size() > 0; }));
    }
    double value(Setting setting) const { return m_panel.slider(setting)->value(); }
    QString shown(Setting setting) const { return m_panel.field(setting)->text(); }
    std::map<Setting, double> values() const
    {
        std::map<Setting, double> all;
        for (const SettingRow &row : settingsTable())
            all[row.setting] = value(row.setting);
        return all;
    }

    FakeApplication m_application;
    SettingsPanel m_panel{m_application};
    QSignalSpy m_effect{&m_panel, &SettingsPanel::effectChanged};
    QSignalSpy m_process{&m_panel, &SettingsPanel::processWanted};
    QSignalSpy m_brush{&m_panel, &SettingsPanel::brushValuesSet};
};

} // namespace

TEST_F(SettingsPanelTest, HasEveryControlUnderItsNameAndShowsWhatWorksAtFirst)
{
    const char *names[] = {"BrushDiameter",    "BrushHardness",     "BlurAmount",        "Vignette",
                           "Contrast",         "Highlights",        "Saturation",        "Warmth",
                           "MotionBlurAmount", "MotionRadialTwist", "MotionLinearAngle", "InFocusBrightness",
                           "InFocusSharpness", "InFocusClarity",    "InFocusVividness",  "InFocusWarmth",
                           "BrushSizeAuto",    "EdgeBlurAmount"};
    for (const bool unfolded : {false, true}) {
        m_panel.setAllSettingsShown(unfolded);
        for (const SettingRow &row : settingsTable()) {
            const QLatin1String name(names[static_cast<size_t>(row.setting)]);
            auto *slider = m_panel.findChild<FloatSlider *>(QStringLiteral("slider") + name);
            auto *field = m_panel.findChild<QLineEdit *>(QStringLiteral("txt") + name);
            ASSERT_TRUE(slider == m_panel.slider(row.setting) && field) << row.name;
            EXPECT_FALSE(slider->accessibleName().isEmpty()) << row.name;
            EXPECT_EQ(field->text(), wholeNumberText(slider->value())) << row.name;
            EXPECT_EQ(field->isReadOnly(), !row.isTyped) << row.name;
            const bool works = row.region == SettingRegion::Brush || row.setting == Setting::BlurAmount ||
                               row.setting == Setting::Vignette;
            EXPECT_EQ(slider->isVisible(), works || unfolded) << row.name;
        }
    }
    for (const char *name : {"lblBlur", "lblBrushSize", "lblBrushHardness", "lblVignette"})
        EXPECT_TRUE(m_panel.findChild<QLabel *>(QLatin1String(name))) << name;
    QCoreApplication::processEvents();
    EXPECT_LE(m_panel.scrollvwSettings()->widget()->width(), 250) << "something is cut off on the right";
}

struct TypedCase
{
    Setting setting;
    const char *typed;
    double value;
    const char *shown;
    bool reachesBrush;
};

class SettingsPanelTypingTest : public SettingsPanelTest, public testing::WithParamInterface<TypedCase>
{
};

TEST_P(SettingsPanelTypingTest, ClampsAndRounds)
{
    const TypedCase &c = GetParam();
    const auto before = values();
    type(c.setting, QString::fromUtf8(c.typed));
    EXPECT_DOUBLE_EQ(value(c.setting), c.value);
    EXPECT_EQ(shown(c.setting).toStdString(), c.shown);
    EXPECT_EQ(!m_brush.isEmpty(), c.reachesBrush);
    EXPECT_EQ(m_effect.isEmpty(), c.reachesBrush);
    EXPECT_TRUE(m_process.isEmpty());
    for (const auto &[setting, was] : before) {
        if (setting != c.setting) {
            EXPECT_EQ(value(setting), was);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Entries, SettingsPanelTypingTest,
                         testing::Values(TypedCase{Setting::BlurAmount, "500", 100, "100", false},
                                         TypedCase{Setting::BlurAmount, "12.6", 12.6, "13", false},
                                         TypedCase{Setting::BlurAmount, "-5", 0, "0", false},
                                         TypedCase{Setting::BlurAmount, "1000000000", 100, "100", false},
                                         // A letter stays out.
                                         TypedCase{Setting::BlurAmount, "b[2c5", 25, "25", false},
                                         TypedCase{Setting::BlurAmount, "", 0, "0", false},
                                         TypedCase{Setting::BrushDiameter, "0", 1, "1", true},
                                         TypedCase{Setting::BrushDiameter, "12.6", 12.6, "13", true},
                                         TypedCase{Setting::BrushDiameter, "-", 1, "1", true},
                                         TypedCase{Setting::Contrast, "-250", -100, "-100", false},
                                         TypedCase{Setting::Highlights, "150", 150, "150", false},
                                         TypedCase{Setting::Saturation, "7", 7, "7", false},
                                         TypedCase{Setting::InFocusWarmth, "-30", -30, "-30", false},
                                         // Cross-wired: hardness takes the number in the diameter's field.
                                         TypedCase{Setting::BrushHardness, "10", 40, "40", true}));

TEST_F(SettingsPanelTest, TypedHardnessStopsAtItsOwnMaximum)
{
    m_panel.slider(Setting::BrushDiameter)->setValue(250);
    m_panel.setAllTextsForSliders();
    type(Setting::BrushHardness, QStringLiteral("10"));
    EXPECT_EQ(value(Setting::BrushHardness), 100);
    EXPECT_EQ(shown(Setting::BrushHardness), QStringLiteral("100"));
}

TEST_F(SettingsPanelTest, ASlowlyTypedNumberStaysOneNumber)
{
    QLineEdit *field = m_panel.field(Setting::BlurAmount);
    field->setFocus();
    type(Setting::BlurAmount, QStringLiteral("4"));
    QTest::keyClicks(field, QStringLiteral("5"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return value(Setting::BlurAmount) == 45; }));
    // A corrected number gives way to what is typed next.
    type(Setting::BlurAmount, QStringLiteral("450"));
    EXPECT_EQ(field->selectedText(), QStringLiteral("100"));
    QTest::keyClicks(field, QStringLiteral("7"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return value(Setting::BlurAmount) == 7; }));
}

TEST_F(SettingsPanelTest, WhatIsTypedWaitsForTheDelayAndChangesNothingOnceAnExportBegan)
{
    QLineEdit *field = m_panel.field(Setting::BlurAmount);
    for (const bool exporting : {false, true}) {
        field->selectAll();
        QTest::keyClicks(field, exporting ? QStringLiteral("7") : QStringLiteral("9"));
        EXPECT_EQ(value(Setting::BlurAmount), exporting ? 9 : 60);
        m_panel.setEnabled(!exporting);
        letTimersFire(300);
        EXPECT_EQ(value(Setting::BlurAmount), 9);
        EXPECT_EQ(field->text(), QStringLiteral("9"));
        EXPECT_EQ(m_effect.size(), 1);
    }
}

TEST_F(SettingsPanelTest, OnlyAPersonsChangeSendsAnAction)
{
    for (const SettingRow &row : settingsTable())
        m_panel.slider(row.setting)->setValue(row.maxValue);
    m_panel.resetAllSlidersAndTextfields();
    m_panel.colorPickerVignette()->setColor(Qt::red);
    EXPECT_TRUE(m_effect.isEmpty() && m_process.isEmpty() && m_brush.isEmpty());
}

TEST_F(SettingsPanelTest, EverySliderSendsItsOwnAction)
{
    QSignalSpy diameter(&m_panel, &SettingsPanel::brushDiameterSlid);
    QSignalSpy hardness(&m_panel, &SettingsPanel::brushHardnessSlid);
    QSignalSpy automatic(&m_panel, &SettingsPanel::brushSizeAutoSlid);
    qsizetype effects = 0;
    for (const SettingRow &row : settingsTable()) {
        m_panel.slider(row.setting)->stepBy(1);
        if (row.region != SettingRegion::Brush) {
            EXPECT_EQ(shown(row.setting), wholeNumberText(value(row.setting))) << row.name;
            effects += row.setting == Setting::BlurAmount ? 0 : 1;
        }
        EXPECT_EQ(m_effect.size(), effects) << row.name;
    }
    EXPECT_EQ(diameter.size(), 1);
    EXPECT_EQ(hardness.size(), 1);
    EXPECT_EQ(automatic.size(), 1);
    EXPECT_EQ(m_process.size(), 1) << "one request a move of the blur slider";
}

TEST_F(SettingsPanelTest, KeysAndWheelOnAFieldStepItsSlider)
{
    QLineEdit *field = m_panel.field(Setting::BlurAmount);
    field->setFocus();
    QTest::keyClick(field, Qt::Key_Up);
    EXPECT_EQ(value(Setting::BlurAmount), 61);
    EXPECT_EQ(shown(Setting::BlurAmount), QStringLiteral("61"));
    QTest::keyClick(field, Qt::Key_PageDown);
    EXPECT_EQ(value(Setting::BlurAmount), 51);
    EXPECT_EQ(m_process.size(), 2);
    const auto turn = [](QLineEdit *target) {
        QWheelEvent wheel(QPointF(5, 5), target->mapToGlobal(QPointF(5, 5)), {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(target, &wheel);
    };
    turn(field);
    EXPECT_EQ(value(Setting::BlurAmount), 52);
    turn(m_panel.field(Setting::BrushHardness)); // not what the person works in: scrolling past it changes nothing
    EXPECT_EQ(value(Setting::BrushHardness), 0);
}

TEST_F(SettingsPanelTest, EveryResetRestoresItsGroupAndAsksForAPreview)
{
    const auto initial = values();
    const auto disturb = [&] {
        for (const SettingRow &row : settingsTable())
            m_panel.slider(row.setting)->setValue(row.maxValue);
        m_panel.setAllTextsForSliders();
    };
    const std::map<SettingsPanel::ResetTag, std::vector<Setting>> groups{
        {SettingsPanel::kResetMasking, {Setting::BrushDiameter, Setting::BrushHardness}},
        {SettingsPanel::kResetBlur,
         {Setting::BlurAmount, Setting::Contrast, Setting::Highlights, Setting::Saturation, Setting::Warmth}},
        {SettingsPanel::kResetNothing, {}},
        {SettingsPanel::kResetInFocus,
         {Setting::InFocusBrightness, Setting::InFocusSharpness, Setting::InFocusClarity, Setting::InFocusVividness,
          Setting::InFocusWarmth}}};
    m_panel.setAllSettingsShown(true);
    EXPECT_EQ(m_panel.resetButton(SettingsPanel::kResetNothing), nullptr);
    for (const auto &[tag, group] : groups) {
        disturb();
        m_effect.clear();
        m_brush.clear();
        if (HighlightButton *button = m_panel.resetButton(tag))
            QTest::mouseClick(button, Qt::LeftButton);
        else
            m_panel.btnResetSliderSettingsTapped(tag); // it resets nothing, and has no button
        for (const SettingRow &row : settingsTable()) {
            const bool isReset = std::find(group.begin(), group.end(), row.setting) != group.end();
            EXPECT_EQ(value(row.setting), isReset ? initial.at(row.setting) : row.maxValue) << row.name << tag;
            EXPECT_EQ(shown(row.setting), wholeNumberText(value(row.setting))) << row.name;
        }
        EXPECT_EQ(m_effect.size(), 1) << tag;
        EXPECT_EQ(m_brush.size(), tag == SettingsPanel::kResetMasking ? 1 : 0) << tag;
    }
    disturb();
    m_panel.resetAllSlidersAndTextfields();
    EXPECT_EQ(value(Setting::Vignette), 0.3) << "opening a photo keeps the vignette";
    EXPECT_EQ(value(Setting::BrushDiameter), 40);
    EXPECT_EQ(value(Setting::InFocusVividness), 50);
}

TEST_F(SettingsPanelTest, ARecordHoldsTheSlidersUnscaled)
{
    for (const SettingRow &row : settingsTable())
        m_panel.slider(row.setting)->setValue(row.minValue + 0.25 * (row.maxValue - row.minValue));
    m_panel.colorPickerVignette()->setColor(Qt::red);
    const CoreFilterObject record = m_panel.createPresetObjectFromSettingWithTitle(QStringLiteral("mine"));
    EXPECT_EQ(record.strPresetTitle, QStringLiteral("mine"));
    EXPECT_EQ(record.blurAmount, 25.0f);
    EXPECT_EQ(record.vignetteAmount, 0.075f);
    EXPECT_EQ(record.contrastAmount, -50.0f);
    EXPECT_EQ(record.highlightsAmount, 50.0f);
    EXPECT_EQ(record.saturationAmount, 25.0f);
    EXPECT_EQ(record.warmthAmount, -50.0f);
    EXPECT_EQ(record.motionBlurAmount, 25.0f);
    EXPECT_EQ(record.motionRadialTwist, 0.0f) << "not taken over";
    EXPECT_EQ(record.motionLinearAngle, 0.0f) << "not taken over";
    EXPECT_EQ(record.inFocusBrightness, -50.0f);
    EXPECT_EQ(record.inFocusSharpness, 25.0f);
    EXPECT_EQ(record.inFocusClarity, -50.0f);
    EXPECT_EQ(record.inFocusVividness, 25.0f);
    EXPECT_EQ(record.inFocusWarmth, -50.0f);
    EXPECT_EQ(record.colorVignette, QColor(Qt::red));
    EXPECT_TRUE(QRegularExpression(QStringLiteral(R"(^\w+-\d\d-\d{4} \d\d:\d\d:\d\d? .+$)"))
                    .match(record.dateString)
                    .hasMatch())
        << record.dateString.toStdString();
}

TEST_F(SettingsPanelTest, TheColourPanelBelongsToTheWell)
{
    ColorWell *well = m_panel.colorPickerVignette();
    m_panel.setAllSettingsShown(true);
    QTest::mouseClick(well, Qt::LeftButton);
    ASSERT_NE(well->colorPanel(), nullptr);
    EXPECT_FALSE(well->colorPanel()->isModal());
    QTest::mouseClick(well, Qt::LeftButton);
    for (const QColor &color : {QColor(Qt::blue), QColor(Qt::blue), QColor()}) {
        emit well->colorPanel()->currentColorChanged(color);
        EXPECT_EQ(well->color(), QColor(Qt::blue));
    }
    EXPECT_EQ(m_process.size(), 1);
    well->closeColorPanel();
    EXPECT_TRUE(QTest::qWaitFor([&] { return well->colorPanel() == nullptr; }));
    EXPECT_EQ(well->color(), QColor(Qt::blue));
}

TEST_F(SettingsPanelTest, TheToolButtonsSayWhichToolIsWanted)
{
    QSignalSpy tapped(&m_panel, &SettingsPanel::segmentPaintEraseTapped);
    const auto showsEraser = [this] {
        EXPECT_NE(m_panel.btnEraser()->isChecked(), m_panel.btnPaint()->isChecked());
        return m_panel.btnEraser()->isChecked();
    };
    QTest::mouseClick(m_panel.btnEraser(), Qt::LeftButton);
    EXPECT_FALSE(showsEraser()) << "nobody has said so";
    QObject::connect(&m_panel, &SettingsPanel::segmentPaintEraseTapped, &m_panel, &SettingsPanel::showTool);
    for (const bool eraser : {true, true, false, false}) { // the tool in force stays on
        QTest::mouseClick(eraser ? m_panel.btnEraser() : m_panel.btnPaint(), Qt::LeftButton);
        EXPECT_EQ(tapped.back()[0].toBool(), eraser);
        EXPECT_EQ(showsEraser(), eraser);
    }
    EXPECT_EQ(tapped.size(), 5);
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
    EXPECT_EQ(numberInText(QStringLiteral("12,5"), french), 12.5);
    EXPECT_EQ(numberInText(QStringLiteral("12.5"), french), 12.5);
    EXPECT_TRUE(std::isinf(numberInText(QStringLiteral("1e999"), c)));
    for (const auto &[number, text] : {std::pair{12.5, "12"}, {13.5, "14"}, {-0.4, "0"}, {-99.6, "-100"}})
        EXPECT_EQ(wholeNumberText(number).toStdString(), text);
}
