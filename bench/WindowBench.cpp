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
#include <QFile>
#include <QMouseEvent>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <fcntl.h>
#include <malloc.h>
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
        QObject::connect(&m_screen->session(), &Session::viewDrawn, [this] { m_viewDrawn = true; });
        QObject::connect(&m_screen->session(), &Session::photoRead, [this] { m_photoRead = true; });
    }
    ~Screen() { m_screen.reset(); }

    MainScreenVC &operator*() { return *m_screen; }
    QString photo() const { return m_folder.filePath(QStringLiteral("photo.jpg")); }

    /// Opens the photo; hands back the longest time, in seconds, in which the event loop was held up meanwhile and
    /// during the redraws that follow.
    double openPhoto() { return openPhoto(photo()); }
    double openPhoto(const QString &path)
    {
        return longestPause([&] {
            m_screen->photoDraggedWithPath(path);
            waitUntil([&] { return m_screen->session().isLoading(); });
            waitUntil([&] { return !m_screen->session().isLoading(); });
            waitForRedraws();
        });
    }

    /// From the opening of the photo until it has been painted.
    double secondsToOpen()
    {
        m_photoRead = false;
        QElapsedTimer clock;
        clock.start();
        m_screen->photoDraggedWithPath(photo());
        waitUntil([&] { return m_photoRead; });
        m_screen->mainScreenView()->vwPreviewContainer->repaint();
        const double seconds = double(clock.nsecsElapsed()) * 1e-9;
        waitForRedraws();
        return seconds;
    }

    /// The same work without a window: to decode the photo, and to scale it to the screen.
    double secondsToRead()
    {
        const MainScreenView *view = m_screen->mainScreenView();
        const PhotoView wanted{view->largestPixelSize(), view->previewSizeWithPhoto() * view->devicePixelRatioF(),
                               m_screen->session().colors()};
        QElapsedTimer clock;
        clock.start();
        if (!m_screen->session().read(photo(), wanted))
            giveUp("no photo");
        return double(clock.nsecsElapsed()) * 1e-9;
    }

    /// The photo anew, in a view of this size, as near as `scale` pixels of the screen to one of it, and about a third
    /// of what is seen painted.
    void comeNear(QSize view, double scale)
    {
        openPhoto();
        showAt(view);
        m_screen->zoom().setScale(scale);
        waitForView();
        constexpr double kStroke = 48;
        const double lines = view.height() / 3.0 / kStroke;
        for (double y = 0.5 / lines; y < 1; y += 1 / lines)
            stroke({0.01, y}, {0.99, y});
    }

    void stroke(QPointF from, QPointF to)
    {
        send(QEvent::MouseButtonPress, from);
        for (int i = 1; i <= 40; ++i)
            send(QEvent::MouseMove, from + (to - from) * (i / 40.0));
        m_viewDrawn = false;
        send(QEvent::MouseButtonRelease, to);
        waitUntil([&] { return m_viewDrawn; });
    }

    /// From what a hand asks for to the picture of it, painted: the least of a few.
    double secondsOfFrame(const std::function<void(int)> &ask)
    {
        double least = 1e9;
        for (int i = 0; i < 24; ++i) {
            QElapsedTimer clock;
            clock.start();
            m_viewDrawn = false;
            ask(i);
            waitForPicture();
            least = std::min(least, double(clock.nsecsElapsed()) * 1e-9);
        }
        return least;
    }

    /// From what a hand asks for until what is there has been painted at its new place, which the picture follows.
    double secondsToMove(const std::function<void(int)> &ask)
    {
        double least = 1e9;
        QWidget *photo = m_screen->mainScreenView()->vwPreviewContainer;
        for (int i = 0; i < 24; ++i) {
            QElapsedTimer clock;
            clock.start();
            m_viewDrawn = false;
            ask(i);
            waitUntil([&] { return photo->updatesEnabled(); });
            photo->repaint();
            least = std::min(least, double(clock.nsecsElapsed()) * 1e-9);
            waitUntil([&] { return m_viewDrawn; });
        }
        return least;
    }

    /// The same of a dab: from its release to the new picture near the photo.
    double secondsToView()
    {
        send(QEvent::MouseButtonPress, {0.5, 0.5});
        m_viewDrawn = false;
        QElapsedTimer clock;
        clock.start();
        send(QEvent::MouseButtonRelease, {0.5, 0.5});
        return secondsUntilPicture(clock);
    }

    double secondsToUndo()
    {
        m_viewDrawn = false;
        QElapsedTimer clock;
        clock.start();
        m_screen->session().undo();
        return secondsUntilPicture(clock);
    }

    void waitForView()
    {
        m_viewDrawn = false;
        m_screen->zoom().refresh();
        waitUntil([&] { return m_viewDrawn && m_screen->session().fullPhoto().image(); });
        waitForRedraws();
    }

    /// The longest time, in seconds, in which the event loop is held up while something happens.
    static double longestPause(const std::function<void()> &happen)
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
        happen();
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

    void waitForPicture()
    {
        waitUntil([&] { return m_viewDrawn; });
        m_screen->mainScreenView()->vwPreviewContainer->repaint();
    }

    /// The preview that nobody sees follows: it is over before a hand asks for something again.
    double secondsUntilPicture(const QElapsedTimer &since)
    {
        waitForPicture();
        const double seconds = double(since.nsecsElapsed()) * 1e-9;
        waitUntil([&] { return !m_screen->session().hasPreviewsUnderWay(); });
        return seconds;
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
    bool m_viewDrawn = false;
    bool m_photoRead = false;
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

/// Bytes of this process that are in memory.
double residentBytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        giveUp("no memory is told");
    return file.readAll().split(' ').value(1).toDouble() * double(sysconf(_SC_PAGESIZE));
}

/// What 100 % of a photo of 108 megapixels takes beyond fit, against the photo once and eight times what is seen.
double memoryRatio()
{
    constexpr QSize kLarge(12000, 9000);
    constexpr QSize kView(1440, 900);
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("large.jpg"));
    EncodeOptions options;
    options.format = WriteFormat::Jpeg;
    if (!encodePicture(testPicture(kLarge), options, path))
        giveUp("no room for a photo");
    screen().openPhoto(path);
    screen().showAt(kView);
    malloc_trim(0);
    const double before = residentBytes();
    (*screen()).zoom().setScale(1);
    screen().waitForView();
    malloc_trim(0);
    const double after = residentBytes();
    const auto bytes = [](QSize size) { return 4.0 * size.width() * size.height(); };
    return (after - before) / (bytes(kLarge) + 8 * bytes(kView));
}

void addViewRows()
{
    constexpr double kFrame = 0.016;
    const auto panned = [](int i) { (*screen()).zoom().panBy({i % 8 < 4 ? -37.0 : 37.0, i % 2 ? -23.0 : 23.0}); };
    const auto zoomed = [](int i) { (*screen()).zoom().zoomBySteps(i % 8 < 4 ? -0.4 : 0.4); };
    for (const auto &[view, wanted] : {std::pair(QSize(1440, 900), 0.6), std::pair(QSize(3840, 2160), 1.0)}) {
        const std::string size = std::to_string(view.width()) + " x " + std::to_string(view.height());
        add(Figure{"a frame while panning at 100 %, a third painted, " + size, "16 ms", wanted, [=, view = view] {
                       screen().comeNear(view, 1);
                       return screen().secondsOfFrame(panned) / kFrame;
                   }});
        add(Figure{"a frame while zooming about 80 %, a third painted, " + size, "16 ms", wanted, [=, view = view] {
                       screen().comeNear(view, 0.8);
                       return screen().secondsOfFrame(zoomed) / kFrame;
                   }});
    }
    add(Figure{"what is there moved while zooming about 80 %, 3840 x 2160", "16 ms", 1.0, [=] {
                   screen().comeNear({3840, 2160}, 0.8);
                   return screen().secondsToMove(zoomed) / kFrame;
               }});
    add(Figure{"mouse release at 100 % to the new picture painted, 1200 x 800", "the same at fit", 1.5, [] {
                   screen().comeNear(kPreview, 1);
                   double near = 1e9;
                   for (int i = 0; i < 20; ++i)
                       near = std::min(near, screen().secondsToView());
                   (*screen()).zoom().setFit();
                   double fit = 1e9;
                   for (int i = 0; i < 20; ++i)
                       fit = std::min(fit, screen().secondsToPreview());
                   return near / fit;
               }});
    add(Figure{"undo of one of 500 strokes at 400 %, 1440 x 900", "50 ms", 1.0, [] {
                   screen().openPhoto();
                   screen().showAt({1440, 900});
                   (*screen()).zoom().setScale(4);
                   screen().waitForView();
                   for (int i = 0; i < 500; ++i)
                       screen().stroke({0.1 + 0.0013 * (i % 100), 0.1 + 0.0015 * i},
                                       {0.4 + 0.0047 * (i % 100), 0.9 - 0.0015 * i});
                   double least = 1e9;
                   for (int i = 0; i < 8; ++i)
                       least = std::min(least, screen().secondsToUndo());
                   return least / 0.050;
               }});
    add(Figure{"coming near for the first time, panning, zooming: longest that the event loop is held up", "50 ms", 0.5,
               [=] {
                   screen().openPhoto();
                   screen().showAt({1440, 900});
                   return Screen::longestPause([=] {
                              (*screen()).zoom().setScale(1);
                              screen().waitForView();
                              screen().secondsOfFrame(panned);
                              screen().secondsOfFrame(zoomed);
                          }) /
                          0.050;
               }});
    add(Figure{"memory of a photo of 108 megapixels at 100 % above fit", "the photo once and 8 times what is seen", 1.0,
               &memoryRatio});
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
    add(Figure{"opening a 24-megapixel JPEG to the photo painted, 1440 x 900", "decoding and scaling it alone", 1.5,
               [] {
                   screen().openPhoto();
                   screen().showAt({1440, 900});
                   double opened = 1e9;
                   double read = 1e9;
                   for (int i = 0; i < 8; ++i) {
                       opened = std::min(opened, screen().secondsToOpen());
                       read = std::min(read, screen().secondsToRead());
                   }
                   return opened / read;
               }});
    add(Figure{"mouse release to the new preview painted, 1200 x 800", "the preview job alone", 1.5,
               [] { return previewRatio(kPreview, 40, [] { return screen().secondsToPreview(); }); }});
    for (const QSize preview : {kPreview, kLargePreview}) {
        const std::string size = std::to_string(preview.width()) + " x " + std::to_string(preview.height());
        add(Figure{"release of the blur slider to its preview painted, 1000 moves in a second, " + size,
                   "the preview job alone", 3.0,
                   [preview] { return previewRatio(preview, 4, [] { return screen().secondsBehindSlider(); }); }});
    }
    addViewRows();
}

void endWindowRows()
{
    theScreen.reset();
    theDisplay.reset();
}

} // namespace hazelmark::bench
