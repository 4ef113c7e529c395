#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>

namespace hazelmark {

class CalloutWindow;
class MainScreenView;

/// Says a sentence that asks for nothing: in the bottom bar, and where there is none, in a callout under the title
/// strip. It goes after a while.
class Notices : public QObject
{
    Q_OBJECT

public:
    /// `view` outlives it.
    explicit Notices(MainScreenView &view);

    void say(const QString &text);

private:
    MainScreenView &m_view;
    QPointer<CalloutWindow> m_callout;
    QString m_said; ///< in the bar
    QTimer m_read;  ///< by then a person has read it
};

} // namespace hazelmark
