#pragma once

#include <QWidget>

namespace hazelmark {

/// A transparent view over the photo that tells of the pointer while the canvas is hidden: posts
/// "notificationMouseIn" when it comes and "notificationMouseout" when it goes. A finger that touches it has come, and
/// what it does from then on goes to the canvas if that is shown thereupon.
class DrawTrackingView : public QWidget
{
    Q_OBJECT

public:
    explicit DrawTrackingView(QWidget *parent = nullptr);

    /// Stored; nothing reads it.
    int currentState() const { return m_currentState; }
    void setCurrentState(int currentState) { m_currentState = currentState; }

protected:
    bool event(QEvent *event) override;

private:
    int m_currentState = 0;
};

} // namespace hazelmark
