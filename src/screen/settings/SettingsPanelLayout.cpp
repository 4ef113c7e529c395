// How the settings panel is put together; what it does stands in SettingsPanel.cpp.
#include "SettingsPanel.h"

#include "AccessibleRole.h"
#include "ApplicationDelegate.h"
#include "ColorWell.h"
#include "DisclosureButton.h"
#include "FloatSlider.h"
#include "HighlightButton.h"
#include "IMGButton.h"
#include "ImageButton.h"
#include "SettingRowView.h"
#include "Theme.h"
#include "ViewSettings.h"

#include <QKeySequence>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <tuple>

namespace hazelmark {

namespace {

constexpr int kToolStripHeight = 80;
constexpr int kResetHeight = 24;
constexpr int kRowSpacing = theme::kGrid;
constexpr int kGroupSpacing = theme::kMargin;

QLabel *quietLabel()
{
    auto *label = new QLabel;
    label->setFont(theme::systemFont(theme::kSmallTextSize));
    label->setWordWrap(true);
    label->setMinimumWidth(1); // long words do not widen the panel
    theme::setTextColor(*label, theme::kQuietText);
    return label;
}

QFrame *hairline()
{
    auto *line = new QFrame;
    line->setFixedHeight(1);
    theme::setGround(*line, theme::kHairline);
    return line;
}

} // namespace

SettingsPanel::SettingsPanel(ApplicationDelegate &application, QWidget *parent)
    : QWidget(parent)
    , m_application(application)
{
    setObjectName(QStringLiteral("vwSettingOptions"));
    setFixedWidth(kPanelWidthPoints);
    setAccessibleRole(*this, QAccessible::Grouping);
    theme::setGround(*this, theme::kPanel);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    makeTools(layout);
    layout->addWidget(hairline());

    for (const SettingRow &row : settingsTable())
        m_rows[static_cast<size_t>(row.setting)] = new SettingRowView(row, this);
    auto *document = new QWidget;
    auto *documentLayout = new QVBoxLayout(document);
    documentLayout->setContentsMargins(theme::kMargin, theme::kMargin, theme::kMargin, theme::kMargin);
    documentLayout->setSpacing(kRowSpacing);
    makeGroups(documentLayout);
    documentLayout->addStretch();

    m_scrollvwSettings = new QScrollArea;
    m_scrollvwSettings->setObjectName(QStringLiteral("scrollvwSettings"));
    m_scrollvwSettings->setFrameShape(QFrame::NoFrame);
    m_scrollvwSettings->setWidgetResizable(true);
    m_scrollvwSettings->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollvwSettings->setFocusPolicy(Qt::NoFocus);
    m_scrollvwSettings->setWidget(document);
    // The scroll bar takes its place from the margin, so that nothing moves when it comes and goes.
    QScrollBar *bar = m_scrollvwSettings->verticalScrollBar();
    connect(bar, &QScrollBar::rangeChanged, documentLayout, [bar, documentLayout](int minimum, int maximum) {
        QMargins margins = documentLayout->contentsMargins();
        margins.setRight(maximum > minimum ? theme::kMargin - bar->sizeHint().width() : theme::kMargin);
        documentLayout->setContentsMargins(margins);
    });
    layout->addWidget(m_scrollvwSettings, 1);

    connectActions();
    setLocalizedStrings();
    setAllSettingsShown(ViewSettings::showsAllSettings());
    setAllTextsForSliders();
}

void SettingsPanel::makeTools(QVBoxLayout *layout)
{
    m_btnPaint = imageButton("btnPaint", QStringLiteral("brush"), QStringLiteral("brush_selected"), this);
    m_btnEraser = imageButton("btnEraser", QStringLiteral("eraser"), QStringLiteral("eraser_select"), this);
    setAccessibleRole(*m_btnPaint, QAccessible::RadioButton);
    setAccessibleRole(*m_btnEraser, QAccessible::RadioButton);
    m_btnBlurEverything =
        imageButton("btnBlurEverything", QStringLiteral("fill"), QStringLiteral("fill_selected"), this);
    m_btnClearPainting =
        imageButton("btnClearPainting", QStringLiteral("clear"), QStringLiteral("clear_selected"), this);
    m_tabOrder << m_btnPaint << m_btnEraser << m_btnBlurEverything << m_btnClearPainting;
    m_toolName = quietLabel();
    auto *tools = new QHBoxLayout;
    // The buttons have a margin of their own around what is seen of them.
    tools->setContentsMargins(theme::kMargin - theme::kGrid, 0, theme::kMargin - theme::kGrid, 0);
    tools->setSpacing(0);
    tools->addWidget(m_btnPaint);
    tools->addWidget(m_btnEraser);
    tools->addSpacing(theme::kMargin);
    tools->addWidget(m_btnBlurEverything);
    tools->addWidget(m_btnClearPainting);
    tools->addStretch();
    auto *name = new QHBoxLayout;
    name->setContentsMargins(theme::kMargin, 0, theme::kMargin, 0);
    name->addWidget(m_toolName);
    auto *strip = new QWidget;
    strip->setFixedHeight(kToolStripHeight);
    auto *rows = new QVBoxLayout(strip);
    rows->setContentsMargins(0, theme::kGrid, 0, theme::kSpacing);
    rows->setSpacing(0);
    rows->addLayout(tools);
    rows->addLayout(name);
    layout->addWidget(strip);
}

QWidget *SettingsPanel::makeHeader(const char *titleKey, ResetTag tag)
{
    auto *title = new QLabel;
    title->setFont(theme::boldFont());
    title->setWordWrap(true);
    title->setMinimumWidth(1);
    m_headers.append({title, titleKey});

    auto *header = new QWidget;
    auto *layout = new QHBoxLayout(header);
    layout->setContentsMargins(0, 0, 0, theme::kGrid);
    layout->setSpacing(theme::kGrid);
    layout->addWidget(title, 1);
    if (tag == kResetNothing)
        return header;
    auto *reset = new HighlightButton(HighlightButton::kFlatTag);
    reset->setObjectName(QStringLiteral("btnReset%1").arg(tag));
    reset->setFont(theme::systemFont(theme::kSmallTextSize));
    reset->setFixedHeight(kResetHeight);
    m_resets.append({reset, tag, title});
    layout->addWidget(reset, 0, Qt::AlignTop);
    m_tabOrder << reset;
    return header;
}

void SettingsPanel::addGroup(QVBoxLayout *layout, const char *titleKey, ResetTag tag, const QList<Setting> &settings)
{
    layout->addWidget(makeHeader(titleKey, tag));
    for (const Setting setting : settings) {
        layout->addWidget(m_rows[static_cast<size_t>(setting)]);
        m_tabOrder << field(setting) << slider(setting);
    }
}

QWidget *SettingsPanel::makeColorRow()
{
    m_lblVignetteColor = new QLabel;
    m_lblVignetteColor->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_colorPickerVignette = new ColorWell(Qt::black);
    m_colorPickerVignette->setObjectName(QStringLiteral("colorPickerVignette"));
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->addWidget(m_lblVignetteColor, 1);
    layout->addWidget(m_colorPickerVignette);
    return row;
}

void SettingsPanel::makeGroups(QVBoxLayout *layout)
{
    using S = Setting;
    addGroup(layout, "GROUP_BRUSH", kResetMasking, {S::BrushDiameter, S::BrushHardness, S::BrushSizeAuto});
    layout->addSpacing(kGroupSpacing);
    addGroup(layout, "GROUP_BLUR", kResetBlur, {S::BlurAmount, S::Vignette});
    m_vignetteNote = quietLabel();
    layout->addWidget(m_vignetteNote);
    m_withoutEffect = new QWidget;
    m_withoutEffect->setObjectName(QStringLiteral("vwWithoutEffect"));
    layout->addWidget(m_withoutEffect);
    layout = new QVBoxLayout(m_withoutEffect);
    layout->setContentsMargins(0, kGroupSpacing, 0, 0);
    layout->setSpacing(kRowSpacing);
    layout->addWidget(hairline());
    layout->addSpacing(theme::kGrid);
    m_disclosure = new DisclosureButton;
    m_disclosure->setObjectName(QStringLiteral("btnMoreSettings"));
    layout->addWidget(m_disclosure);
    m_tabOrder << m_disclosure;

    m_folded = new QWidget;
    auto *folded = new QVBoxLayout(m_folded);
    folded->setContentsMargins(0, theme::kSpacing, 0, 0);
    folded->setSpacing(kRowSpacing);
    addGroup(folded, "GROUP_BLURRED_AREA", kResetNothing,
             {S::Contrast, S::Highlights, S::Saturation, S::Warmth, S::MotionBlurAmount, S::MotionRadialTwist,
              S::MotionLinearAngle, S::EdgeBlurAmount});
    folded->addSpacing(theme::kGrid);
    folded->addWidget(makeColorRow());
    m_tabOrder << m_colorPickerVignette;
    folded->addSpacing(kGroupSpacing);
    addGroup(folded, "GROUP_IN_FOCUS_AREA", kResetInFocus,
             {S::InFocusBrightness, S::InFocusSharpness, S::InFocusClarity, S::InFocusVividness, S::InFocusWarmth});
    layout->addWidget(m_folded);
}

void SettingsPanel::connectActions()
{
    for (const SettingRow &row : settingsTable()) {
        const Setting setting = row.setting;
        connect(slider(setting), &FloatSlider::valueChangedByUser, this, [this, setting] { sendAction(setting); });
        QLineEdit *field = this->field(setting);
        connect(field, &QLineEdit::textEdited, this, [this, field] { controlTextDidChange(field); });
    }
    for (const Reset &reset : std::as_const(m_resets))
        connect(reset.button, &QAbstractButton::clicked, this,
                [this, tag = reset.tag] { btnResetSliderSettingsTapped(tag); });
    for (const bool eraser : {false, true}) {
        IMGButton *button = eraser ? m_btnEraser : m_btnPaint;
        connect(button, &IMGButton::clicked, this, [this, eraser] { emit segmentPaintEraseTapped(eraser); });
        connect(button, &IMGButton::clickOver, this, [this] { showTool(m_toolIsEraser); });
    }
    connect(m_btnBlurEverything, &IMGButton::clicked, this, &SettingsPanel::blurEverythingTapped);
    connect(m_btnClearPainting, &IMGButton::clicked, this, &SettingsPanel::clearPaintingTapped);
    for (IMGButton *button : {m_btnBlurEverything, m_btnClearPainting}) // they push; an on state would only linger
        connect(button, &IMGButton::clickOver, button, [button] { button->setChecked(false); });
    connect(m_colorPickerVignette, &ColorWell::colorChangedByUser, this, &SettingsPanel::vignetteColorChanged);
    connect(m_disclosure, &QAbstractButton::toggled, this, &SettingsPanel::setUnfolded);
}

void SettingsPanel::setLocalizedStrings()
{
    setAccessibleName(lookup("SETTINGS_PANEL"));
    for (SettingRowView *row : m_rows)
        row->setLocalizedStrings(m_application);
    for (const auto &[label, key] : std::as_const(m_headers))
        label->setText(lookup(key));
    for (const auto &[reset, tag, title] : std::as_const(m_resets)) {
        reset->setText(lookup("RESET"));
        reset->setFixedWidth(reset->sizeHint().width() - theme::kMargin); // leaves the titles their room
        // Read out by itself a button has to say what it resets.
        reset->setAccessibleName(title->text() + QStringLiteral(": ") + lookup("RESET"));
    }
    const std::tuple<IMGButton *, const char *, QKeySequence> tools[] = {
        {m_btnPaint, "PAINT", Qt::Key_B},
        {m_btnEraser, "ERASE", Qt::Key_E},
        {m_btnBlurEverything, "BLUR_EVERYTHING", Qt::CTRL | Qt::SHIFT | Qt::Key_A},
        {m_btnClearPainting, "CLEAR_PAINTING", Qt::Key_Delete}};
    for (const auto &[button, key, shortcut] : tools) {
        button->setAccessibleName(lookup(key));
        button->setToolTip(lookup(key) + QStringLiteral(" (") + shortcut.toString(QKeySequence::NativeText) +
                           QLatin1Char(')'));
    }
    showTool(m_toolIsEraser);
    m_lblVignetteColor->setText(lookup("VIGNETTE_COLOR"));
    m_colorPickerVignette->setAccessibleName(lookup("VIGNETTE_COLOR"));
    m_disclosure->setText(lookup("SLIDERS_WITHOUT_EFFECT"));
    showVignetteStops();
    setButtonsHighlightColor();
}

void SettingsPanel::setButtonsHighlightColor()
{
    for (const Reset &reset : std::as_const(m_resets))
        reset.button->setButtonDefault();
}

void SettingsPanel::setUnfolded(bool unfolded)
{
    m_disclosure->setChecked(unfolded);
    m_folded->setVisible(unfolded);
}

void SettingsPanel::setAllSettingsShown(bool shown)
{
    m_withoutEffect->setVisible(shown);
    setUnfolded(shown);
}

bool SettingsPanel::isUnfolded() const
{
    return m_disclosure->isChecked();
}

void SettingsPanel::scrollToTop()
{
    m_scrollvwSettings->verticalScrollBar()->setValue(0);
}

} // namespace hazelmark
