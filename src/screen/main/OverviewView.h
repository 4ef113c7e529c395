#pragma once

#include <QImage>
#include <QRectF>
#include <QWidget>

namespace hazelmark {

/// The whole photo, small, with a frame around what is in sight of it. A press or a drag wants that place in the
/// middle.
class OverviewView : public QWidget
{
    Q_OBJECT

public:
    /// The longer side at most.
    static constexpr int kLongestSide = 160;

    explicit OverviewView(QWidget *parent = nullptr);

    /// The photo as it is shown at fit.
    void setImage(const QImage &shown);
    /// Sizes the view for a photo of these proportions, and frames `part`, as fractions of it.
    void setPart(QSizeF photo, const QRectF &part);
    const QRectF &part() const { return m_part; }

signals:
    /// This fraction of the photo is wanted in the middle.
    void placeWanted(QPointF fraction);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    QRectF picture() const;
    void want(QPointF position);

    QImage m_image;
    QImage m_small; ///< of the picture's size in pixels; null until it is needed
    QRectF m_part;
};

} // namespace hazelmark
