// Near the photo in the window: what wheel, menu and fingers do, and that paint lies where it was seen.
#include "ScreenFixture.h"

#include "KeyboardCursor.h"
#include "OverviewView.h"
#include "PhotoImageView.h"
#include "SummaryBar.h"
#include "ZoomField.h"

#include <QAccessible>
#include <QLineEdit>
#include <QNativeGestureEvent>
#include <QTest>
#include <QWheelEvent>

namespace hazelmark {

namespace {

class Zooming : public ScreenFixture
{
protected:
    const ViewTransform &transform() const { return m_screen->zoom().transform(); }
    void turnWheel(int angle, QPointF place, Qt::KeyboardModifiers keys = Qt::ControlModifier)
    {
        QWidget *area = view().vwPreviewContainer;
        QWheelEvent event(place, area->mapToGlobal(place), {}, {0, angle}, Qt::NoButton, keys, Qt::NoScrollPhase,
                          false);
        QCoreApplication::sendEvent(area, &event);
    }
    /// A place of the canvas's widget as a fraction of the photo.
    QPointF under(QPointF place) const
    {
        const QPointF at = place + canvas().geometry().topLeft() - transform().frame().topLeft();
        return {at.x() / transform().frame().width(), at.y() / transform().frame().height()};
    }
    const PaintStepList &steps() const { return *canvas().arrDrawedPoints(); }
};

TEST_F(Zooming, EndsWhereTheFingersEnd)
{
    openPhoto({2400, 1600});
    const QPointF place(300, 200);
    const double fit = transform().scale();
    EXPECT_TRUE(transform().isFit() && view().overview->isHidden());
    for (int i = 0; i < 1000; ++i) // of a wheel that tells a sixtieth of a step
        turnWheel(i < 530 ? 2 : -2, place);
    EXPECT_NEAR(transform().scale(), fit * 1.25, 1e-6);
    const QPointF before = under(place - canvas().geometry().topLeft());
    turnWheel(120, place);
    EXPECT_NEAR(under(place - canvas().geometry().topLeft()).x(), before.x(), 1e-3);
    EXPECT_TRUE(view().overview->isVisibleTo(&view()));
    EXPECT_EQ(view().vwBottom->zoomField()->currentText(),
              QString::number(std::lround(100 * transform().scale())) + u" %"_qs);
    const QRectF frame = transform().frame();
    turnWheel(-120, place, Qt::NoModifier);
    EXPECT_EQ(transform().frame(), frame.translated(0, -60));
    turnWheel(-120, place, Qt::ShiftModifier);
    EXPECT_EQ(transform().frame(), frame.translated(-60, -60));

    QNativeGestureEvent pinch(Qt::ZoomNativeGesture, QPointingDevice::primaryPointingDevice(), 2, place, place, place,
                              0.1, {});
    const QPointF held = under(place - canvas().geometry().topLeft());
    const double scale = transform().scale();
    QCoreApplication::sendEvent(view().vwPreviewContainer, &pinch);
    QCoreApplication::sendEvent(m_window.get(), &pinch); // beside the photo
    EXPECT_NEAR(transform().scale(), 1.1 * scale, 1e-9);
    EXPECT_NEAR(under(place - canvas().geometry().topLeft()).y(), held.y(), 1e-3);

    perform(MenuCommand::ZoomFull);
    EXPECT_EQ(transform().scale(), 1);
    const QAccessibleInterface *field = QAccessible::queryAccessibleInterface(view().vwBottom->zoomField()->lineEdit());
    EXPECT_EQ(field->text(QAccessible::Name), m_application.getLocalizedStringForKey(u"ZOOM"_qs));
    EXPECT_EQ(field->text(QAccessible::Value), u"100 %"_qs);
    ASSERT_TRUE(QTest::qWaitFor([&] { return view().imgvwAfterBokesh->detail().size == QSize(2400, 1600); }));
    resizeWindow({1400, 900});
    EXPECT_EQ(transform().scale(), 1);
    open(photo(u"b.png"_qs, {2400, 1600}));
    EXPECT_TRUE(transform().isFit()) << "another photo";
    EXPECT_TRUE(view().imgvwAfterBokesh->detail().shown.isNull());
    stroke({0.4, 0.5}, {0.6, 0.5}, false);
    turnWheel(120, place);
    EXPECT_TRUE(transform().isFit()) << "until the stroke ends";
    QTest::mouseRelease(&canvas(), Qt::LeftButton);
    EXPECT_NEAR(transform().zoom(), 1.25, 1e-9);
}

TEST_F(Zooming, ThePhotoIsMovedByMouseKeysAndPadOnceItIsNear)
{
    openPhoto({2400, 1600});
    QWidget &area = *view().vwPreviewContainer;
    const QPointF eighth(view().previewSize().width() / 8.0, view().previewSize().height() / 8.0);
    const auto mouse = [&](QEvent::Type type, QPointF place, Qt::MouseButton button) {
        QMouseEvent event(type, place, area.mapToGlobal(place), type == QEvent::MouseMove ? Qt::NoButton : button,
                          type == QEvent::MouseMove ? button : Qt::NoButton, {});
        QCoreApplication::sendEvent(&area, &event);
    };
    const auto drag = [&](Qt::MouseButton button) {
        mouse(QEvent::MouseButtonPress, {300, 200}, button);
        mouse(QEvent::MouseMove, {310, 250}, button);
        mouse(QEvent::MouseButtonRelease, {0, 0}, Qt::RightButton); // another one
        mouse(QEvent::MouseMove, {330, 260}, button);
        mouse(QEvent::MouseButtonRelease, {330, 260}, button);
        mouse(QEvent::MouseMove, {400, 400}, button);
    };
    const auto key = [&](Qt::Key key, Qt::KeyboardModifiers with) {
        return [=, this] { QTest::keyClick(m_window.get(), key, with); };
    };
    const auto dragWithSpace = [&] {
        QCursor::setPos(area.mapToGlobal(QPoint(300, 200)));
        QTest::keyPress(m_window.get(), Qt::Key_Space);
        EXPECT_EQ(QGuiApplication::overrideCursor() != nullptr, !transform().isFit());
        drag(Qt::LeftButton);
        QTest::keyRelease(m_window.get(), Qt::Key_Space);
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    };
    const std::tuple<const char *, std::function<void()>, QPointF> moves[] = {
        {"middle button", [&] { drag(Qt::MiddleButton); }, {30, 60}},
        {"left button", [&] { drag(Qt::LeftButton); }, {}},
        {"left button and space", dragWithSpace, {30, 60}},
        {"left", key(Qt::Key_Left, Qt::ControlModifier), {eighth.x(), 0}},
        {"right", key(Qt::Key_Right, Qt::ControlModifier), {-eighth.x(), 0}},
        {"up", key(Qt::Key_Up, Qt::ControlModifier), {0, eighth.y()}},
        {"down", key(Qt::Key_Down, Qt::ControlModifier), {0, -eighth.y()}},
        {"without control", key(Qt::Key_Down, Qt::NoModifier), {}},
        {"pad",
         [&] {
             QWheelEvent event({9, 9}, area.mapToGlobal(QPointF(9, 9)), {7, -9}, {70, -90}, Qt::NoButton, {},
                               Qt::NoScrollPhase, false);
             QCoreApplication::sendEvent(&area, &event);
         },
         {7, -9}},
    };
    for (const bool isNear : {false, true}) {
        if (isNear)
            perform(MenuCommand::ZoomFull);
        for (const auto &[what, move, way] : moves) {
            const QRectF frame = transform().frame();
            move();
            const QPointF moved = transform().frame().topLeft() - frame.topLeft();
            EXPECT_LT((moved - (isNear ? way : QPointF())).manhattanLength(), 1) << what << moved.x() << moved.y();
            EXPECT_TRUE(!isNear || QTest::qWaitFor([&] {
                return view().imgvwAfterBokesh->detail().part == transform().visiblePixels();
            })) << what;
        }
    }
    EXPECT_EQ(view().overview->geometry().bottomRight(), area.rect().bottomRight() - QPoint(12, 12));
    perform(MenuCommand::ZoomOut);
    EXPECT_NEAR(transform().scale(), 0.8, 1e-9);
    perform(MenuCommand::ZoomIn);
    EXPECT_NEAR(transform().scale(), 1, 1e-9);
}

TEST_F(Zooming, PaintLiesWhereItWasSeenAsWideAsItWasSeen)
{
    openPhoto({2400, 1600});
    const QSize circle = canvas().cursorImage().size();
    const float size = canvas().pointSize();
    double finest = 1;
    for (const auto &[scale, y, middle] : {std::tuple(0.5, 0.1, 0.5), {1.0, 0.5, 0.5}, {4.0, 0.5, 0.9}}) {
        m_screen->zoom().setScale(scale);
        m_screen->zoom().centreOn({0.5, middle});
        EXPECT_EQ(canvas().cursorImage().size(), circle);
        EXPECT_NEAR(canvas().pointSize() * transform().zoom(), size, 1e-3);
        const QPointF from(0.4 * canvas().width(), y * canvas().height());
        stroke({0.4, y}, {0.6, y});
        EXPECT_NEAR(steps().back().start().y(), under(from).y(), 1e-3);
        const ScaledPainting painting = m_screen->session().painting().scaled();
        EXPECT_GE(painting.scale, finest);
        finest = painting.scale;
        const QImage mask = painting.mask();
        const auto green = [&](QPointF place) {
            const QPointF at = under(place);
            return int(mask.constScanLine(int(at.y() * mask.height()))[int(at.x() * mask.width())]);
        };
        EXPECT_GT(green(from + QPointF(40, 0)), 200) << scale;
        EXPECT_EQ(green(from + QPointF(40, size / 2 + 3)), 0) << scale;
        // What goes out of sight is kept, and painted nowhere.
        stroke({0.9, y}, {1.1, y});
        EXPECT_GT(steps().back().end().x(), 1);
    }
    EXPECT_EQ(finest, ScaledPainting::largestScale(canvas().canvasSize(), {2400, 1600}));
    perform(MenuCommand::ZoomFit);
    EXPECT_EQ(canvas().pointSize(), size) << "to the bit";
    EXPECT_EQ(canvas().cursorImage().size(), circle);
}

TEST_F(Zooming, TwoFingersTakeTheDabOfTheFirstBackAndHoldThePhoto)
{
    openPhoto({2400, 1600});
    m_screen->zoom().setScale(1);
    stroke({0.1, 0.2}, {0.2, 0.2});
    const std::size_t count = steps().size();
    const std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
    canvas().show();
    QTest::touchEvent(&canvas(), screen.get()).press(0, {200, 200});
    EXPECT_EQ(steps().size(), count + 1);
    QTest::touchEvent(&canvas(), screen.get()).move(0, {200, 200}).press(1, {300, 200});
    EXPECT_EQ(steps().size(), count);
    const QPointF held = under({200, 200});
    QTest::touchEvent(&canvas(), screen.get()).move(0, {150, 250}).move(1, {350, 250});
    EXPECT_NEAR(transform().scale(), 2, 1e-6);
    EXPECT_NEAR(under({150, 250}).x(), held.x(), 2e-3);
    EXPECT_NEAR(under({150, 250}).y(), held.y(), 2e-3);
    QTest::touchEvent(&canvas(), screen.get()).release(0, {150, 250}).release(1, {350, 250});
    EXPECT_EQ(steps().size(), count);
    EXPECT_FALSE(canvas().isStrokeUnderWay());
}

} // namespace

} // namespace hazelmark
