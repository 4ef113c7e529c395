#include "SettingRowView.h"

#include "ApplicationDelegate.h"
#include "FloatSlider.h"
#include "Theme.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QRegularExpressionValidator>
#include <QWheelEvent>

namespace hazelmark {

namespace {

constexpr int kFieldWidth = 48;
constexpr int kFieldHeight = 24;
constexpr int kLongestNumber = 12; // characters; room for anything that makes sense
constexpr double kPageSteps = 10;
constexpr double kWheelNotch = 120; // eighths of a degree

/// What a key on a field adds to its slider, in steps.
double stepsOfKey(int key)
{
    switch (key) {
    case Qt::Key_Up:
        return 1;
    case Qt::Key_Down:
        return -1;
    case Qt::Key_PageUp:
        return kPageSteps;
    case Qt::Key_PageDown:
        return -kPageSteps;
    default:
        return 0;
    }
}

/// "lblBrushSize" of the key "BRUSH_SIZE"; the other labels are named after their sliders.
QString labelName(const SettingRow &row)
{
    QString name;
    if (QLatin1String(row.labelKey).startsWith(QLatin1String("SLIDER_")))
        return QStringLiteral("lbl") + QLatin1String(row.name);
    for (const QString &word : QString::fromLatin1(row.labelKey).split(QLatin1Char('_')))
        name += word.left(1) + word.mid(1).toLower();
    return QStringLiteral("lbl") + name;
}

} // namespace

SettingRowView::SettingRowView(const SettingRow &row, QWidget *parent)
    : QWidget(parent)
    , m_row(row)
    , m_label(new QLabel)
    , m_field(new QLineEdit)
    , m_slider(new FloatSlider)
{
    const QString name = QLatin1String(row.name);
    m_label->setObjectName(labelName(row));
    m_label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // the panel's width is given
    m_field->setObjectName(QStringLiteral("txt") + name);
    m_field->setFixedSize(kFieldWidth, kFieldHeight);
    m_field->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_field->setMaxLength(kLongestNumber);
    m_field->installEventFilter(this);
    if (row.isTyped) {
        static const QRegularExpressionValidator kNumbers(QRegularExpression(QStringLiteral("[^\\p{L}\\[\\]{}]*")));
        m_field->setValidator(&kNumbers); // a letter is a key of the window's, not a part of a number
    } else {
        m_field->setReadOnly(true);
        m_field->setFrame(false);
        m_field->setFocusPolicy(Qt::NoFocus); // the slider is what the keyboard acts on
    }
    m_slider->setObjectName(QStringLiteral("slider") + name);
    m_slider->setRange(row.minValue, row.maxValue);
    m_slider->setValue(row.initialValue);

    auto *layout = new QGridLayout(this);
    layout->setContentsMargins({});
    layout->setHorizontalSpacing(theme::kSpacing);
    layout->setVerticalSpacing(0);
    layout->addWidget(m_label, 0, 0);
    layout->addWidget(m_field, 0, 1);
    layout->addWidget(m_slider, 1, 0, 1, 2);
    layout->setColumnStretch(0, 1);
    setTabOrder(m_field, m_slider);
}

void SettingRowView::setLocalizedStrings(ApplicationDelegate &application)
{
    const QString name = application.getLocalizedStringForKey(QLatin1String(m_row.labelKey));
    m_label->setText(name);
    m_slider->setAccessibleName(name);
    m_field->setAccessibleName(name);
}

bool SettingRowView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_field && event->type() == QEvent::KeyPress) {
        const double steps = stepsOfKey(static_cast<QKeyEvent *>(event)->key());
        if (steps != 0) {
            m_slider->stepBy(steps);
            return true;
        }
    }
    // Only with the focus, so that scrolling the panel changes nothing under the pointer.
    if (watched == m_field && event->type() == QEvent::Wheel && m_field->hasFocus()) {
        const auto *wheel = static_cast<QWheelEvent *>(event);
        m_slider->stepBy(wheel->angleDelta().y() / kWheelNotch);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace hazelmark
