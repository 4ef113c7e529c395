#pragma once

#include <QDialog>

namespace hazelmark {

/// A dialog that belongs to one window and looks it: without a frame of the desktop's, under the window's title strip,
/// in its middle. To be presented by the window's SheetQueue.
class Sheet : public QDialog
{
    Q_OBJECT

public:
    Sheet();

protected:
    void showEvent(QShowEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
};

} // namespace hazelmark
