#include "StrokesFile.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>

namespace hazelmark {

namespace {

const PaintStep kStep({0.1, 1.0 / 3, 0.75, 0.9}, {0.1, -0.25}, {1.0 / 3, 1.75}, 64.8F, 0.37F, true, 0.5F, 6.48F);

const QByteArrayList kElements = {
    R"("{0.2, 0.5}")", R"("{0.8, 0.5}")", "0", "1", "0", "1", "40.8", "1", "false", "0.5", "4.08"};

QByteArray withSteps(const QByteArray &steps, const QByteArray &canvas = "[100, 50]")
{
    return "{\"canvas\": " + canvas + ", \"steps\": [" + steps + "]}";
}

/// A good step with one element replaced.
QByteArray stepWith(int index, const char *json)
{
    QByteArrayList elements = kElements;
    elements[index] = json;
    return '[' + elements.join(',') + ']';
}

} // namespace

TEST(PaintStep, RecordHasElevenElementsInTheirOrderAndReadsBack)
{
    const QVariantList data = kStep.data(); // single precision, but for the places
    EXPECT_EQ(QJsonDocument(QJsonArray::fromVariantList(data)).toJson(QJsonDocument::Compact).toStdString(),
              R"(["{0.1, -0.25}","{0.3333333333333333, 1.75}",)"
              "0.10000000149011612,0.3333333432674408,0.75,0.8999999761581421,64.80000305175781,0.3700000047683716,"
              "true,0.5,6.480000019073486"
              "]");
    const PaintStep read(data);
    EXPECT_EQ(read.data(), data);
    EXPECT_EQ(read.end().x(), kStep.end().x());
    EXPECT_EQ(read.color(), (Color{0.1F, float(1.0 / 3), 0.75F, 0.9F}));
    EXPECT_NE(read.color(), kStep.color());
}

TEST(StrokesFile, FaultsAreSentencesThatNameWhatIsToBlame)
{
    QString fault;
    for (const char *eraser : {"1", "0", "true"}) {
        const auto file = StrokesFile::parse(withSteps(stepWith(8, eraser)), fault);
        ASSERT_TRUE(file) << fault.toStdString();
        EXPECT_EQ(file->steps->front().eraser(), *eraser != '0');
    }
    const QByteArray good = stepWith(2, "0") + ',' + stepWith(2, "0") + ',';
    std::vector<std::pair<QByteArray, const char *>> cases; // a file, and what its fault has in it
    for (const QByteArray &step :
         {stepWith(0, "\"0.2, 0.5\""), stepWith(1, "[0.2, 0.5]"), stepWith(1, "\"{nan, 0}\""),
          stepWith(0, "\"{0, 1e999}\""), stepWith(2, "\"0\""), stepWith(5, "true"), stepWith(6, "1e39"),
          stepWith(6, "NaN"), stepWith(7, "-Infinity"), stepWith(7, "1e999"), stepWith(8, "2"), stepWith(8, "\"yes\""),
          stepWith(9, "null"), stepWith(10, "[]"), stepWith(10, "4.08, 1"), QByteArray("[]"), QByteArray("{}"),
          QByteArray("7"), QByteArray("null")})
        cases.emplace_back(withSteps(good + step), "step 2 ");
    for (const char *canvas : {"null", "[]", "[100]", "[100, 50, 1]", "[\"100\", 50]", "{}", "[0, 50]", "[100, -50]",
                               "[0.9, 50]", "[1e6, 50]", "[30000, 30000]"})
        cases.emplace_back(withSteps(stepWith(2, "0"), canvas), "canvas");
    for (const auto &[more, part] : {std::pair("\"version\": 2", "newer"),
                                     {"\"version\": []", "version"},
                                     {"\"blur\": \"60\"", "blur"},
                                     {"\"scale\": \"2\"", "scale"},
                                     {"\"scale\": 0.5", "scale"},
                                     {"\"scale\": 1e5", "scale"},
                                     {"\"vignette\": 1e39", "vignette"}})
        cases.emplace_back("{\"canvas\": [1, 1], \"steps\": [], " + QByteArray(more) + "}", part);
    for (const char *json : {"", "[]", "{", "7", "{\"canvas\": [1, 1]}", "{\"canvas\": [1, 1], \"steps\": {}}",
                             "{\"canvas\": [1e999, 1], \"steps\": []}", "\xff\xfe"})
        cases.emplace_back(json, "it");
    for (const auto &[json, part] : cases) {
        EXPECT_FALSE(StrokesFile::parse(json, fault)) << json.constData();
        EXPECT_TRUE(fault.contains(QLatin1String(part))) << fault.toStdString() << " of " << json.constData();
        EXPECT_EQ(fault.count(u'.'), 1) << fault.toStdString();
        EXPECT_TRUE(fault.endsWith(u'.'));
    }
}

} // namespace hazelmark
