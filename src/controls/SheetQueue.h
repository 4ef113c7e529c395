#pragma once

#include <QDialog>
#include <QObject>
#include <QPointer>

#include <deque>

class QWidget;

namespace hazelmark {

/// The sheets of one window: dialogs that block that window alone and come one after the other, however many are due.
/// Nothing waits for a sheet: its owner hears of the answer through the dialog's own signals. Where the desktop
/// activates the window that a sheet blocks, the sheet takes the keyboard back. On a window that is closed no sheet is
/// shown: it waits for the window to come back.
class SheetQueue : public QObject
{
    Q_OBJECT

public:
    /// The queue of `window`, which owns it.
    static SheetQueue &forWindow(QWidget &window);

    /// Shows `sheet` now, or as soon as the sheets before it are finished. The queue owns it, and ends it after its
    /// `finished` signal. A sheet that is destroyed while it waits is left out.
    void present(QDialog *sheet);

    /// The sheet on show; null when there is none.
    QDialog *current() const { return m_current; }
    /// How many sheets wait behind the one on show.
    int waiting() const;

    /// No new sheet is shown while a hold lives: for a pop-up that a sheet would tear from the person's hand.
    class [[nodiscard]] Hold
    {
    public:
        explicit Hold(SheetQueue &queue);
        ~Hold();
        Hold(const Hold &) = delete;
        Hold &operator=(const Hold &) = delete;

    private:
        QPointer<SheetQueue> m_queue;
    };

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit SheetQueue(QWidget &window);
    void showNext();

    QWidget &m_window;
    QPointer<QDialog> m_current;
    std::deque<QPointer<QDialog>> m_waiting;
    int m_holds = 0;
};

} // namespace hazelmark
