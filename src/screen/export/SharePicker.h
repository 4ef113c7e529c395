#pragma once

#include "DesktopApplication.h"
#include "EmailComposer.h"
#include "OutgoingPictures.h"
#include "PhotoImage.h"
#include "SheetQueue.h"

#include <QMenu>
#include <QPointer>

#include <memory>
#include <optional>

namespace hazelmark {

class ApplicationDelegate;

/// The pop-up with the ways in which a picture can leave the program: by e-mail, over the clipboard, to another
/// application, by Bluetooth. Only what this system offers is there to choose. Sheets that are due wait until it is
/// closed; a service that fails says so on a sheet.
class SharePicker : public QObject
{
    Q_OBJECT

public:
    /// `window` outlives the picker.
    SharePicker(ApplicationDelegate &application, QWidget &window, QObject *parent = nullptr);
    ~SharePicker() override;

    /// Opens at the bottom edge of `relativeTo`. `image`: what is shared, upright; without one there is nothing to
    /// choose. `photoPath`: the photo it was made from, for its name and kind.
    void showSharingServicePickerWithImage(const PhotoImagePtr &image, const QString &photoPath,
                                           const QWidget &relativeTo);

    /// The pop-up, while it is open.
    QMenu *menu() const { return m_menu; }
    bool isOpen() const { return m_menu && m_menu->isVisible(); }
    const OutgoingPictures &outgoingPictures() const { return m_pictures; }

    /// The programs that can send a file by Bluetooth, with the arguments that come before the file; none when none is
    /// installed.
    static QStringList bluetoothSender();

signals:
    /// The pop-up is gone, whatever was chosen in it.
    void closed();
    /// A service is done that opens nothing that would be seen; `text` says so.
    void shared(const QString &text);

private:
    void addServices(const PhotoImagePtr &image, const QString &photoPath);
    QAction *addService(const char *image, const char *titleKey);
    void fillOpenWith(QMenu &openWith, const QString &service, const QList<DesktopApplication> &applications);
    void didChooseSharingService(const QString &service);

    void sendByEmail(const QString &service);
    void copyToClipboard(const QString &service);
    void openWith(const QString &service, const DesktopApplication &application);
    void sendByBluetooth(const QString &service, const QStringList &sender);
    void launch(const QString &service, const QStringList &command);
    void fail(const QString &service);
    QString lookup(const char *key) const;

    ApplicationDelegate &m_application;
    QWidget &m_window;
    QPointer<QMenu> m_menu;
    std::optional<SheetQueue::Hold> m_hold;
    PhotoImagePtr m_image;
    QString m_photoPath;
    EmailComposer m_email;
    OutgoingPictures m_pictures;
    WorkQueue m_queue{1};
};

} // namespace hazelmark
