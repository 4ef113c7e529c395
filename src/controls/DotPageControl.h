#pragma once

#include <QColor>
#include <QWidget>

namespace hazelmark {

/// A row of dots, one a page, that shows the current page and lets a person choose one. Only a person's choice sends
/// `pageSelected`.
class DotPageControl : public QWidget
{
    Q_OBJECT

public:
    explicit DotPageControl(QWidget *parent = nullptr);

    int numberOfPages() const { return m_numberOfPages; }
    void setNumberOfPages(int pages); ///< the current page moves into the range
    int currentPage() const { return m_currentPage; }
    void setCurrentPage(int page);

    /// In points.
    void setDotSize(qreal diameter, qreal margin);
    void setDotColors(const QColor &fill, const QColor &currentFill, const QColor &stroke);

    /// The dots side by side, without a margin around them.
    QSize sizeHint() const override;

signals:
    void pageSelected(int page);

protected:
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QRectF dotRect(int page) const;
    int pageAt(const QPointF &point) const; ///< −1 when no dot is there
    void select(int page);

    int m_numberOfPages = 0;
    int m_currentPage = 0;
    qreal m_diameter = 10;
    qreal m_margin = 6;
    QColor m_fill;
    QColor m_currentFill;
    QColor m_stroke;
};

} // namespace hazelmark
