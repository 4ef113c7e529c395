#include "EmailComposer.h"

#include "Log.h"
#include "Workspace.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QRandomGenerator>

#include <utility>

namespace hazelmark {

namespace {

const QString kPortalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPortalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kEmailInterface = QStringLiteral("org.freedesktop.portal.Email");
const QString kRequestInterface = QStringLiteral("org.freedesktop.portal.Request");
const QString kXdgEmail = QStringLiteral("xdg-email");
constexpr uint kResponseOther = 2; // 0 is done, 1 is turned down by the person

/// The session's bus where there is one; asking for it where there is none would start one.
std::optional<QDBusConnection> sessionBus()
{
    const bool announced = !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") ||
                           QFile::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus"));
    const QDBusConnection bus = announced ? QDBusConnection::sessionBus() : QDBusConnection(QString());
    return bus.isConnected() ? std::optional(bus) : std::nullopt;
}

} // namespace

EmailComposer::EmailComposer(QObject *parent)
    : EmailComposer(sessionBus(), parent)
{
}

EmailComposer::EmailComposer(const std::optional<QDBusConnection> &bus, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
{
}

void EmailComposer::composeWithAttachment(const QString &path, Completion completion)
{
    finish(true); // a message that the person has not answered yet is done with
    m_path = path;
    m_completion = std::move(completion);
    if (m_bus)
        composeThroughPortal();
    else
        composeThroughXdgEmail();
}

void EmailComposer::composeThroughPortal()
{
    qDBusRegisterMetaType<QList<QDBusUnixFileDescriptor>>();
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly)) {
        finish(false);
        return;
    }
    const QString token = QStringLiteral("hazelmark%1").arg(QRandomGenerator::global()->generate());
    // The portal answers from an object whose path is known beforehand, so that no answer comes too early.
    QString sender = m_bus->baseService().mid(1);
    sender.replace(QLatin1Char('.'), QLatin1Char('_'));
    m_requestPath = kPortalPath + QStringLiteral("/request/") + sender + QLatin1Char('/') + token;
    m_bus->connect(kPortalService, m_requestPath, kRequestInterface, QStringLiteral("Response"), this,
                   SLOT(portalResponded(uint, QVariantMap)));

    QDBusMessage call =
        QDBusMessage::createMethodCall(kPortalService, kPortalPath, kEmailInterface, QStringLiteral("ComposeEmail"));
    const QList<QDBusUnixFileDescriptor> attachments{QDBusUnixFileDescriptor(file.handle())};
    call << QString() // the window that the portal's own dialogs belong to; none
         << QVariantMap{{QStringLiteral("handle_token"), token},
                        {QStringLiteral("attachment_fds"), QVariant::fromValue(attachments)}};
    auto *watcher = new QDBusPendingCallWatcher(m_bus->asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, requestPath = m_requestPath](auto *done) {
        done->deleteLater();
        const QDBusPendingReply<QDBusObjectPath> reply = *done;
        if (reply.isError() && m_requestPath == requestPath) {
            qCInfo(lcScreen) << "No e-mail through the portal:" << reply.error().message();
            composeThroughXdgEmail();
        }
    });
}

void EmailComposer::portalResponded(uint response, const QVariantMap &)
{
    if (response == kResponseOther)
        composeThroughXdgEmail();
    else
        finish(true);
}

void EmailComposer::composeThroughXdgEmail()
{
    Workspace::sharedWorkspace().launch(kXdgEmail, {QStringLiteral("--attach"), m_path},
                                        [self = QPointer(this), path = m_path](bool opened) {
                                            if (self && self->m_path == path)
                                                self->finish(opened);
                                        });
}

void EmailComposer::finish(bool opened)
{
    if (m_bus && !m_requestPath.isEmpty())
        m_bus->disconnect(kPortalService, m_requestPath, kRequestInterface, QStringLiteral("Response"), this,
                          SLOT(portalResponded(uint, QVariantMap)));
    m_requestPath.clear();
    m_path.clear();
    if (const Completion completion = std::exchange(m_completion, {}))
        completion(opened);
}

} // namespace hazelmark
