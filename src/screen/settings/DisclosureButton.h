#pragma once

#include <QAbstractButton>

namespace hazelmark {

/// A line of quiet text behind a small arrow, which points down while what belongs to it is unfolded (`isChecked`).
class DisclosureButton : public QAbstractButton
{
    Q_OBJECT

public:
    explicit DisclosureButton(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QFont textFont() const;
};

} // namespace hazelmark
