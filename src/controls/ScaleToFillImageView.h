#pragma once

#include <QPixmap>
#include <QWidget>

namespace hazelmark {

/// Shows a picture so that it covers the whole view without being distorted: it is scaled to the larger of the two
/// ratios, centred, and what stands over is cut off.
class ScaleToFillImageView : public QWidget
{
    Q_OBJECT

public:
    explicit ScaleToFillImageView(QWidget *parent = nullptr);

    const QPixmap &image() const { return m_image; }
    /// Its size is its pixel size over its backing scale.
    void setImage(const QPixmap &image);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QPixmap m_image;
};

} // namespace hazelmark
