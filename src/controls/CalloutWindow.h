#pragma once

#include <QPainterPath>
#include <QWidget>

namespace hazelmark {

/// A small window that says something, with an arrow at the view it belongs to. It takes neither focus nor presses, and
/// goes after a while.
class CalloutWindow : public QWidget
{
    Q_OBJECT

public:
    CalloutWindow(const QString &text, QWidget *parent);

    /// Shows the callout below `anchor`, its arrow on the middle of the edge, or as near to that as the screen allows;
    /// where there is no room it stands above.
    void showBelow(const QWidget &anchor);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QPainterPath outline() const;
    void layOut(bool isBelow);

    QWidget *m_content;
    bool m_isBelow = true;   ///< the arrow is on top then
    int m_arrowPosition = 0; ///< along that side, in points
};

} // namespace hazelmark
