// The parts that the main screen is built from and that need no window of its own.
#include "../controls/WidgetEvents.h"
#include "KeyboardCursor.h"
#include "OverviewView.h"
#include "PaintControl.h"
#include "PaintView.h"
#include "PhotoImageView.h"
#include "ZoomField.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QLineEdit>
#include <QTest>

namespace hazelmark {

TEST(PhotoImageView, ShowsAPictureOfTheFramesSizePixelForPixel)
{
    QImage stripes(80, 60, QImage::Format_RGB32); // grey once they were resampled
    for (int i = 0; i < 80 * 60; ++i)
        stripes.setPixelColor(i % 80, i / 80, i % 2 ? Qt::black : Qt::white);
    PhotoImageView view;
    view.resize(100, 80);
    view.setPictureFrame({10.25, 9.4, 80.4, 60.9});
    view.setImage(stripes);
    const QString shown = QString::fromStdString(profileOf(drawn(view), {0, 40}));
    EXPECT_EQ(shown, u"2x10 "_qs + u"fx1 0x1 "_qs.repeated(40) + u"2x10"_qs);
}

TEST(PhotoImageView, ShowsADetailOverTheWholeAndChecksWhereItIsTransparent)
{
    PhotoImageView view;
    view.resize(100, 80);
    view.setPictureFrame({10, 10, 80, 60});
    QImage whole(80, 60, QImage::Format_ARGB32);
    whole.fill(QColor(0x50, 0x50, 0x50));
    view.setImage(whole);
    QImage sharp(80, 60, QImage::Format_RGB32);
    sharp.fill(QColor(0xa0, 0xa0, 0xa0));
    view.setDetail({sharp, {160, 120}, {40, 30, 80, 60}, {320, 240}});
    EXPECT_EQ(profileOf(drawn(view), {0, 40}), "2x10 5x20 ax40 5x20 2x10");
    EXPECT_EQ(profileOf(drawn(view), {50, 0}), "2x10 5x15 ax30 5x15 2x10");
    QImage pixels(8, 6, QImage::Format_RGB32); // each 10 by 10 points
    pixels.fill(Qt::black);
    pixels.setPixelColor(4, 2, Qt::white);
    view.setDetail({pixels.copy(2, 1, 4, 3), {8, 6}, {2, 1, 4, 3}, {8, 6}});
    EXPECT_EQ(profileOf(drawn(view), {0, 35}), "2x10 5x20 0x20 fx10 0x10 5x20 2x10") << "pixel by pixel";
    EXPECT_EQ(profileOf(drawn(view), {55, 0}), "2x10 5x10 0x10 fx10 0x10 5x20 2x10");
    view.setDetail({pixels, {8, 6}, {0, 0, 8, 6}, {16, 12}});
    EXPECT_FALSE(profileOf(drawn(view), {0, 35}).ends_with("0x30 2x10")) << "what can be sharper is smoothed meanwhile";
    whole.fill(Qt::transparent);
    view.setImage(whole);
    view.setDetail({});
    EXPECT_EQ(profileOf(drawn(view), {0, 12}), "2x10 4x8 3x8 4x8 3x8 4x8 3x8 4x8 3x8 4x8 3x8 2x10");
    EXPECT_EQ(profileOf(drawn(view), {12, 0}), "2x10 4x8 3x8 4x8 3x8 4x8 3x8 4x8 3x4 2x10");
}

TEST(OverviewView, FramesWhatIsSeenAndGoesWhereItIsPressed)
{
    OverviewView view;
    QList<QPointF> wanted;
    QObject::connect(&view, &OverviewView::placeWanted, [&](QPointF place) { wanted << place; });
    QImage picture(160, 80, QImage::Format_RGB32);
    picture.fill(QColor(0x60, 0x60, 0x60));
    view.setImage(picture);
    view.setPart({10000, 10}, {});
    EXPECT_EQ(view.size(), QSize(162, 18));
    view.setPart({2000, 1000}, {0.25, 0.5, 0.5, 0.25});
    EXPECT_EQ(view.size(), QSize(162, 82));
    EXPECT_EQ(profileOf(drawn(view), {0, 50}), "8x1 3x40 fx1 6x78 fx1 3x40 8x1");
    EXPECT_EQ(profileOf(drawn(view), {81, 0}), "8x1 3x40 fx1 6x18 fx1 3x20 8x1");
    QTest::mousePress(&view, Qt::RightButton, {}, {100, 60});
    QTest::mousePress(&view, Qt::LeftButton, {}, {41, 61});
    for (const Qt::MouseButton held : {Qt::LeftButton, Qt::NoButton}) {
        QMouseEvent move(QEvent::MouseMove, QPointF(161, 1), QPointF(161, 1), Qt::NoButton, held, {});
        QCoreApplication::sendEvent(&view, &move);
    }
    EXPECT_EQ(wanted, (QList<QPointF>{{0.25, 0.75}, {1, 0}}));
}

TEST(ZoomField, TakesPerCentsAndShowsThem)
{
    ZoomField field;
    QList<double> wanted;
    QObject::connect(&field, &ZoomField::scaleWanted, [&](double scale) { wanted << scale; });
    QObject::connect(&field, &ZoomField::fitWanted, [&] { wanted << 0; });
    for (const auto &[scale, text] :
         {std::pair(0.005, "0.5 %"), {0.0994, "9.9 %"}, {0.0996, "10 %"}, {12.341, "1234 %"}}) {
        field.setScale(scale);
        EXPECT_EQ(field.currentText(), QLatin1String(text));
    }
    for (const char *typed : {"75", " 12.5 %", "words", "-5", "0", "inf"}) {
        field.lineEdit()->setText(QLatin1String(typed));
        QTest::keyClick(&field, Qt::Key_Return);
        EXPECT_EQ(field.currentText(), QStringLiteral("1234 %")) << "until the photo is seen so";
    }
    for (int item = 0; item < field.count(); ++item)
        emit field.activated(item);
    EXPECT_EQ(wanted, (QList<double>{0.75, 0.125, 0, 0.5, 1, 2, 4}));
}

TEST(KeyboardCursor, GoesInStepsWithinWhatIsSeenAndIsAValueForScreenReaders)
{
    PaintView canvas;
    PaintControl control(&canvas);
    canvas.setFrame({50, 40, 400, 300});
    KeyboardCursor cursor(canvas);
    cursor.setGeometry(canvas.geometry());
    cursor.show();
    // The arrows from the middle on, with Shift in capitals, and where the stroke begins that Space starts then.
    const std::pair<const char *, QPointF> rows[] = {
        {"l", {196, 150}}, {"rRd", {240, 154}}, {"Uu", {240, 110}}, {"LLLLLLL", {0, 110}}, {"DDDDDDR", {40, 300}}};
    for (const auto &[arrows, place] : rows) {
        for (const char arrow : std::string(arrows)) {
            const Qt::Key keys[] = {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down};
            QTest::keyClick(&cursor, keys[std::string("lrud").find(char(std::tolower(arrow)))],
                            std::isupper(arrow) ? Qt::ShiftModifier : Qt::NoModifier);
        }
        QTest::keyClick(&cursor, Qt::Key_Left, Qt::ControlModifier); // the photo's
        QTest::keyClick(&cursor, Qt::Key_Space);
        const QPointF start = canvas.arrDrawedPoints()->back().start();
        EXPECT_NEAR(start.x() * 400, place.x(), 1e-3);
        EXPECT_NEAR(start.y() * 300, place.y(), 1e-3);
    }
    canvas.setFrame({0, 0, 200, 100});
    cursor.resize(200, 100);
    EXPECT_EQ(cursor.place(), QPointF(20, 100)) << "the same place of it";
    cursor.setPainted(0.25, {});
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&cursor)->valueInterface()->currentValue(), 25);
}

} // namespace hazelmark
