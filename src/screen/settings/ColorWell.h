#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QColorDialog>
#include <QPointer>

namespace hazelmark {

/// Shows a colour, and lets a person choose another in a colour panel that stands beside the window and blocks
/// nothing. Only a person's choice sends `colorChangedByUser`.
class ColorWell : public QAbstractButton
{
    Q_OBJECT

public:
    explicit ColorWell(const QColor &color, QWidget *parent = nullptr);

    QColor color() const { return m_color; }
    void setColor(const QColor &color);

    void openColorPanel();
    void closeColorPanel();
    QColorDialog *colorPanel() const { return m_panel; } ///< null unless it is open

    QSize sizeHint() const override;

signals:
    void colorChangedByUser(const QColor &color);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void setColorByUser(const QColor &color);

    QColor m_color;
    QPointer<QColorDialog> m_panel;
};

} // namespace hazelmark
