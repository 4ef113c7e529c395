#pragma once

#include <QPainterPath>
#include <QWidget>

namespace hazelmark {

/// A small window that points with an arrow at the view it belongs to. A press elsewhere, or Esc, closes it.
class CalloutWindow : public QWidget
{
    Q_OBJECT

public:
    /// `content` becomes a child of the callout and gives it its size.
    explicit CalloutWindow(QWidget *content, QWidget *parent = nullptr);
    /// A callout that only says something: it takes neither focus nor presses, and goes after a while.
    static CalloutWindow *saying(const QString &text, QWidget *parent);

    /// Shows the callout at `edge` of `anchor`, its arrow on the edge's middle, or as near to that as the screen
    /// allows. Where there is no room on that side it stands on the opposite one.
    void showRelativeTo(const QWidget &anchor, Qt::Edge edge);

signals:
    void closed();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QPainterPath outline() const;
    void layOut(Qt::Edge arrowSide);

    CalloutWindow(QWidget *content, QWidget *parent, Qt::WindowFlags flags);

    QWidget *m_content;
    bool m_takesFocus = true;
    Qt::Edge m_arrowSide = Qt::TopEdge; ///< of the callout
    int m_arrowPosition = 0;            ///< along that side, in points
};

} // namespace hazelmark
