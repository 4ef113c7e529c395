#include "ScreenFixture.h"

#include "AlertSheet.h"
#include "NotificationNames.h"
#include "PhotoImageView.h"
#include "SheetQueue.h"

#include <QCursor>
#include <QTest>

namespace hazelmark {

ScreenFixture::ScreenFixture()
{
    m_state.isAppActive = true;
    m_work.paintingsFolder = m_folder.filePath(QStringLiteral("paintings"));
    m_work.render = [this, real = m_work.render](const PreviewJob &job) {
        ++m_rendered;
        return real(job);
    };
}

ScreenFixture::~ScreenFixture()
{
    // As the application does it: the main screen goes first.
    m_screen.reset();
}

void ScreenFixture::start()
{
    m_window = std::make_unique<TitlebarWindow>();
    m_screen = std::make_unique<MainScreenVC>(m_application, m_work);
    m_window->setContentView(m_screen->view());
    QCursor::setPos(5, 5);
    QObject::connect(m_window.get(), &TitlebarWindow::didResize, m_screen.get(),
                     [this] { post(kNotificationWindowResized); });
    QObject::connect(m_screen.get(), &MainScreenVC::previewShown, m_screen.get(), [this] { ++m_shown; });
    m_center.post(kNotificationSetupHeader, {{kWindowObjectKey, QVariant::fromValue<QObject *>(m_window.get())}});
    m_window->setFrameSizeLimits({100, 100}, {4000, 4000});
    m_window->setFrame({100, 50, 1300, 800});
    m_window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_window.get()));
    m_window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
}

void ScreenFixture::openPhoto(QSize size)
{
    start();
    open(photo(QStringLiteral("a.png"), size));
}

void ScreenFixture::perform(MenuCommand command)
{
    m_center.post(kNotificationCommandFromMenuTapped, {{kCommandKey, int(command)}, {kCommandIndexKey, 0}});
}

QString ScreenFixture::photo(const QString &name, QSize size, QColor color) const
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    const QString path = m_folder.filePath(name);
    EXPECT_TRUE(image.save(path, "PNG"));
    return path;
}

QString ScreenFixture::file(const QString &name, const QByteArray &content) const
{
    QFile file(m_folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    return file.fileName();
}

void ScreenFixture::open(const QString &path)
{
    m_screen->photoDraggedWithPath(path);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_screen->imageUrl() == path; })) << qPrintable(path);
}

void ScreenFixture::waitForPreviews(int shown)
{
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_shown >= shown; })) << m_shown << " of " << shown;
}

void ScreenFixture::stroke(QPointF from, QPointF to, bool letGo)
{
    const auto place = [&](QPointF at) {
        return QPointF(at.x() * canvas().width(), at.y() * canvas().height()).toPoint();
    };
    QCursor::setPos(canvas().mapToGlobal(place(from)));
    m_center.post(kNotificationMouseIn);
    QTest::mousePress(&canvas(), Qt::LeftButton, {}, place(from));
    constexpr int kMoves = 10;
    for (int i = 1; i <= kMoves; ++i)
        QTest::mouseMove(&canvas(), place(from + (to - from) * i / kMoves));
    if (letGo)
        QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, place(to));
}

void ScreenFixture::resizeWindow(QSize size)
{
    m_window->setFrame({m_window->frame().topLeft(), size});
    QCoreApplication::processEvents();
}

QColor ScreenFixture::shownAt(QPointF place) const
{
    const QImage &shown = view().imgvwAfterBokesh->image();
    return shown.pixelColor(int(place.x() * shown.width()), int(place.y() * shown.height()));
}

int ScreenFixture::paintAt(QPointF place) const
{
    const QImage pixels = canvas().snapshot();
    return pixels.pixelColor(int(place.x() * pixels.width()), int(place.y() * pixels.height())).alpha();
}

QString ScreenFixture::sheetText() const
{
    const auto *sheet = qobject_cast<AlertSheet *>(SheetQueue::forWindow(*m_window).current());
    return sheet ? sheet->messageText() + QLatin1Char('|') + sheet->informativeText() : QString();
}

QString ScreenFixture::answeredSheet()
{
    EXPECT_TRUE(QTest::qWaitFor([&] { return !sheetText().isEmpty(); }));
    const QString text = sheetText();
    if (!text.isEmpty())
        SheetQueue::forWindow(*m_window).current()->accept();
    EXPECT_TRUE(QTest::qWaitFor([&] { return sheetText().isEmpty(); }));
    return text;
}

} // namespace hazelmark
