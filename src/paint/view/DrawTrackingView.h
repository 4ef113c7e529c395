#pragma once

#include <QWidget>

namespace hazelmark {

class PaintView;

/// A transparent view over the photo that tells of the pointer while the canvas is hidden: posts
/// "notificationMouseIn" when it comes and "notificationMouseout" when it goes. A finger that touches it has come, and
/// what it does from then on goes to the canvas if that is shown thereupon.
class DrawTrackingView : public QWidget
{
    Q_OBJECT

public:
    /// `canvas`: lies on top; nothing is told while a stroke on it is under way. There as long as this view is shown.
    explicit DrawTrackingView(const PaintView &canvas, QWidget *parent = nullptr);

    /// Stored; nothing reads it.
    int currentState() const { return m_currentState; }
    void setCurrentState(int currentState) { m_currentState = currentState; }

protected:
    bool event(QEvent *event) override;

private:
    int m_currentState = 0;
};

} // namespace hazelmark
