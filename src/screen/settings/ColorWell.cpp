#include "ColorWell.h"

#include "FocusRing.h"
#include "Theme.h"

#include <QPainter>

namespace hazelmark {

namespace {

constexpr QSize kSize{48, 24};
constexpr qreal kRadius = 4;
constexpr qreal kDisabledOpacity = 0.4;

} // namespace

ColorWell::ColorWell(const QColor &color, QWidget *parent)
    : QAbstractButton(parent)
    , m_color(color)
{
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, &ColorWell::openColorPanel);
}

void ColorWell::setColor(const QColor &color)
{
    if (!color.isValid() || color == m_color)
        return;
    m_color = color;
    update();
}

void ColorWell::setColorByUser(const QColor &color)
{
    const QColor before = m_color;
    setColor(color);
    if (m_color != before)
        emit colorChangedByUser(m_color);
}

void ColorWell::openColorPanel()
{
    if (m_panel) {
        m_panel->raise();
        m_panel->activateWindow();
        return;
    }
    m_panel = new QColorDialog(m_color, this);
    m_panel->setAttribute(Qt::WA_DeleteOnClose);
    // The desktop's own colour dialogs cannot be closed from here while they wait.
    m_panel->setOption(QColorDialog::DontUseNativeDialog);
    m_panel->setOption(QColorDialog::NoButtons);
    m_panel->setWindowTitle(accessibleName());
    m_panel->setModal(false);
    connect(m_panel, &QColorDialog::currentColorChanged, this, &ColorWell::setColorByUser);
    m_panel->show();
}

void ColorWell::closeColorPanel()
{
    if (m_panel)
        m_panel->close();
}

QSize ColorWell::sizeHint() const
{
    return kSize;
}

void ColorWell::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1.0 : kDisabledOpacity);
    painter.setPen(underMouse() ? theme::kQuietText : theme::kDisabledText);
    painter.setBrush(m_color);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);
    drawFocusRing(painter, *this);
}

} // namespace hazelmark
