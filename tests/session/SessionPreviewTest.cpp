// Painting and its previews: what makes the mask, what starts a preview, and which of them arrives.
#include "SessionFixture.h"

#include "Utils.h"

namespace hazelmark {

namespace {

/// Renders a picture in one colour: red is the blur amount, so that a test sees whose result has arrived.
class SessionPreviews : public SessionFixture
{
protected:
    SessionPreviews()
    {
        m_work.render = [this](const PreviewJob &job) {
            ++m_rendered;
            if (m_held)
                m_gate.pass();
            m_sizes.emplace_back(job.resizedInputImage->pixelSize());
            if (job.settings.blurAmount == 13.0F)
                return PhotoImagePtr();
            QImage result(job.resizedInputImage->pixelSize(), QImage::Format_RGBX8888);
            result.fill(QColor(int(job.settings.blurAmount.value_or(0)), 0, 0));
            return PhotoImage::fromBitmap(result);
        };
    }
    ~SessionPreviews() override
    {
        m_gate.open();
        m_session.reset(); // waits for the render that uses what follows
    }

    int lastShown() const { return m_previews.empty() ? -1 : m_previews.back().pixelColor(3, 3).red(); }
    bool shows(std::size_t count)
    {
        return QTest::qWaitFor([&] { return m_previews.size() >= count; }) && m_previews.size() == count;
    }

    Gate m_gate;
    std::atomic<bool> m_held = false;
    std::atomic<int> m_rendered = 0;
    std::vector<QSize> m_sizes; ///< of inputs, by the one thread that renders
};

} // namespace

TEST_F(SessionPreviews, TheMaskIsTheCanvasOverBlackWhereAToolIsInForce)
{
    start();
    open(photo("a.png"));
    paint({0.2, 0.5}, {0.8, 0.5});
    EXPECT_EQ(maskAt({0.5, 0.5}), -1) << "painting itself makes none";
    endStroke();
    const QImage canvas = m_canvas.snapshot();
    for (const QColor &color : {QColor(Qt::black), QColor(200, 100, 50)}) { // the two ways to the same picture
        const QImage inOnePass = Utils::sharedUtils().addBackgroundToImage(canvas, color)->bitmap();
        const QImage drawn = Utils::sharedUtils().addBackgroundToImage(PhotoImage::fromBitmap(canvas), color)->bitmap();
        for (int y = 0; y < canvas.height(); ++y) {
            for (const auto level : {&QColor::red, &QColor::green, &QColor::blue})
                EXPECT_NEAR((inOnePass.pixelColor(40, y).*level)(), (drawn.pixelColor(40, y).*level)(), 1);
        }
    }
    EXPECT_GT(maskAt({0.3, 0.5}), 200);
    EXPECT_EQ(maskAt({0.3, 0.1}), 0);
    EXPECT_EQ(m_session->painting().maskImage()->bitmap().pixelColor(60, 50), QColor(0, maskAt({0.4, 0.5}), 0));

    m_brush.setEraser(true);
    m_session->painting().setToolType(Painting::kToolErase);
    for (int i = 0; i < 3; ++i)
        paint({0.2, 0.5}, {0.45, 0.5});
    endStroke();
    EXPECT_LT(maskAt({0.3, 0.5}), 20);
    EXPECT_GT(maskAt({0.7, 0.5}), 200);

    m_session->painting().setToolType(Painting::kToolNone);
    paint({0.5, 0.5}, {0.8, 0.5});
    requestPreview();
    EXPECT_GT(maskAt({0.7, 0.5}), 200) << "without a tool the mask stays";
}

TEST_F(SessionPreviews, EveryRequestIsRenderedAndTheLastToFinishStays)
{
    start();
    open(photo("a.png"));
    m_session->setIsRunningAlgorithm(true);
    m_session->setLastExportedImage(m_session->photo().inputImage);
    for (int value = 21; value <= 60; ++value)
        requestPreview(float(value));
    EXPECT_EQ(m_session->lastExportedImage(), nullptr) << "forgotten by every request";
    ASSERT_TRUE(shows(40));
    EXPECT_EQ(m_rendered, 40);
    EXPECT_EQ(lastShown(), 60);
    EXPECT_FALSE(m_session->isRunningAlgorithm()) << "a result frees it";
    m_session->setIsRunningAlgorithm(true);
    requestPreview(13);
    ASSERT_TRUE(shows(41));
    EXPECT_TRUE(m_previews.back().isNull());
    EXPECT_FALSE(m_session->isRunningAlgorithm()) << "and one that cannot be drawn too";
}

TEST_F(SessionPreviews, WithoutPhotoOrMaskThereIsNothingToRender)
{
    start();
    requestPreview();
    open(photo("a.png"));
    m_session->painting().reset();
    requestPreview();
    QTest::qWait(30);
    EXPECT_EQ(m_rendered, 0);
    m_session->setOverlayImage(m_session->photo().inputImage);
    requestPreview();
    ASSERT_TRUE(shows(1));
}

TEST_F(SessionPreviews, OfAPhotoThatIsNoLongerOpenOrASessionThatIsOverAreDropped)
{
    start();
    open(photo("a.png"));
    m_held = true;
    requestPreview();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_rendered == 1; }));
    open(photo("b.png"));
    m_gate.open(1);
    requestPreview(30);
    m_gate.open(1);
    ASSERT_TRUE(shows(1));
    EXPECT_EQ(lastShown(), 30);
    for (int i = 0; i < 5; ++i)
        requestPreview();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_rendered == 3; }));
    m_gate.open();
    m_session.reset();
    QTest::qWait(10);
    EXPECT_EQ(m_previews.size(), 1U);
}

TEST_F(SessionPreviews, NoFitBuildsOnTheRoundingOfTheOneBefore)
{
    start();
    open(photo("a.png", {1500, 1000}));
    QSize drawn;
    QObject::connect(m_session.get(), &Session::inputDrawn, m_session.get(),
                     [&](const QImage &shown) { drawn = shown.size(); });
    for (int i = 0; i < 100; ++i)
        m_session->fit({100.0 + i * 7 % 60, 70.0 + i * 11 % 40});
    m_session->fit({600, 400});
    EXPECT_EQ(m_session->photo().inputImage->size(), QSizeF(1500, 1000));
    EXPECT_EQ(m_session->resizedInputImage()->pixelSize(), QSize(600, 400));
    EXPECT_TRUE(QTest::qWaitFor([&] { return drawn == QSize(600, 400); }));
    m_canvas.setCanvasSize({600, 400});
    requestPreview();
    ASSERT_TRUE(shows(1));
    EXPECT_EQ(m_sizes.back(), QSize(600, 400));
}

} // namespace hazelmark
