#include "PaintSession.h"
#include "PointString.h"

#include <gtest/gtest.h>

#include <QVariant>

namespace hazelmark {

namespace {

const PaintStep kStep({0.1, 1.0 / 3, 0.75, 0.9}, {0.1, -0.25}, {1.0 / 3, 1.75}, 64.8F, 0.37F, true, 0.5F, 6.48F);

} // namespace

TEST(PaintStep, RecordHasElevenElementsInTheirOrderAndReadsBack)
{
    // The colour is rounded to single precision.
    const QVariantList expected{u"{0.1, -0.25}"_qs,
                                u"{0.3333333333333333, 1.75}"_qs,
                                0.1F,
                                float(1.0 / 3),
                                0.75F,
                                0.9F,
                                64.8F,
                                0.37F,
                                true,
                                0.5F,
                                6.48F};
    const QVariantList data = kStep.data();
    EXPECT_EQ(data, expected);
    for (int i = 2; i < 8; ++i)
        EXPECT_EQ(data[i].typeId(), QMetaType::Float);

    const PaintStep read(data);
    EXPECT_EQ(read.data(), data);
    EXPECT_EQ(read.start().x(), kStep.start().x());
    EXPECT_EQ(read.end().x(), kStep.end().x());
    EXPECT_EQ(read.color(), (Color{0.1F, float(1.0 / 3), 0.75F, 0.9F}));
    EXPECT_NE(read.color(), kStep.color());
    EXPECT_TRUE(read.eraser());
}

TEST(PointString, EveryDoubleReadsBack)
{
    for (const double value : {0.0, -0.0, 1.0 / 3, 5e-324, 1.7976931348623157e308, 123456789.123456789, -1e-7}) {
        const auto point = pointFromString(stringFromPoint({value, -value}));
        ASSERT_TRUE(point);
        // Not QPointF's comparison, which is a fuzzy one.
        EXPECT_EQ(point->x(), value);
        EXPECT_EQ(point->y(), -value);
    }
}

TEST(PointString, OtherTextIsNoPoint)
{
    EXPECT_EQ(pointFromString(u" { 0.5 ,2e-1 } "), QPointF(0.5, 0.2));
    for (const char16_t *text : {u"", u"{}", u"{", u"}{", u"{1}", u"{1,}", u"{1, 2", u"1, 2", u"{1, 2, 3}", u"{a, b}",
                                 u"{1;2}", u"{0x10, 1}", u"{1, 2}x"})
        EXPECT_FALSE(pointFromString(QStringView(text))) << QString::fromUtf16(text).toStdString();
}

TEST(PaintSession, ListIsSharedAndNeverCopied)
{
    PaintSession session;
    const auto kept = std::make_shared<PaintStepList>();
    session.setSteps(kept);
    session.addStep(kStep);
    session.addStep(kStep);
    EXPECT_EQ(kept->size(), 2U);
    EXPECT_EQ(session.steps(), kept);
    session.clear();
    EXPECT_TRUE(kept->empty());

    session.addStep(kStep);
    session.setSteps(nullptr);
    EXPECT_EQ(kept->size(), 1U);
    session.addStep(kStep);
    EXPECT_EQ(kept->size(), 1U);
}

TEST(PaintSession, DataArrayReplacesTheStepsInPlace)
{
    PaintStep other = kStep;
    other.setPointSize(3);
    PaintSession session;
    session.addStep(kStep);
    session.addStep(other);
    const QVariantList records = session.dataArray();
    ASSERT_EQ(records.size(), 2);
    EXPECT_EQ(PaintSession(records).dataArray(), records);
    EXPECT_EQ(PaintSession(records).steps()->back().pointSize(), 3);

    const auto kept = session.steps();
    session.setDataArray({});
    EXPECT_TRUE(kept->empty());
    EXPECT_TRUE(PaintSession(QVariantList()).steps()->empty());
}

} // namespace hazelmark
