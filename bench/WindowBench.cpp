#include "Benches.h"
#include "Comparison.h"
#include "TestPicture.h"

#include "ApplicationDelegate.h"
#include "Encoder.h"
#include "FloatSlider.h"
#include "MainScreenVC.h"
#include "NotificationNames.h"
#include "PaintView.h"
#include "PhotoImageView.h"
#include "ProcessState.h"
#include "RenderJobs.h"
#include "SettingsPanel.h"
#include "Theme.h"
#include "TitlebarWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

namespace hazelmark::bench {

namespace {

constexpr QSize kPreview(1200, 800);
constexpr QSize kLargePreview(3300, 2200);
constexpr QSize kPhoto(6000, 4000);

[[noreturn]] void giveUp(const char *what)
{
    std::fprintf(stderr, "hazelmark_bench: %s\n", what);
    std::exit(1);
}

/// An X server whose pixels are a file that can be looked at without asking the server.
class Display
{
public:
    Display()
    {
        m_server.setStandardErrorFile(QProcess::nullDevice());
        m_server.start(QStringLiteral("Xvfb"),
                       {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                        QStringLiteral("0"), QStringLiteral("1600x1000x24"), QStringLiteral("-fbdir"), m_folder.path(),
                        QStringLiteral("-noreset"), QStringLiteral("-nolisten"), QStringLiteral("tcp")});
        if (!m_server.waitForStarted() || !m_server.waitForReadyRead(10000))
            giveUp("Xvfb does not start");
        m_name = ':' + m_server.readLine().trimmed();
        const int file = ::open(QFile::encodeName(m_folder.filePath(QStringLiteral("Xvfb_screen0"))), O_RDONLY);
        m_size = size_t(lseek(file, 0, SEEK_END));
        m_pixels = static_cast<const volatile uchar *>(mmap(nullptr, m_size, PROT_READ, MAP_SHARED, file, 0));
        ::close(file);
    }
    ~Display()
    {
        m_server.terminate();
        m_server.waitForFinished();
    }

    /// Starts the program, waits until its window is there, and ends it.
    void showWindow(const QString &program, const QStringList &arguments) const
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DISPLAY"), QString::fromLatin1(m_name));
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_folder.path());
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_folder.path());
        environment.insert(QStringLiteral("XDG_STATE_HOME"), m_folder.path());
        process.setProcessEnvironment(environment);
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(program, arguments);
        QElapsedTimer clock;
        clock.start();
        while (!isCovered()) {
            if (clock.elapsed() > 20000)
                giveUp("no window comes");
            usleep(200);
        }
        process.kill();
        process.waitForFinished();
        while (isCovered()) // the next one starts on an empty screen
            usleep(200);
    }

private:
    /// The empty screen is black, and no window is.
    bool isCovered() const
    {
        constexpr int kRow = 500;
        constexpr int kColumn = 300;
        const volatile uchar *pixel =
            m_pixels + (m_size - size_t(1600) * 1000 * 4) + (size_t(kRow) * 1600 + kColumn) * 4;
        return pixel[0] > 0x10;
    }

    QTemporaryDir m_folder;
    QProcess m_server;
    QByteArray m_name;
    const volatile uchar *m_pixels = nullptr;
    size_t m_size = 0;
};

class Application : public ApplicationDelegate
{
public:
    std::shared_ptr<PhotoFile> selectedImageFile() const override { return m_file; }
    void setSelectedImageFile(std::shared_ptr<PhotoFile> file) override { m_file = std::move(file); }
    QStringList arraySelectedImagesToProcess() const override { return {}; }
    bool isUiDisabled() const override { return ProcessState::shared().isUiDisabled; }
    void setIsUiDisabled(bool disabled) override { ProcessState::shared().isUiDisabled = disabled; }
    bool isAppActive() const override { return true; }
    QUrl linkForTag(int) const override { return {}; }
    QString getLocalizedStringForKey(const QString &key) override { return key; }
    void showAlertForRateApp() override {}

private:
    std::shared_ptr<PhotoFile> m_file;
};

/// The main screen with a photo of 24 megapixels.
class Screen
{
public:
    Screen()
    {
        theme::apply(m_qt);
        ProcessState::shared().isAppActive = true;
        EncodeOptions options;
        options.format = WriteFormat::Jpeg;
        if (!encodePicture(testPicture(kPhoto), options, photo()))
            giveUp("no room for a photo");
        m_screen.emplace(m_application);
        m_window.setContentView(m_screen->view());
        NotificationCenter::defaultCenter().post(kNotificationSetupHeader,
                                                 {{kWindowObjectKey, QVariant::fromValue<QObject *>(&m_window)}});
        m_window.setFrameSizeLimits({100, 100}, {4000, 4000});
        m_window.setFrame({0, 0, 1000, 1000});
        m_window.show();
        showAt(kPreview);
        QObject::connect(&*m_screen, &MainScreenVC::previewShown, [this] { m_previewShown = true; });
    }
    ~Screen() { m_screen.reset(); }

    MainScreenVC &operator*() { return *m_screen; }
    QString photo() const { return m_folder.filePath(QStringLiteral("photo.jpg")); }

    /// Opens the photo; hands back the longest time, in seconds, in which the event loop was held up meanwhile and
    /// during the redraws that follow.
    double openPhoto()
    {
        qint64 longest = 0;
        QElapsedTimer clock;
        QTimer watchdog;
        watchdog.setTimerType(Qt::PreciseTimer);
        QObject::connect(&watchdog, &QTimer::timeout, &watchdog, [&] {
            longest = std::max(longest, clock.nsecsElapsed());
            clock.start();
        });
        clock.start();
        watchdog.start(1);
        m_screen->photoDraggedWithPath(photo());
        waitUntil([&] { return m_screen->session().isLoading(); });
        waitUntil([&] { return !m_screen->session().isLoading(); });
        waitForRedraws();
        return double(longest) * 1e-9;
    }

    /// Makes the window as large as it has to be for a preview of this size.
    void showAt(QSize preview)
    {
        const MainScreenView *view = m_screen->mainScreenView();
        m_window.setFrame({QPoint(), m_window.frame().size() + preview - view->previewSizeWithPhoto()});
        if (m_screen->hasPhoto()) {
            m_screen->windowEndResizing();
            waitForRedraws();
        }
    }

    /// A photo with some paint on it.
    void paint()
    {
        if (!m_screen->hasPhoto())
            openPhoto();
        for (double y = 0.2; y < 0.8; y += 0.2) {
            send(QEvent::MouseButtonPress, {0.2, y});
            for (double x = 0.2; x < 0.8; x += 0.01)
                send(QEvent::MouseMove, {x, y});
            release({0.8, y});
        }
    }

    /// Dabs once, and hands back how long it takes from the release of the mouse until the new preview has been
    /// painted.
    double secondsToPreview()
    {
        send(QEvent::MouseButtonPress, {0.5, 0.5});
        QElapsedTimer clock;
        clock.start();
        release({0.5, 0.5});
        return double(clock.nsecsElapsed()) * 1e-9;
    }

    /// Drags the blur slider for a second with a mouse that tells a thousand places, and hands back how long the last
    /// of the previews comes after the release.
    double secondsBehindSlider()
    {
        constexpr int kMoves = 1000;
        int missing = 0;
        QObject context;
        QObject::connect(&m_screen->panel(), &SettingsPanel::processWanted, &context, [&] { ++missing; });
        QObject::connect(&*m_screen, &MainScreenVC::previewShown, &context, [&] { --missing; });
        FloatSlider *slider = m_screen->panel().slider(Setting::BlurAmount);
        const qreal middle = slider->height() / 2.0;
        const auto move = [&](QEvent::Type type, int i) {
            const QPointF place(slider->width() * (0.2 + 0.6 * i / kMoves), middle);
            const bool down = type != QEvent::MouseButtonRelease;
            QMouseEvent event(type, place, slider->mapToGlobal(place),
                              type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                              down ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
            QCoreApplication::sendEvent(slider, &event);
        };
        QElapsedTimer clock;
        clock.start();
        move(QEvent::MouseButtonPress, 0);
        for (int i = 1; i <= kMoves; ++i) {
            while (clock.elapsed() < i)
                QCoreApplication::processEvents();
            move(QEvent::MouseMove, i);
        }
        move(QEvent::MouseButtonRelease, kMoves);
        clock.start();
        waitUntil([&] { return missing == 0; });
        return double(clock.nsecsElapsed()) * 1e-9;
    }

private:
    static void waitUntil(const std::function<bool()> &done)
    {
        while (!done())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    /// Those that follow an opening or a new layout after a while.
    static void waitForRedraws()
    {
        QElapsedTimer clock;
        clock.start();
        waitUntil([&] { return clock.elapsed() > 1800; });
    }

    void release(QPointF at)
    {
        m_previewShown = false;
        send(QEvent::MouseButtonRelease, at);
        waitUntil([&] { return m_previewShown; });
        m_screen->mainScreenView()->imgvwAfterBokesh->repaint();
    }

    void send(QEvent::Type type, QPointF at)
    {
        PaintView *canvas = m_screen->mainScreenView()->paintView;
        const QPointF place(at.x() * canvas->width(), at.y() * canvas->height());
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, place, canvas->mapToGlobal(place), button,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(canvas, &event);
    }

    int m_count = 1;
    char m_name[16] = "hazelmark";
    char *m_words[2] = {m_name, nullptr};
    QApplication m_qt{m_count, m_words};
    QTemporaryDir m_folder;
    Application m_application;
    TitlebarWindow m_window;
    std::optional<MainScreenVC> m_screen;
    bool m_previewShown = false;
};

// Made when a row first needs them.
std::unique_ptr<Screen> theScreen;
std::unique_ptr<const Display> theDisplay;

Screen &screen()
{
    if (!theScreen) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        theScreen = std::make_unique<Screen>();
    }
    return *theScreen;
}

const Display &display()
{
    if (!theDisplay)
        theDisplay = std::make_unique<const Display>();
    return *theDisplay;
}

double secondsOfPreviewJob()
{
    MainScreenVC &vc = *screen();
    const PreviewJob job{vc.resizedInputImage(), vc.maskImage(), vc.panel().createPresetObjectFromSettingWithTitle({})};
    QElapsedTimer clock;
    clock.start();
    job.run();
    return double(clock.nsecsElapsed()) * 1e-9;
}

/// `ours` against the preview job alone with the same inputs; by turns, the least of each counts.
double previewRatio(QSize preview, int turns, const std::function<double()> &ours)
{
    screen().paint();
    screen().showAt(preview);
    double least = 1e9;
    double alone = 1e9;
    for (int i = 0; i < turns; ++i) {
        alone = std::min(alone, secondsOfPreviewJob());
        least = std::min(least, ours());
    }
    return least / alone;
}

} // namespace

void addWindowRows()
{
    add(Comparison{"process start to first painted window, 1440 x 900", "bare Qt window on the same X server", 3.0, 8,
                   [] { display().showWindow(QStringLiteral(HAZELMARK_PROGRAM), {}); },
                   [] {
                       display().showWindow(
                           QStringLiteral(HAZELMARK_BARE_WINDOW),
                           {QStringLiteral("80"), QStringLiteral("50"), QStringLiteral("1440"), QStringLiteral("900")});
                   }});
    add(Figure{"opening a 24-megapixel JPEG: longest that the event loop is held up", "50 ms", 1.0,
               [] { return screen().openPhoto() / 0.050; }});
    add(Figure{"mouse release to the new preview painted, 1200 x 800", "the preview job alone", 1.5,
               [] { return previewRatio(kPreview, 40, [] { return screen().secondsToPreview(); }); }});
    for (const QSize preview : {kPreview, kLargePreview}) {
        const std::string size = std::to_string(preview.width()) + " x " + std::to_string(preview.height());
        add(Figure{"release of the blur slider to its preview painted, 1000 moves in a second, " + size,
                   "the preview job alone", 3.0,
                   [preview] { return previewRatio(preview, 4, [] { return screen().secondsBehindSlider(); }); }});
    }
}

void endWindowRows()
{
    theScreen.reset();
    theDisplay.reset();
}

} // namespace hazelmark::bench
