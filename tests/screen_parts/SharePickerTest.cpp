#include "SharePicker.h"

#include "../support/NotedWorkspace.h"
#include "../support/ScreenApplication.h"
#include "AlertSheet.h"
#include "Decoder.h"
#include "EmailComposer.h"

#include <QApplication>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>

#include <gtest/gtest.h>

#include <optional>
#include <utility>

using namespace hazelmark;

namespace {

PhotoImagePtr picture(QImage::Format format = QImage::Format_RGBX8888)
{
    QImage bitmap(40, 30, format);
    bitmap.fill(Qt::red);
    return PhotoImage::fromBitmap(bitmap);
}

void writeFile(const QString &path, const QByteArray &content, bool executable = false)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    if (executable)
        file.setPermissions(file.permissions() | QFile::ExeOwner);
}

/// A desktop with one viewer, "View & Co", and no bus, mail portal or Bluetooth.
class SharePickerTest : public testing::Test
{
protected:
    SharePickerTest()
    {
        QDir(m_folder.path()).mkpath(QStringLiteral("applications"));
        writeFile(m_folder.filePath(QStringLiteral("viewer")), "#!/bin/sh\n", true);
        writeFile(m_folder.filePath(QStringLiteral("applications/viewer.desktop")),
                  "[Desktop Entry]\nType=Application\nName=View & Co\nExec=viewer --open %f\n"
                  "MimeType=image/jpeg;image/png;\n");
        for (const char *name : {"XDG_DATA_HOME", "XDG_DATA_DIRS", "PATH", "XDG_RUNTIME_DIR"})
            set(name, m_folder.path().toUtf8());
        set("DBUS_SESSION_BUS_ADDRESS", "");
        m_window.resize(600, 400);
        m_button.setGeometry(300, 10, 32, 32);
        m_window.show();
    }
    ~SharePickerTest() override
    {
        for (const auto &[name, value] : m_environment)
            qputenv(name, value);
    }
    void set(const char *name, const QByteArray &value)
    {
        m_environment.emplace_back(name, qgetenv(name));
        qputenv(name, value);
    }
    QAction *service(const char *key) const
    {
        for (QAction *action : m_picker->menu()->actions()) {
            if (action->text().startsWith(QLatin1String(key)))
                return action;
        }
        return nullptr;
    }
    void show()
    {
        m_picker->showSharingServicePickerWithImage(m_picture, QStringLiteral("/A day. 50 %.JPG"), m_button);
    }
    /// Chooses as a person does: the pop-up goes, then the service starts.
    void choose(const char *key)
    {
        show();
        QAction *action = service(key);
        m_picker->menu()->close();
        action->trigger();
    }
    /// Waits for as many commands; the last one.
    QStringList launched(int count)
    {
        EXPECT_TRUE(QTest::qWaitFor([&] { return m_workspace.m_launched.size() == count; }));
        return m_workspace.m_launched.value(count - 1);
    }
    AlertSheet *alert() { return qobject_cast<AlertSheet *>(SheetQueue::forWindow(m_window).current()); }

    std::vector<std::pair<const char *, QByteArray>> m_environment; ///< as it was
    QTemporaryDir m_folder;
    NotedWorkspace m_workspace;
    ScreenApplication m_application;
    PhotoImagePtr m_picture = picture();
    QWidget m_window;
    QWidget m_button{&m_window};
    std::optional<SharePicker> m_picker{std::in_place, m_application, m_window};
};

} // namespace

TEST_F(SharePickerTest, OffersWhatThereIsAndHandsTheFileOver)
{
    show();
    SheetQueue &sheets = SheetQueue::forWindow(m_window);
    sheets.present(new QDialog);
    EXPECT_EQ(sheets.current(), nullptr) << "it waits for the menu";
    m_picker->menu()->close();
    EXPECT_TRUE(QTest::qWaitFor([&] { return sheets.current() != nullptr; }));
    sheets.current()->close();
    show();
    EXPECT_TRUE(service("SHARE_EMAIL")->isEnabled() && service("SHARE_COPY")->isEnabled());
    QAction *openWith = service("SHARE_OPEN_WITH");
    ASSERT_TRUE(QTest::qWaitFor([&] { return openWith->isEnabled(); }));
    ASSERT_EQ(openWith->menu()->actions().size(), 1);
    EXPECT_EQ(openWith->menu()->actions().first()->text(), QStringLiteral("View && Co"));
    openWith->menu()->actions().first()->trigger();
    const QStringList viewer = launched(1);
    EXPECT_EQ(viewer.mid(0, 2), QStringList({QStringLiteral("viewer"), QStringLiteral("--open")}));
    choose("SHARE_EMAIL");
    EXPECT_EQ(launched(2), QStringList({QStringLiteral("xdg-email"), QStringLiteral("--attach"), viewer.value(2)}))
        << "one picture, one file";
    EXPECT_EQ(QFileInfo(viewer.value(2)).fileName(), QStringLiteral("A day. 50 %.jpg"));
    const Outcome<Picture> sent = decodePicture(viewer.value(2));
    ASSERT_TRUE(sent);
    EXPECT_EQ(sent->pixels.size(), QSize(40, 30));
    EXPECT_GT(sent->pixels.pixelColor(3, 3).red(), 250);
    EXPECT_EQ(alert(), nullptr);
    const QString sender = m_folder.filePath(QStringLiteral("bluedevil-sendfile"));
    writeFile(sender, "#!/bin/sh\n", true);
    choose("SHARE_BLUETOOTH");
    EXPECT_EQ(launched(3), QStringList({sender, QStringLiteral("-f"), viewer.value(2)}));
}

TEST_F(SharePickerTest, AServiceThatFailsSaysSo)
{
    m_workspace.m_succeeds = false;
    for (const bool isWritten : {true, false}) {
        if (!isWritten)
            set("TMPDIR", "/proc"); // where not even the superuser can make a folder
        m_picker.emplace(m_application, m_window);
        choose("SHARE_EMAIL");
        ASSERT_TRUE(QTest::qWaitFor([&] { return alert() != nullptr; }));
        EXPECT_EQ(m_workspace.m_launched.size(), 1) << "only what is written is sent";
        EXPECT_EQ(alert()->messageText(), QStringLiteral("ERROR_CANT_SHARE_IMAGE %@"));
        EXPECT_EQ(alert()->informativeText(), QStringLiteral("SHARE_SERVICE_FAILED SHARE_EMAIL %@"));
        alert()->accept();
        ASSERT_TRUE(QTest::qWaitFor([&] { return alert() == nullptr; }));
    }
    qunsetenv("TMPDIR");
}

TEST(OutgoingPicturesTest, GoInTheirKindAndNothingIsLeftBehind)
{
    EXPECT_TRUE(OutgoingPictures::goesAsJpeg(picture(), QStringLiteral("/a.Jpeg")));
    EXPECT_FALSE(OutgoingPictures::goesAsJpeg(picture(QImage::Format_RGBA8888), QStringLiteral("/a.jpg")));
    EXPECT_FALSE(OutgoingPictures::goesAsJpeg(picture(), QStringLiteral("/a.tiff")));
    std::optional<OutgoingPictures> pictures(std::in_place);
    QString written;
    pictures->prepare(picture(), QStringLiteral("/a.png"), [&](const QString &path) { written = path; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(written); }));
    pictures->prepare(picture(), QStringLiteral("/b.png"), [](const QString &) {}); // still at it when the end comes
    pictures.reset();
    EXPECT_FALSE(QDir(QFileInfo(written).path()).exists());
}

#define ENTRY "[Desktop Entry]\nType=Application\nName=A\nExec=/bin/sh %f\nMimeType=image/png;\n"

TEST(DesktopApplicationTest, OffersProgramsThatPeopleCanStart)
{
    const std::tuple<const char *, const char *, bool> entries[]{
        {"plain", ENTRY, true},
        {"not shown", ENTRY "NoDisplay=true\n", false},
        {"hidden", ENTRY "Hidden=true\n", false},
        {"terminal", ENTRY "Terminal=true\n", false},
        {"what it tries is missing", ENTRY "TryExec=/nonexistent/x\n", false},
        {"another group does not count", ENTRY "[Desktop Action x]\nNoDisplay=true\n", true},
        {"other type", "[Desktop Entry]\nType=Application\nName=A\nExec=/bin/sh\nMimeType=image/png-more;\n", false},
        {"link", "[Desktop Entry]\nType=Link\nName=A\nURL=x\nMimeType=image/png;\n", false},
        {"program is missing",
         "[Desktop Entry]\nType=Application\nName=A\nExec=/nonexistent/x %f\nMimeType=image/png\n", false},
        {"noise", "\xff\xfe=\n=\n[", false},
    };
    const QString png = QStringLiteral("image/png"), name = QStringLiteral("a.desktop");
    const QTemporaryDir system, user;
    for (const auto &[what, lines, offered] : entries) {
        writeFile(system.filePath(name), lines);
        EXPECT_EQ(DesktopApplication::forType(png, {system.path()}).size(), offered) << what;
    }
    // The user's entry replaces the system's one.
    writeFile(user.filePath(name), ENTRY "Hidden=true\n");
    writeFile(system.filePath(name), ENTRY);
    QGuiApplication::setDesktopFileName(QStringLiteral("own.program"));
    writeFile(system.filePath(QStringLiteral("own.program.desktop")), ENTRY);
    EXPECT_TRUE(DesktopApplication::forType(png, {user.path(), system.path()}).isEmpty());
    EXPECT_EQ(DesktopApplication::forType(png, {system.path(), user.path()}).size(), 1);
}

TEST(DesktopApplicationTest, FillsItsCommandLine)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.desktop"));
    for (const auto &[exec, command] :
         {std::pair{"/bin/sh %U -x", "/bin/sh|file:///p/a%20b%25.png|-x"},
          {"/bin/sh --file=%f %i %c 100%%", "/bin/sh|--file=/p/a b%.png|--icon|pic|Ä|100%"},
          {"/bin/sh \"two words\" \"a \\\\\"q\\\\\"\" %n", "/bin/sh|two words|a \"q\"|/p/a b%.png"},
          {"/bin/sh", "/bin/sh|/p/a b%.png"}}) {
        writeFile(path, QByteArray("[Desktop Entry]\nType=Application\nName=A\nName[de]=Ä\nName[de_AT]=Ö\nIcon=pic\n"
                                   "Exec=") +
                            exec + "\n");
        const auto application = DesktopApplication::fromEntry(path, {QStringLiteral("de_DE"), QStringLiteral("de")});
        ASSERT_TRUE(application);
        EXPECT_EQ(application->command(QStringLiteral("/p/a b%.png")).join(QLatin1Char('|')).toStdString(), command);
    }
}

namespace {

/// The desktop's mail portal; it answers before the call itself is answered.
class FakePortal : public QDBusVirtualObject
{
public:
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override
    {
        const auto options = qdbus_cast<QVariantMap>(message.arguments().at(1));
        const auto files = qdbus_cast<QList<QDBusUnixFileDescriptor>>(options[QStringLiteral("attachment_fds")]);
        QFile file;
        if (file.open(files.value(0).fileDescriptor(), QIODevice::ReadOnly))
            m_attached = file.readAll();
        if (m_response < 0)
            return bus.send(message.createErrorReply(QDBusError::Failed, QStringLiteral("no")));
        const QString request = message.path() + QStringLiteral("/request/") +
                                message.service().mid(1).replace(QLatin1Char('.'), QLatin1Char('_')) +
                                QLatin1Char('/') + options[QStringLiteral("handle_token")].toString();
        QDBusMessage answer = QDBusMessage::createSignal(request, QStringLiteral("org.freedesktop.portal.Request"),
                                                         QStringLiteral("Response"));
        return bus.send(answer << uint(m_response) << QVariantMap()) &&
               bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(request))));
    }
    QString introspect(const QString &) const override { return {}; }

    QByteArray m_attached;
    int m_response = 0; ///< below 0: it refuses
};

} // namespace

TEST(EmailComposer, HandsTheOpenFileToThePortalOrElseToTheDesktopsCommand)
{
    if (QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty())
        GTEST_SKIP() << "there is no dbus-daemon to test with";
    QProcess daemon;
    daemon.start(QStringLiteral("dbus-daemon"),
                 {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address")});
    ASSERT_TRUE(daemon.waitForReadyRead());
    const QString address = QString::fromLatin1(daemon.readLine()).trimmed();
    QDBusConnection portalBus = QDBusConnection::connectToBus(address, QStringLiteral("portal"));
    const QDBusConnection bus = QDBusConnection::connectToBus(address, QStringLiteral("composer"));
    QTemporaryFile attachment;
    ASSERT_TRUE(attachment.open() && attachment.write("the picture") && attachment.flush());
    const QList<QStringList> command{{QStringLiteral("xdg-email"), QStringLiteral("--attach"), attachment.fileName()}};
    FakePortal portal;
    NotedWorkspace workspace;
    ASSERT_TRUE(portalBus.registerVirtualObject(QStringLiteral("/org/freedesktop/portal/desktop"), &portal));
    ASSERT_TRUE(portalBus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
    // Written, turned down by the person, no mail program there, refused.
    for (const int response : {0, 1, 2, -1}) {
        portal.m_response = response;
        workspace.m_succeeds = response >= 0;
        workspace.m_launched.clear();
        EmailComposer composer(bus);
        std::optional<bool> opened;
        composer.composeWithAttachment(attachment.fileName(), [&](bool ok) { opened = ok; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return opened.has_value(); }));
        EXPECT_EQ(opened, response >= 0);
        EXPECT_EQ(workspace.m_launched, response == 2 || response < 0 ? command : QList<QStringList>()) << response;
        EXPECT_EQ(std::exchange(portal.m_attached, {}), "the picture") << response;
    }
    QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
    QDBusConnection::disconnectFromBus(QStringLiteral("composer"));
}
