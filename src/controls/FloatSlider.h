#pragma once

#include "CustomSliderCell.h"

#include <QBasicTimer>
#include <QWidget>

#include <functional>
#include <optional>
#include <utility>

namespace hazelmark {

/// A horizontal slider with a floating-point value. Only a person's change (pointer, keys, wheel, assistive
/// technology) sends the action `valueChangedByUser`; `setValue` never does.
///
/// The wheel acts only while the slider has the focus: a panel that is scrolled under the pointer changes nothing. Of a
/// drag it takes one move a frame of the screen, none while what a move has started is still being done
/// (`setBusyTest()`), and always the last one: a mouse tells a thousand places a second, and to show something for each
/// of them would only leave the picture behind the pointer.
class FloatSlider : public QWidget
{
    Q_OBJECT

public:
    static constexpr qreal kTrackInset = 4.0; ///< from the slider's sides to the track, in points

    explicit FloatSlider(QWidget *parent = nullptr);

    double minValue() const { return m_minValue; }
    double maxValue() const { return m_maxValue; }
    /// A maximum below the minimum counts as the minimum. The value moves into the range.
    void setRange(double minValue, double maxValue);

    double value() const { return m_value; }
    /// Values outside the range, and what is no number, become the nearest end (the minimum).
    void setValue(double value);
    /// The value's place between minimum and maximum, 0..1; 0 when both are one.
    double fraction() const;

    /// What an arrow key and a notch of the wheel add: 1, or a hundredth of a range shorter than 10.
    double singleStep() const;
    /// Moves the value by steps as a person would, with the action.
    void stepBy(double steps);
    /// Sets the value as a person would, with the action when it changes.
    void setValueByUser(double value);

    /// Says whether what an earlier move of a drag has started is still being done.
    void setBusyTest(std::function<bool()> isBusy) { m_isBusy = std::move(isBusy); }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void valueChangedByUser(double value);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QRectF knobRect() const;
    QRectF barRect() const;
    void dragTo(qreal x);
    void takeLastMove();
    void takeLastMoveIfIdle();
    void endDrag();

    double m_minValue = 0;
    double m_maxValue = 1;
    double m_value = 0;
    bool m_dragging = false;
    qreal m_grip = 0;                ///< from the knob's centre to where the pointer holds it
    QBasicTimer m_frame;             ///< runs for a frame from the move that was taken last
    std::optional<qreal> m_lastMove; ///< not taken yet
    std::function<bool()> m_isBusy;
    CustomSliderCell m_cell{*this};
};

} // namespace hazelmark
