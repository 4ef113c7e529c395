#pragma once

#include "Sheet.h"

#include <QElapsedTimer>
#include <QString>

#include <chrono>

class QLabel;
class QPushButton;

namespace hazelmark {

class ApplicationDelegate;

/// A warning with one button or two, to be shown as a sheet. `finished` carries one of the returns below.
class AlertSheet : public Sheet
{
    Q_OBJECT

public:
    enum Return {
        DefaultReturn = Accepted,
        AlternateReturn = Rejected,
        Dismissed = -1, ///< closed, or Esc, where there were two buttons to choose from
    };

    /// `title` says what happened, `message` what there is to know and do. Without an `alternateButton` there is only
    /// one answer.
    AlertSheet(const QString &title, const QString &message, const QString &defaultButton,
               const QString &alternateButton = {});

    /// The resource name of the image beside the title; at first "warning".
    void setIcon(const QString &name);

    QString messageText() const { return m_title; }
    QString informativeText() const { return m_message; }
    QPushButton *defaultButton() const { return m_defaultButton; }
    QPushButton *alternateButton() const { return m_alternateButton; } ///< may be null

    /// The one way in which the main screen says that something went wrong: on a sheet of `window`, in its turn, with
    /// the localised "OK" as the only button.
    static void showAlertWithTitle(QWidget &window, ApplicationDelegate &application, const QString &title,
                                   const QString &andMessage);

    void reject() override;

    /// For a sheet that comes up by itself: keys of its first moments were typed for something else and answer
    /// nothing.
    void setDeafFor(std::chrono::milliseconds time) { m_deafFor = time; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    QString m_title;
    QString m_message;
    QLabel *m_icon;
    std::chrono::milliseconds m_deafFor{0};
    QElapsedTimer m_shown;
    QPushButton *m_defaultButton;
    QPushButton *m_alternateButton = nullptr;
};

} // namespace hazelmark
