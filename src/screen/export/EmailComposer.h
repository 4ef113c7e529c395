#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>

namespace hazelmark {

/// Opens a new message with a file attached in the person's mail program: through the desktop's portal, or through
/// xdg-email where there is none or it fails.
class EmailComposer : public QObject
{
    Q_OBJECT

public:
    /// `opened` is false when neither way led to a mail program. A person who turns the message down is no failure.
    using Completion = std::function<void(bool opened)>;

    explicit EmailComposer(QObject *parent = nullptr);
    /// With a bus of the caller's, or none.
    EmailComposer(const std::optional<QDBusConnection> &bus, QObject *parent = nullptr);

    /// Nothing waits: `completion` is called once, later, on the main thread.
    void composeWithAttachment(const QString &path, Completion completion);

private slots:
    void portalResponded(uint response, const QVariantMap &results);

private:
    void composeThroughPortal();
    void composeThroughXdgEmail();
    void finish(bool opened);

    std::optional<QDBusConnection> m_bus;
    QString m_path;
    Completion m_completion;
    QString m_requestPath;
};

} // namespace hazelmark
