#include "StrokesFile.h"

#include "BrushTips.h"
#include "Bundle.h"
#include "PaintCanvas.h"
#include "PaintControl.h"
#include "ProcessWide.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

namespace hazelmark {

namespace {

const QByteArrayList kElements = {
    R"("{0.2, 0.5}")", R"("{0.8, 0.5}")", "0", "1", "0", "1", "40.8", "1", "false", "0.5", "4.08"};
const QByteArray kStep = '[' + kElements.join(',') + ']';

QByteArray withSteps(const QByteArray &steps, const QByteArray &canvas = "[100, 50]")
{
    return "{\"canvas\": " + canvas + ", \"steps\": [" + steps + "]}";
}

/// kStep with one element replaced.
QByteArray stepWith(int index, const char *json)
{
    QByteArrayList elements = kElements;
    elements[index] = json;
    return '[' + elements.join(',') + ']';
}

QString faultOf(const QByteArray &json)
{
    QString fault;
    EXPECT_FALSE(StrokesFile::parse(json, fault)) << json.constData();
    EXPECT_EQ(fault.count(u'.'), 1) << fault.toStdString();
    EXPECT_TRUE(fault.endsWith(u'.'));
    return fault;
}

} // namespace

TEST(StrokesFile, GivesTheStepsThatACanvasWouldWrite)
{
    PaintCanvas canvas;
    canvas.setCanvasSize({200, 133.4});
    PaintControl control(&canvas);
    control.setColor({0, 1, 0, 1});
    canvas.mouseDown({50.3, 60});
    canvas.mouseDragged({120, 70.7});
    control.setEraser(true);
    control.setHardness(1);
    canvas.mouseDragged({90, 100});
    const QVariantList records = canvas.paintSession()->dataArray();
    const QJsonObject root{{u"canvas"_qs, QJsonArray{200, 133.4}}, {u"steps"_qs, QJsonArray::fromVariantList(records)}};

    QString fault;
    const auto file = StrokesFile::parse(QJsonDocument(root).toJson(), fault);
    ASSERT_TRUE(file) << fault.toStdString();
    PaintSession session;
    session.setSteps(file->steps);
    EXPECT_EQ(session.dataArray(), records);

    const QImage mask = file->mask(fault);
    ASSERT_EQ(mask.size(), QSize(200, 133));
    const QImage painted = canvas.snapshot();
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); ++x) {
            const uchar *pixel = mask.constScanLine(y) + 4 * x;
            const uchar alpha = painted.constScanLine(y)[4 * x + 3];
            ASSERT_TRUE(pixel[0] == 0 && pixel[1] == alpha && pixel[2] == 0 && pixel[3] == 255) << x << ' ' << y;
        }
    }
}

TEST(StrokesFile, EraserMayBeANumber)
{
    QString fault;
    const auto file = StrokesFile::parse(withSteps(stepWith(8, "1") + ',' + stepWith(8, "0")), fault);
    ASSERT_TRUE(file) << fault.toStdString();
    EXPECT_TRUE(file->steps->front().eraser());
    EXPECT_FALSE(file->steps->back().eraser());
    EXPECT_TRUE(StrokesFile::parse(withSteps(""), fault)->steps->empty());
}

TEST(StrokesFile, FaultsOfAStepNameItsIndex)
{
    for (const QByteArray &step :
         {stepWith(0, "\"0.2, 0.5\""), stepWith(1, "[0.2, 0.5]"), stepWith(1, "\"{nan, 0}\""),
          stepWith(0, "\"{0, 1e999}\""), stepWith(2, "\"0\""), stepWith(5, "true"), stepWith(6, "1e39"),
          stepWith(6, "NaN"), stepWith(7, "-Infinity"), stepWith(7, "1e999"), stepWith(8, "2"), stepWith(8, "\"yes\""),
          stepWith(9, "null"), stepWith(10, "[]"), stepWith(10, "4.08, 1"), QByteArray("[]"), QByteArray("{}"),
          QByteArray("7"), QByteArray("null")}) {
        const QString fault = faultOf(withSteps(kStep + ", " + kStep + ", " + step + ", " + kStep));
        EXPECT_TRUE(fault.startsWith(u"step 2 ")) << fault.toStdString();
    }
}

TEST(StrokesFile, OtherFaultsAreSentencesToo)
{
    for (const char *canvas : {"null", "[]", "[100]", "[100, 50, 1]", "[\"100\", 50]", "{}", "[0, 50]", "[100, -50]",
                               "[0.9, 50]", "[1e6, 50]", "[30000, 30000]"})
        EXPECT_TRUE(faultOf(withSteps(kStep, canvas)).contains(u"canvas")) << canvas;
    for (const char *json : {"", "[]", "{", "7", "{\"canvas\": [1, 1]}", "{\"canvas\": [1, 1], \"steps\": {}}",
                             "{\"canvas\": [1e999, 1], \"steps\": []}", "\xff\xfe"})
        EXPECT_FALSE(faultOf(json).startsWith(u"step")) << json;
    faultOf(withSteps(QByteArray(100000, '[')));
}

TEST(StrokesFile, FileThatCannotBeReadIsNamed)
{
    const QTemporaryDir folder;
    const QString pipe = folder.filePath(u"pipe.json"_qs);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0); // nobody ever writes to it
    for (const QString &path : {folder.path(), folder.filePath(u"none.json"_qs), pipe, u"/dev/zero"_qs}) {
        QString fault;
        EXPECT_FALSE(StrokesFile::read(path, fault));
        EXPECT_TRUE(fault.startsWith(path + u": "_qs)) << fault.toStdString();
        EXPECT_TRUE(fault.endsWith(u'.'));
    }
}

TEST(StrokesFile, WithoutTipsThereIsNoMask)
{
    const QTemporaryDir folder;
    Bundle empty(folder.path());
    const ProcessWide<Bundle>::Replacement replacement(empty);
    QString fault;
    const auto file = StrokesFile::parse(withSteps(kStep), fault);
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->mask(fault).isNull());
    EXPECT_TRUE(fault.contains(folder.path()));
}

} // namespace hazelmark
