#pragma once

#include <QColor>
#include <QWidget>

namespace hazelmark {

/// A progress indicator of two flat fills: the done part from the left, the rest beside it.
class BarProgressIndicator : public QWidget
{
    Q_OBJECT

public:
    BarProgressIndicator(const QRect &frame, const QColor &progressColor, const QColor &emptyColor, double minValue,
                         double maxValue, double currentValue, QWidget *parent = nullptr);

    QColor progressColor() const { return m_progressColor; }
    void setProgressColor(const QColor &color);
    QColor emptyColor() const { return m_emptyColor; }
    void setEmptyColor(const QColor &color);

    double minValue() const { return m_minValue; }
    double maxValue() const { return m_maxValue; }
    double value() const { return m_value; }
    void setValue(double value);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QColor m_progressColor;
    QColor m_emptyColor;
    double m_minValue;
    double m_maxValue;
    double m_value;
};

} // namespace hazelmark
