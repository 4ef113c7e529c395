#include "../support/Outline.h"
#include "CalloutWindow.h"
#include "Compositor.h"
#include "FrameEdge.h"
#include "IMGButton.h"
#include "ProcessWide.h"
#include "SheetQueue.h"
#include "TitlebarWindow.h"
#include "WidgetEvents.h"

#include <QApplication>
#include <QDialog>
#include <QImage>
#include <QLabel>
#include <QMenuBar>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <map>
#include <memory>

using namespace hazelmark;

namespace {

class FakeCompositor : public Compositor
{
public:
    bool isComposited() const override { return true; }
    bool acceptsFrameExtents() const override { return true; }
    void setFrameExtents(WId, const QMargins &extents) const override { m_extents = extents; }

    mutable QMargins m_extents;
};

class TitlebarWindowTest : public testing::Test
{
protected:
    TitlebarWindowTest()
    {
        m_content = new QWidget;
        m_window.setContentView(m_content);
        m_window.setFrame({10, 20, 800, 500});
        m_window.show();
    }

    TitlebarWindow m_window;
    QWidget *m_content;
};

} // namespace

TEST_F(TitlebarWindowTest, TheContentFillsTheFrameBehindTheButtons)
{
    auto *menuBar = new QMenuBar;
    menuBar->addMenu(QStringLiteral("File"));
    m_window.setMenuBar(menuBar);
    EXPECT_EQ(m_content->geometry(), QRect(0, 0, 800, 500));
    EXPECT_EQ(m_window.frame(), QRect(10, 20, 800, 500));
    int right = 0;
    for (const IMGButton *button :
         {m_window.closeButton(), m_window.minimizeButton(), m_window.zoomButton(), m_window.fullScreenButton()}) {
        EXPECT_GE(button->x(), std::max(right, 7));
        EXPECT_NEAR(button->geometry().center().y(), 30, 1);
        EXPECT_EQ(m_window.childAt(button->geometry().center()), button) << "nothing lies over it";
        right = button->geometry().right();
    }
    EXPECT_GT(menuBar->x(), right);
    m_window.setButtonNames(u"C"_qs, u"M"_qs, u"Z"_qs, u"F"_qs);
    EXPECT_EQ(toldOf(m_window).section(u"; "_qs, 0, 4).toStdString(),
              "TitlebarWindow: Window; IMGButton: Button C t^; IMGButton: Button M t^; IMGButton: Button Z t^; "
              "IMGButton: Button F (F (F11)) t^");
}

TEST_F(TitlebarWindowTest, EveryWayOfClosingAsksFirst)
{
    int asked = 0;
    bool agree = false;
    m_window.setActions({.close =
                             [&] {
                                 ++asked;
                                 if (agree)
                                     m_window.closeNow();
                             },
                         .minimize = {},
                         .zoom = {},
                         .fullScreen = {}});
    EXPECT_FALSE(m_window.close());
    QTest::mouseClick(m_window.closeButton(), Qt::LeftButton);
    QAccessibleInterface *close = QAccessible::queryAccessibleInterface(m_window.closeButton());
    close->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(asked, 3);
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_window.isVisible());
    EXPECT_FALSE(m_window.closeButton()->isChecked());
    agree = true;
    EXPECT_TRUE(m_window.close());
    EXPECT_FALSE(m_window.isVisible());
    m_window.show();
    QTest::mouseClick(m_window.closeButton(), Qt::LeftButton);
    EXPECT_FALSE(m_window.isVisible());
    m_window.show();
    SheetQueue::forWindow(m_window).present(new QDialog);
    m_window.closeButton()->click();
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_window.closeButton()->isChecked()) << "a sheet asks";
}

TEST_F(TitlebarWindowTest, LiftsTheLargestSizeWhileItFillsTheScreen)
{
    QSignalSpy entered(&m_window, &TitlebarWindow::didEnterFullScreen);
    QSignalSpy left(&m_window, &TitlebarWindow::didExitFullScreen);
    m_window.setFrameSizeLimits({400, 300}, {700, 600});
    EXPECT_EQ(m_window.maximumSize(), QSize(700, 600));
    QTest::mouseClick(m_window.fullScreenButton(), Qt::LeftButton);
    EXPECT_TRUE(m_window.isFullScreen());
    EXPECT_GE(m_window.maximumSize().width(), QWIDGETSIZE_MAX);
    EXPECT_EQ(entered.size(), 1);
    m_window.activateWindow(); // keys go to the window in front
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
    QTest::keyClick(&m_window, Qt::Key_F11);
    EXPECT_FALSE(m_window.isFullScreen());
    EXPECT_EQ(m_window.maximumSize(), QSize(700, 600));
    EXPECT_EQ(left.size(), 1);
    QTest::mouseClick(m_window.zoomButton(), Qt::LeftButton);
    EXPECT_TRUE(m_window.isMaximized());
    auto *photo = new QWidget(m_content);
    photo->setGeometry(300, 10, 200, 40); // on the strip, takes no press itself
    photo->show();
    for (const QPoint place : {QPoint(400, 30), QPoint(600, 300)}) {
        QTest::mouseDClick(&m_window, Qt::LeftButton, {}, place);
        EXPECT_TRUE(m_window.isMaximized()) << "only bare background is the window's handle";
    }
    TitlebarWindow::setMovesWindow(*photo);
    QTest::mouseDClick(&m_window, Qt::LeftButton, {}, {400, 30});
    EXPECT_FALSE(m_window.isMaximized()) << "a double click on the strip zooms";
    EXPECT_EQ(m_window.maximumSize(), QSize(700, 600));
    m_window.setFrameSizeLimits({1220, 700}, {1024, 700});
    m_window.setFrame({51, 35, 1220, 700});
    EXPECT_EQ(m_window.frame().size(), QSize(1220, 700)) << "of limits that contradict each other the minimum holds";
}

TEST(TitlebarWindowShadowTest, RoundsItsCornersAndKeepsTheShadowOutOfItsFrame)
{
    FakeCompositor compositor;
    const ProcessWide<Compositor>::Replacement replacement(compositor);
    TitlebarWindow window;
    auto *content = new QWidget;
    content->setAutoFillBackground(true);
    window.setContentView(content);
    window.setFrameSizeLimits({300, 200}, {700, 600});
    window.setFrame({100, 100, 400, 300});
    window.show();
    const int reach = compositor.m_extents.left();
    ASSERT_GT(reach, 0);
    EXPECT_EQ(window.frame(), QRect(100, 100, 400, 300));
    EXPECT_EQ(window.size(), QSize(400 + 2 * reach, 300 + 2 * reach));
    EXPECT_EQ(window.minimumSize(), QSize(300 + 2 * reach, 200 + 2 * reach));
    EXPECT_EQ(content->size(), QSize(400, 300));

    QImage image(window.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    window.render(&image, {}, {}, QWidget::DrawChildren);
    // What takes hold of the sides (by the pointer over them) and corners, and the line that they draw.
    std::map<int, QRegion> edges;
    for (const QWidget *edge : window.findChildren<FrameEdge *>())
        edges[edge->cursor().shape()] += edge->geometry();
    const QRect whole = window.rect(), corner(0, 0, reach + 12, reach + 12);
    const QSize way = whole.size() - corner.size();
    const QRegion falling = QRegion(corner) + corner.translated(way.width(), way.height());
    const QRegion rising = QRegion(corner.translated(way.width(), 0)) + corner.translated(0, way.height());
    EXPECT_EQ(edges[Qt::SizeFDiagCursor], falling);
    EXPECT_EQ(edges[Qt::SizeBDiagCursor], rising);
    EXPECT_EQ(edges[Qt::SizeHorCursor] + edges[Qt::SizeVerCursor],
              QRegion(whole) - whole.adjusted(reach + 1, reach + 1, -reach - 1, -reach - 1) - falling - rising);
    EXPECT_EQ(profileOf(image.copy(reach - 1, 0, 2, window.height()), {0, 200}), "0x1 4x1");
    EXPECT_EQ(image.pixelColor(reach, reach).alpha(), 78) << "round";
    EXPECT_EQ(image.pixelColor(200, window.height() - 1).alpha(), 7) << "a shadow to the edge";

    window.toggleFullScreen();
    EXPECT_TRUE(compositor.m_extents.isNull());
    EXPECT_EQ(content->size(), window.size());
}

TEST(SheetQueueTest, ShowsOneSheetAfterTheOther)
{
    QWidget window;
    window.show();
    SheetQueue &queue = SheetQueue::forWindow(window);
    auto *first = new QDialog, *second = new QDialog, *gone = new QDialog, *third = new QDialog;
    QString order;
    for (const auto &[sheet, name] : {std::pair{first, '1'}, {second, '2'}, {third, '3'}})
        QObject::connect(sheet, &QDialog::finished, [&order, name = name] { order += QLatin1Char(name); });
    for (QDialog *sheet : {first, second, gone, third})
        queue.present(sheet);
    EXPECT_EQ(queue.current(), first);
    EXPECT_TRUE(first->isVisible() && first->windowModality() == Qt::WindowModal && first->parent() == &window);
    EXPECT_FALSE(second->isVisible());
    EXPECT_EQ(queue.waiting(), 3);
    delete gone;
    first->accept();
    EXPECT_TRUE(QTest::qWaitFor([&] { return queue.current() == second; }));
    second->reject();
    EXPECT_TRUE(QTest::qWaitFor([&] { return queue.current() == third; }));
    third->close();
    EXPECT_TRUE(QTest::qWaitFor([&] { return queue.current() == nullptr; }));
    EXPECT_EQ(order, QStringLiteral("123"));
}

TEST(SheetQueueTest, WaitsWhileItIsHeldOrItsWindowClosedAndGoesWithIt)
{
    auto window = std::make_unique<QWidget>();
    window->show();
    SheetQueue &queue = SheetQueue::forWindow(*window);
    auto hold = std::make_unique<SheetQueue::Hold>(queue);
    auto *sheet = new QDialog;
    queue.present(sheet);
    QCoreApplication::processEvents();
    EXPECT_FALSE(sheet->isVisible());
    window->close();
    hold.reset();
    QCoreApplication::processEvents();
    EXPECT_FALSE(sheet->isVisible()) << "on a window that is closed";
    window->show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return sheet->isVisible(); }));
    hold = std::make_unique<SheetQueue::Hold>(queue);
    window.reset();
    hold.reset(); // outlives its queue
}

TEST(CalloutWindowTest, StandsAtTheAnchorAndStaysOnTheScreen)
{
    QWidget window;
    auto *anchor = new QWidget(&window);
    window.show();
    const QRect screen = window.screen()->availableGeometry();
    window.setGeometry(screen);
    auto *callout = new CalloutWindow(QStringLiteral("a word"), &window);
    const auto *label = callout->findChild<QLabel *>();
    const QSize content = label->sizeHint(), whole(content.width() + 16, content.height() + 24);
    const int far = screen.right() - 39, low = screen.bottom() - 19, half = whole.width() / 2;
    const struct
    {
        QPoint anchor; // 40 x 20
        QPoint corner;
        bool isBelow;
        int tip; // along that side of the callout
    } rows[] = {
        {{200, 100}, {219 - half, 120}, true, half},
        {{0, 0}, {0, 20}, true, 19}, // the arrow keeps off the round corners
        {{far, low - whole.height()}, {screen.right() + 1 - whole.width(), low + 20 - whole.height()}, true, -21},
        {{far, low}, {screen.right() + 1 - whole.width(), low - whole.height()}, false, -21},
    };
    for (const auto &[at, corner, isBelow, tip] : rows) {
        anchor->setGeometry(QRect(at, QSize(40, 20)));
        callout->showBelow(*anchor);
        EXPECT_EQ(callout->geometry(), QRect(screen.topLeft() + corner, whole)) << at.x();
        EXPECT_EQ(label->geometry(), QRect(QPoint(8, isBelow ? 16 : 8), content));
        const int middle = tip < 0 ? whole.width() + tip : tip;
        const auto isDrawn = [&](int along, int inwards) {
            return callout->mask().contains(QPoint(along, isBelow ? inwards : whole.height() - 1 - inwards));
        };
        EXPECT_TRUE(isDrawn(middle, 1) && isDrawn(middle - 5, 6) && isDrawn(middle + 5, 6)) << at.x();
        EXPECT_FALSE(isDrawn(middle - 4, 1) || isDrawn(middle + 4, 1) || isDrawn(middle - 9, 6) ||
                     isDrawn(middle + 9, 6));
        EXPECT_TRUE(isDrawn(7, 8) && !isDrawn(0, 8)) << "its corners are round";
    }
    EXPECT_EQ(profileOf(drawn(*callout), {7, 0}), "4x1 3x" + std::to_string(content.height() + 14) + " 4x1 0x8");
    auto *lines = new CalloutWindow(QStringLiteral("word ").repeated(100), &window);
    lines->showBelow(*anchor);
    EXPECT_EQ(lines->width(), 436);
    EXPECT_GT(lines->height(), 2 * whole.height());
}
