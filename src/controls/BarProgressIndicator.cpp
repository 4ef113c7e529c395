#include "BarProgressIndicator.h"

#include "AccessibleValue.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace hazelmark {

BarProgressIndicator::BarProgressIndicator(const QRect &frame, const QColor &progressColor, const QColor &emptyColor,
                                           double minValue, double maxValue, double currentValue, QWidget *parent)
    : QWidget(parent)
    , m_progressColor(progressColor)
    , m_emptyColor(emptyColor)
    , m_minValue(minValue)
    , m_maxValue(maxValue)
    , m_value(currentValue)
{
    setGeometry(frame);
    installAccessibleValues();
}

void BarProgressIndicator::setProgressColor(const QColor &color)
{
    m_progressColor = color;
    update();
}

void BarProgressIndicator::setEmptyColor(const QColor &color)
{
    m_emptyColor = color;
    update();
}

void BarProgressIndicator::setValue(double value)
{
    if (value == m_value)
        return;
    m_value = value;
    announceValue(*this, value);
    update();
}

void BarProgressIndicator::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const double width = this->width();
    // The minimum is not subtracted: the bar shows the value's share of the maximum.
    const double share = m_maxValue > 0 ? m_value / m_maxValue : 0;
    const double done = std::floor(std::clamp(share, 0.0, 1.0) * width);
    painter.fillRect(QRectF(0, 0, done, height()), m_progressColor);
    painter.fillRect(QRectF(done, 0, width - done, height()), m_emptyColor);
}

} // namespace hazelmark
