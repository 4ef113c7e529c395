#include "SharePicker.h"

#include "AlertSheet.h"
#include "Decoder.h"
#include "FakeApplication.h"
#include "ProcessWide.h"
#include "Workspace.h"

#include <QApplication>
#include <QClipboard>
#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QMimeData>
#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace hazelmark;

namespace {

class LaunchingWorkspace : public Workspace
{
public:
    void openUrl(const QUrl &, Completion) override { FAIL() << "nothing is opened by its address"; }
    void launch(const QString &program, const QStringList &arguments, Completion completion) override
    {
        m_launched << (QStringList(program) + arguments);
        if (completion)
            completion(m_succeeds);
    }

    QList<QStringList> m_launched;
    bool m_succeeds = true;
};

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

/// A desktop with one viewer, "Ansicht & Co", and no bus, mail portal or Bluetooth.
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
        qputenv("XDG_DATA_HOME", m_folder.path().toUtf8());
        qputenv("XDG_DATA_DIRS", m_folder.path().toUtf8());
        qputenv("PATH", m_folder.path().toUtf8());
        qputenv("DBUS_SESSION_BUS_ADDRESS", "");
        qputenv("XDG_RUNTIME_DIR", m_folder.path().toUtf8());
        m_window.resize(600, 400);
        m_button.setGeometry(300, 10, 32, 32);
        m_window.show();
    }
    ~SharePickerTest() override
    {
        for (const auto &[name, value] : m_environment)
            qputenv(name, value);
    }

    void show(const PhotoImagePtr &image, const QString &photoPath = QStringLiteral("/photos/A day. 50 %.JPG"))
    {
        m_picker.showSharingServicePickerWithImage(image, photoPath, m_button);
        ASSERT_TRUE(m_picker.menu() && m_picker.menu()->isVisible());
    }
    QAction *service(const char *key) const
    {
        for (QAction *action : m_picker.menu()->actions()) {
            if (action->text().startsWith(QLatin1String(key)))
                return action;
        }
        return nullptr;
    }
    /// Chooses as a person does: the pop-up goes, then the service starts.
    void choose(QAction *action)
    {
        m_picker.menu()->close();
        action->trigger();
    }
    AlertSheet *alert() { return qobject_cast<AlertSheet *>(SheetQueue::forWindow(m_window).current()); }

    std::vector<std::pair<const char *, QByteArray>> m_environment = [] {
        std::vector<std::pair<const char *, QByteArray>> all;
        for (const char *name :
             {"XDG_DATA_HOME", "XDG_DATA_DIRS", "PATH", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"})
            all.emplace_back(name, qgetenv(name));
        return all;
    }();
    QTemporaryDir m_folder;
    LaunchingWorkspace m_workspace;
    ProcessWide<Workspace>::Replacement m_replacement{m_workspace};
    FakeApplication m_application;
    QWidget m_window;
    QWidget m_button{&m_window};
    SharePicker m_picker{m_application, m_window};
};

} // namespace

TEST_F(SharePickerTest, OpensAtTheButtonAndOffersWhatThereIs)
{
    testing::internal::CaptureStderr();
    show(picture());
    EXPECT_NE(testing::internal::GetCapturedStderr().find("show SocialServiceProvider !!"), std::string::npos);
    EXPECT_EQ(m_picker.menu()->geometry().topRight(), m_button.mapToGlobal(QPoint(31, 32)));
    EXPECT_TRUE(service("SHARE_EMAIL")->isEnabled());
    EXPECT_TRUE(service("SHARE_COPY")->isEnabled());
    EXPECT_EQ(service("SHARE_BLUETOOTH"), nullptr) << "nothing here can send by Bluetooth";
    QAction *openWith = service("SHARE_OPEN_WITH");
    ASSERT_TRUE(QTest::qWaitFor([&] { return openWith->isEnabled(); }));
    ASSERT_EQ(openWith->menu()->actions().size(), 1);
    EXPECT_EQ(openWith->menu()->actions().first()->text(), QStringLiteral("View && Co"));

    writeFile(m_folder.filePath(QStringLiteral("bluedevil-sendfile")), "#!/bin/sh\n", true);
    show(picture());
    EXPECT_NE(service("SHARE_BLUETOOTH"), nullptr);
}

TEST_F(SharePickerTest, SheetsWaitUntilItIsClosedAndWithoutAPictureThereIsNothingToChoose)
{
    show(nullptr);
    for (const QAction *action : m_picker.menu()->actions())
        EXPECT_FALSE(action->isEnabled());
    auto *sheet = new QDialog;
    SheetQueue::forWindow(m_window).present(sheet);
    QCoreApplication::processEvents();
    EXPECT_FALSE(sheet->isVisible());
    m_picker.menu()->close();
    EXPECT_TRUE(QTest::qWaitFor([&] { return sheet->isVisible(); }));
}

TEST_F(SharePickerTest, AMessageTakesThePictureAsAFileThatStays)
{
    testing::internal::CaptureStderr();
    const PhotoImagePtr image = picture();
    show(image);
    choose(service("SHARE_EMAIL"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_workspace.m_launched.size() == 1; }));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("Picked this service: SHARE_EMAIL"), std::string::npos);
    const QStringList command = m_workspace.m_launched.first();
    ASSERT_EQ(command.size(), 3);
    EXPECT_EQ(command.mid(0, 2), QStringList({QStringLiteral("xdg-email"), QStringLiteral("--attach")}));
    EXPECT_EQ(QFileInfo(command[2]).fileName(), QStringLiteral("A day. 50 %.jpg"));
    const Outcome<Picture> sent = decodePicture(command[2]);
    ASSERT_TRUE(sent);
    EXPECT_EQ(sent->pixels.size(), QSize(40, 30));
    EXPECT_GT(sent->pixels.pixelColor(3, 3).red(), 250);
    EXPECT_LT(sent->pixels.pixelColor(3, 3).blue(), 5);
    show(image);
    choose(service("SHARE_EMAIL"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_workspace.m_launched.size() == 2; }));
    EXPECT_EQ(m_workspace.m_launched.last(), command) << "one picture, one file";
    EXPECT_EQ(alert(), nullptr);
}

TEST_F(SharePickerTest, AServiceThatFailsSaysSo)
{
    for (const bool written : {true, false}) {
        m_workspace.m_succeeds = false;
        if (!written)
            qputenv("TMPDIR", "/proc"); // where not even the superuser can make a folder
        SharePicker picker(m_application, m_window);
        picker.showSharingServicePickerWithImage(picture(), QStringLiteral("/a.png"), m_button);
        for (QAction *action : picker.menu()->actions()) {
            if (action->text().startsWith(QLatin1String("SHARE_EMAIL"))) {
                picker.menu()->close();
                action->trigger();
                break;
            }
        }
        ASSERT_TRUE(QTest::qWaitFor([&] { return alert() != nullptr; }));
        qunsetenv("TMPDIR");
        EXPECT_EQ(m_workspace.m_launched.size(), 1) << "only what is written is sent";
        EXPECT_EQ(alert()->messageText(), QStringLiteral("ERROR_CANT_SHARE_IMAGE<%@>"));
        EXPECT_EQ(alert()->informativeText(), QStringLiteral("SHARE_SERVICE_FAILED<SHARE_EMAIL<%@>>"));
        alert()->accept();
        ASSERT_TRUE(QTest::qWaitFor([&] { return alert() == nullptr; }));
    }
}

TEST_F(SharePickerTest, TheClipboardHasThePictureAsPng)
{
    QSignalSpy shared(&m_picker, &SharePicker::shared);
    show(picture());
    choose(service("SHARE_COPY"));
    ASSERT_TRUE(shared.wait());
    EXPECT_EQ(shared[0][0].toString(), QStringLiteral("SHARE_COPIED<%@>"));
    const QImage pasted = QImage::fromData(QGuiApplication::clipboard()->mimeData()->data(QStringLiteral("image/png")));
    EXPECT_EQ(pasted.size(), QSize(40, 30));
    EXPECT_EQ(pasted.pixelColor(5, 5), QColor(Qt::red));
}

TEST_F(SharePickerTest, AnotherApplicationGetsTheFile)
{
    testing::internal::CaptureStderr();
    show(picture());
    QAction *openWith = service("SHARE_OPEN_WITH");
    ASSERT_TRUE(QTest::qWaitFor([&] { return openWith->isEnabled(); }));
    QAction *viewer = openWith->menu()->actions().first();
    viewer->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_workspace.m_launched.size() == 1; }));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("Picked this service: SHARE_OPEN_WITH<%@>: View & Co"),
              std::string::npos);
    const QStringList command = m_workspace.m_launched.first();
    EXPECT_EQ(command.mid(0, 2), QStringList({QStringLiteral("viewer"), QStringLiteral("--open")}));
    EXPECT_TRUE(QFile::exists(command.last()));
}

TEST_F(SharePickerTest, PicturesGoInTheirKindAndNothingIsLeftBehind)
{
    EXPECT_TRUE(OutgoingPictures::goesAsJpeg(picture(), QStringLiteral("/a.Jpeg")));
    EXPECT_FALSE(OutgoingPictures::goesAsJpeg(picture(QImage::Format_RGBA8888), QStringLiteral("/a.jpg")));
    EXPECT_FALSE(OutgoingPictures::goesAsJpeg(picture(), QStringLiteral("/a.tiff")));
    QString folder;
    {
        OutgoingPictures pictures;
        bool ready = false;
        pictures.prepare(picture(), QStringLiteral("/a.png"), [&](const QString &path) { ready = !path.isEmpty(); });
        ASSERT_TRUE(QTest::qWaitFor([&] { return ready; }));
        folder = pictures.folder();
        EXPECT_TRUE(QDir(folder).exists());
        pictures.prepare(picture(), QStringLiteral("/b.png"), [](const QString &) {}); // still at it when the end comes
    }
    EXPECT_FALSE(QDir(folder).exists());
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
        {"commented", ENTRY "#NoDisplay=true\n", true},
        {"other type", "[Desktop Entry]\nType=Application\nName=A\nExec=/bin/sh\nMimeType=image/png-more;\n", false},
        {"link", "[Desktop Entry]\nType=Link\nName=A\nURL=x\nMimeType=image/png;\n", false},
        {"program is missing",
         "[Desktop Entry]\nType=Application\nName=A\nExec=/nonexistent/x %f\nMimeType=image/png\n", false},
        {"open quote", "[Desktop Entry]\nType=Application\nName=A\nExec=\"/bin/sh %f\nMimeType=image/png\n", false},
        {"empty", "", false},
        {"noise", "\xff\xfe=\n=\n[", false},
    };
    const QTemporaryDir folder;
    for (const auto &[what, lines, offered] : entries) {
        writeFile(folder.filePath(QStringLiteral("a.desktop")), lines);
        EXPECT_EQ(DesktopApplication::forType(QStringLiteral("image/png"), {folder.path()}).size(), offered) << what;
    }
}

TEST(DesktopApplicationTest, TheUsersEntryReplacesTheSystemsOne)
{
    QTemporaryDir user, system;
    const QString name = QStringLiteral("a.desktop");
    writeFile(user.filePath(name), ENTRY "Hidden=true\n");
    writeFile(system.filePath(name), ENTRY);
    QGuiApplication::setDesktopFileName(QStringLiteral("own.program"));
    writeFile(system.filePath(QStringLiteral("own.program.desktop")), ENTRY);
    EXPECT_TRUE(DesktopApplication::forType(QStringLiteral("image/png"), {user.path(), system.path()}).isEmpty());
    EXPECT_EQ(DesktopApplication::forType(QStringLiteral("image/png"), {system.path(), user.path()}).size(), 1);
}

TEST(DesktopApplicationTest, FillsItsCommandLine)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.desktop"));
    const QString photo = QStringLiteral("/p/a b%.png");
    const auto command = [&](const char *exec) {
        writeFile(path, QByteArray("[Desktop Entry]\nType=Application\nName=A\nName[de]=Ä\nName[de_AT]=Ö\nIcon=pic\n"
                                   "Exec=") +
                            exec + "\n");
        const auto application = DesktopApplication::fromEntry(path, {QStringLiteral("de_DE"), QStringLiteral("de")});
        return application ? application->command(photo) : QStringList();
    };
    const auto list = [](std::initializer_list<const char *> words) {
        QStringList strings;
        for (const char *word : words)
            strings << QString::fromUtf8(word);
        return strings;
    };
    EXPECT_EQ(command("/bin/sh %U -x"), list({"/bin/sh", "file:///p/a%20b%25.png", "-x"}));
    EXPECT_EQ(command("/bin/sh --file=%f %i %c 100%%"),
              list({"/bin/sh", "--file=/p/a b%.png", "--icon", "pic", "Ä", "100%"}));
    EXPECT_EQ(command("/bin/sh \"two words\" \"a \\\\\"q\\\\\"\" %n"),
              list({"/bin/sh", "two words", "a \"q\"", "/p/a b%.png"}));
    EXPECT_EQ(command("/bin/sh"), list({"/bin/sh", "/p/a b%.png"}));
}

namespace {

/// The desktop's mail portal, on a bus of its own.
class FakePortal : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Email")

public:
    QByteArray m_attached;
    uint m_response = 0;
    bool m_refuses = false;

public slots:
    QDBusObjectPath ComposeEmail(const QString &, const QVariantMap &options)
    {
        const auto files = qdbus_cast<QList<QDBusUnixFileDescriptor>>(
            options.value(QStringLiteral("attachment_fds")).value<QDBusArgument>());
        QFile file;
        if (!files.isEmpty() && file.open(files.first().fileDescriptor(), QIODevice::ReadOnly))
            m_attached = file.readAll();
        if (m_refuses) {
            sendErrorReply(QDBusError::Failed, QStringLiteral("no"));
            return {};
        }
        const QString request = QStringLiteral("/org/freedesktop/portal/desktop/request/") +
                                message().service().mid(1).replace(QLatin1Char('.'), QLatin1Char('_')) +
                                QLatin1Char('/') + options.value(QStringLiteral("handle_token")).toString();
        QDBusMessage signal = QDBusMessage::createSignal(request, QStringLiteral("org.freedesktop.portal.Request"),
                                                         QStringLiteral("Response"));
        signal << m_response << QVariantMap();
        connection().send(signal); // before the call itself is answered
        return QDBusObjectPath(request);
    }
};

} // namespace

TEST(EmailComposerTest, HandsTheOpenFileToThePortalOrElseToTheDesktopsCommand)
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
    ASSERT_TRUE(bus.isConnected());
    const QTemporaryDir folder;
    const QString attachment = folder.filePath(QStringLiteral("a.jpg"));
    writeFile(attachment, "the picture");
    FakePortal portal;
    LaunchingWorkspace workspace;
    const ProcessWide<Workspace>::Replacement replacement{workspace};
    const auto startPortal = [&] {
        ASSERT_TRUE(portalBus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
        ASSERT_TRUE(portalBus.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &portal,
                                             QDBusConnection::ExportAllSlots));
    };
    const std::tuple<const char *, std::function<void()>, bool, bool> stories[]{
        {"no portal", [] {}, true, true},
        {"a portal", startPortal, true, false},
        {"turned down by the person, which is no failure", [&] { portal.m_response = 1; }, true, false},
        {"a portal without a mail program", [&] { portal.m_response = 2; }, true, true},
        {"neither way",
         [&] {
             portal.m_refuses = true;
             workspace.m_succeeds = false;
         },
         false, true},
    };
    for (const auto &[what, happens, opens, byCommand] : stories) {
        SCOPED_TRACE(what);
        happens();
        workspace.m_launched.clear();
        EmailComposer composer(bus);
        std::optional<bool> opened;
        composer.composeWithAttachment(attachment, [&](bool ok) { opened = ok; });
        ASSERT_TRUE(QTest::qWaitFor([&] { return opened.has_value(); }));
        EXPECT_EQ(opened, opens);
        QList<QStringList> commands;
        if (byCommand)
            commands << QStringList({QStringLiteral("xdg-email"), QStringLiteral("--attach"), attachment});
        EXPECT_EQ(workspace.m_launched, commands);
    }
    EXPECT_EQ(portal.m_attached, "the picture");
    QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
    QDBusConnection::disconnectFromBus(QStringLiteral("composer"));
    daemon.terminate();
    daemon.waitForFinished();
}

#include "SharePickerTest.moc"
