// Painting and its previews: what makes the mask, what starts a preview, and which of them arrives.
#include "SessionFixture.h"

#include "Pictures.h"

namespace hazelmark {

namespace {

using SessionPreviews = SessionFixture;
using testing::difference;

} // namespace

TEST_F(SessionPreviews, TheMaskIsTheCanvasOverBlackWhereAToolIsInForce)
{
    start();
    open(photo("a.png"));
    paint({0.2, 0.5}, {0.8, 0.5});
    EXPECT_EQ(m_session->painting().maskImage(), nullptr) << "painting itself makes none";
    endStroke();
    QImage wanted = m_canvas.snapshot();
    wanted.reinterpretAsFormat(QImage::Format_RGBX8888); // premultiplied, what stands there over black
    EXPECT_EQ(difference(m_session->painting().maskImage()->bitmap(), wanted), 0);
    m_session->painting().setToolType(Painting::kToolNone);
    paint({0.5, 0.2}, {0.8, 0.2});
    requestPreview();
    EXPECT_EQ(difference(m_session->painting().maskImage()->bitmap(), wanted), 0) << "without a tool it stays";
}

TEST_F(SessionPreviews, OfAPhotoThatIsNoLongerOpenOrASessionThatIsOverAreDropped)
{
    Gate gate;
    std::atomic<int> rendered = 0;
    m_work.render = [&](const PreviewJob &job) {
        ++rendered;
        gate.pass();
        QImage result(job.resizedInputImage->pixelSize(), QImage::Format_RGBX8888);
        result.fill(QColor(int(job.settings.blurAmount.value_or(0)), 0, 0)); // tells whose result has arrived
        return PhotoImage::fromBitmap(result);
    };
    start();
    open(photo("a.png"));
    requestPreview();
    EXPECT_TRUE(QTest::qWaitFor([&] { return rendered == 1; }));
    open(photo("b.png"));
    gate.open(1);
    requestPreview(30);
    gate.open(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !m_previews.empty(); }));
    EXPECT_EQ(m_previews.empty() ? -1 : m_previews.back().pixelColor(3, 3).red(), 30);
    requestPreview();
    EXPECT_TRUE(QTest::qWaitFor([&] { return rendered == 3; }));
    gate.open();
    m_session.reset();
    QTest::qWait(10);
    EXPECT_EQ(m_previews.size(), 1U);
}

} // namespace hazelmark
