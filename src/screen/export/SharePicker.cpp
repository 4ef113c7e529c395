#include "SharePicker.h"

#include "AlertSheet.h"
#include "ApplicationDelegate.h"
#include "FormatString.h"
#include "ImageCatalog.h"
#include "Log.h"
#include "Workspace.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QStandardPaths>

namespace hazelmark {

namespace {

struct BluetoothSender
{
    const char *program;
    const char *argument; ///< before the file; may be null
};

constexpr BluetoothSender kBluetoothSenders[] = {
    {"bluetooth-sendto", nullptr},
    {"bluedevil-sendfile", "-f"},
    {"blueman-sendto", nullptr},
};

/// A drawing without the margin that it has as a button: menus show icons at 16 points.
QIcon menuIcon(const char *image)
{
    constexpr double kDrawn = 64.0 / 3; // of 32 parts, 4 are the margin
    constexpr int kShown = 16;
    QIcon icon;
    for (const int scale : {1, 2, 3}) {
        const QPixmap drawn = ImageCatalog::imageNamed(QLatin1String(image), QSizeF(kDrawn, kDrawn), scale);
        const int margin = (drawn.width() - scale * kShown) / 2;
        QPixmap shown = drawn.copy(margin, margin, scale * kShown, scale * kShown);
        shown.setDevicePixelRatio(scale);
        icon.addPixmap(shown);
    }
    return icon;
}

QIcon iconOf(const DesktopApplication &application)
{
    return application.icon().startsWith(QLatin1Char('/')) ? QIcon(application.icon())
                                                           : QIcon::fromTheme(application.icon());
}

} // namespace

SharePicker::SharePicker(ApplicationDelegate &application, QWidget &window, QObject *parent)
    : QObject(parent)
    , m_application(application)
    , m_window(window)
{
}

SharePicker::~SharePicker()
{
    delete m_menu;
}

QString SharePicker::lookup(const char *key) const
{
    return m_application.getLocalizedStringForKey(QLatin1String(key));
}

QStringList SharePicker::bluetoothSender()
{
    for (const BluetoothSender &sender : kBluetoothSenders) {
        const QString program = QStandardPaths::findExecutable(QLatin1String(sender.program));
        if (program.isEmpty())
            continue;
        QStringList command(program);
        if (sender.argument)
            command << QLatin1String(sender.argument);
        return command;
    }
    return {};
}

void SharePicker::showSharingServicePickerWithImage(const PhotoImagePtr &image, const QString &photoPath,
                                                    const QWidget &relativeTo)
{
    qCInfo(lcScreen).noquote() << "show SocialServiceProvider !!";
    delete m_menu;
    m_image = image && image->isValid() ? image : nullptr;
    m_photoPath = photoPath;
    m_menu = new QMenu(&m_window);
    m_menu->setAttribute(Qt::WA_DeleteOnClose);
    addServices(m_image, photoPath);
    m_hold.emplace(SheetQueue::forWindow(m_window));
    connect(m_menu, &QMenu::aboutToHide, this, [this] {
        m_hold.reset();
        QMetaObject::invokeMethod(this, &SharePicker::closed, Qt::QueuedConnection);
    });
    // Below the button's right end, where it stays within the window.
    m_menu->popup(relativeTo.mapToGlobal(QPoint(relativeTo.width() - m_menu->sizeHint().width(), relativeTo.height())));
}

QAction *SharePicker::addService(const char *image, const char *titleKey)
{
    QAction *action = m_menu->addAction(menuIcon(image), lookup(titleKey));
    action->setEnabled(m_image != nullptr);
    return action;
}

void SharePicker::addServices(const PhotoImagePtr &image, const QString &photoPath)
{
    const auto whenChosen = [this](QAction *action, auto send) {
        connect(action, &QAction::triggered, this, [this, action, send] {
            didChooseSharingService(action->text());
            send(action->text());
        });
    };
    whenChosen(addService("mail", "SHARE_EMAIL"), [this](const QString &service) { sendByEmail(service); });
    whenChosen(addService("clipboard", "SHARE_COPY"), [this](const QString &service) { copyToClipboard(service); });

    QAction *openWithAction = addService("open-with", "SHARE_OPEN_WITH");
    auto *openWithMenu = new QMenu(m_menu);
    openWithAction->setMenu(openWithMenu);
    openWithAction->setEnabled(false); // until it is known what there is
    if (image) {
        const QString mimeType = OutgoingPictures::mimeType(image, photoPath);
        m_queue.run([mimeType] { return DesktopApplication::forType(mimeType); },
                    [this, menu = QPointer(openWithMenu), action = openWithAction](const auto &applications) {
                        if (menu && !applications.isEmpty()) {
                            fillOpenWith(*menu, action->text(), applications);
                            action->setEnabled(true);
                        }
                    });
    }
    const QStringList sender = bluetoothSender();
    if (!sender.isEmpty())
        whenChosen(addService("bluetooth", "SHARE_BLUETOOTH"),
                   [this, sender](const QString &service) { sendByBluetooth(service, sender); });
}

void SharePicker::fillOpenWith(QMenu &menu, const QString &service, const QList<DesktopApplication> &applications)
{
    for (const DesktopApplication &application : applications) {
        QString title = application.name();
        title.replace(QLatin1Char('&'), QLatin1String("&&"));
        connect(menu.addAction(iconOf(application), title), &QAction::triggered, this, [=, this] {
            didChooseSharingService(service + QStringLiteral(": ") + application.name());
            openWith(application.name(), application);
        });
    }
}

void SharePicker::didChooseSharingService(const QString &service)
{
    qCInfo(lcScreen).noquote() << "Picked this service:" << service;
}

void SharePicker::sendByEmail(const QString &service)
{
    m_pictures.prepare(m_image, m_photoPath, [this, service](const QString &path) {
        if (path.isEmpty())
            return fail(service);
        m_email.composeWithAttachment(path, [this, service](bool opened) {
            if (!opened)
                fail(service);
        });
    });
}

void SharePicker::copyToClipboard(const QString &service)
{
    m_pictures.preparePng(m_image, [this, service](const QByteArray &png) {
        if (png.isEmpty())
            return fail(service);
        auto *data = new QMimeData;
        data->setData(QStringLiteral("image/png"), png); // as bytes: nobody has to encode it when it is asked for
        QGuiApplication::clipboard()->setMimeData(data);
        emit shared(lookup("SHARE_COPIED"));
    });
}

void SharePicker::openWith(const QString &service, const DesktopApplication &application)
{
    m_pictures.prepare(m_image, m_photoPath, [this, service, application](const QString &path) {
        launch(service, path.isEmpty() ? QStringList() : application.command(path));
    });
}

void SharePicker::sendByBluetooth(const QString &service, const QStringList &sender)
{
    m_pictures.prepare(m_image, m_photoPath, [this, service, sender](const QString &path) {
        launch(service, path.isEmpty() ? QStringList() : sender + QStringList(path));
    });
}

void SharePicker::launch(const QString &service, const QStringList &command)
{
    if (command.isEmpty())
        return fail(service);
    Workspace::sharedWorkspace().launch(command.first(), command.mid(1), [self = QPointer(this), service](bool opened) {
        if (!opened && self)
            self->fail(service);
    });
}

void SharePicker::fail(const QString &service)
{
    AlertSheet::showAlertWithTitle(m_window, m_application, lookup("ERROR_CANT_SHARE_IMAGE"),
                                   formatString(lookup("SHARE_SERVICE_FAILED"), {service}));
}

} // namespace hazelmark
