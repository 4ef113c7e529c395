// Near the photo: where it lies, what is seen of it, and that an export has the same.
#include "SessionFixture.h"

#include "Pictures.h"
#include "SamplePhotos.h"
#include "ViewRenderer.h"
#include "ViewTransform.h"

#include <QFile>

#include <cmath>

namespace hazelmark {

using namespace testing;

namespace {

ViewTransform transformOf(QSizeF photo, QSizeF view, double pixelRatio = 1)
{
    const double fit = std::min(view.width() / photo.width(), view.height() / photo.height());
    const QSizeF fitted = photo * fit;
    ViewTransform transform;
    transform.setPlace(
        {photo,
         {(view.width() - fitted.width()) / 2, (view.height() - fitted.height()) / 2, fitted.width(), fitted.height()},
         view,
         pixelRatio});
    return transform;
}

/// The fraction of the photo that lies at a place.
QPointF under(const ViewTransform &transform, QPointF place)
{
    const QRectF frame = transform.frame();
    return {(place.x() - frame.x()) / frame.width(), (place.y() - frame.y()) / frame.height()};
}

class View : public SessionFixture
{
protected:
    void begin(const QString &path)
    {
        start();
        QObject::connect(m_session.get(), &Session::viewDrawn, m_session.get(),
                         [this](const ViewPicture &picture) { m_pictures.push_back(picture); });
        open(path);
    }
    /// A stroke that is begun at a zoom.
    void paintAt(double zoom, QPointF from, QPointF to)
    {
        m_session->painting().raiseScale(zoom);
        m_brush.setZoom(zoom);
        paint(from, to);
        endStroke();
    }
    QImage picture(QSize size, const QRect &part, double canvasScale = 1)
    {
        m_pictures.clear();
        m_session->requestView(size, part, canvasScale, m_settings);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !m_pictures.empty(); }));
        return m_pictures.empty() ? QImage() : m_pictures.back().shown;
    }

    std::vector<ViewPicture> m_pictures;
};

} // namespace

TEST(ViewTransform, ZoomsAboutAPlaceWithinItsBoundsAndNeverShowsBeyondAnEdge)
{
    const QSizeF view(1000, 700);
    for (const double ratio : {1.0, 1.5}) {
        for (const QSizeF photo : {QSizeF(6000, 4000), QSizeF(20000, 200), QSizeF(200, 20000), QSizeF(1, 1)}) {
            ViewTransform transform = transformOf(photo, view, ratio);
            const double fit = transform.fitScale();
            const QPointF pointer(430, 351);
            const auto inside = [&] {
                const QRectF frame = transform.frame();
                for (const auto &[low, high, room] : {std::tuple(frame.left(), frame.right(), view.width()),
                                                      std::tuple(frame.top(), frame.bottom(), view.height())}) {
                    if (high - low > room)
                        EXPECT_TRUE(low <= 0.5 && high >= room - 0.5) << photo.width() << " " << low << " " << high;
                    else
                        EXPECT_NEAR(low + high, room, 1.01 / ratio + 1e-9);
                }
                // On whole pixels of the screen.
                EXPECT_NEAR(frame.left() * ratio, std::round(frame.left() * ratio), 1e-6);
            };
            for (int i = 0; i < 40; ++i) {
                const QPointF before = under(transform, pointer);
                const bool wasCut = transform.visible().size() == QSizeF(view);
                transform.zoomBy(1, pointer);
                if (wasCut) {
                    EXPECT_NEAR(under(transform, pointer).x(), before.x(), 1.5 / transform.pixels().width());
                    EXPECT_NEAR(under(transform, pointer).y(), before.y(), 1.5 / transform.pixels().height());
                }
                if (!transform.isFit())
                    inside();
            }
            EXPECT_DOUBLE_EQ(transform.scale(), std::max(fit, 8.0));
            transform.panBy({-1e9, 1e9});
            inside();
            transform.zoomBy(-100, pointer);
            EXPECT_DOUBLE_EQ(transform.scale(), std::min(fit, 1.0));
        }
    }
}

TEST(ViewTransform, StopsAtFitAndAt100PerCentAndKeepsZoomAndMiddleInAnotherWindow)
{
    ViewTransform transform = transformOf({6000, 4000}, {1000, 700});
    std::vector<double> stops;
    for (int i = 0; i < 10; ++i) {
        transform.zoomBy(1, {500, 350});
        stops.push_back(transform.scale());
    }
    EXPECT_EQ(std::count(stops.begin(), stops.end(), 1.0), 1);
    transform.setScale(1, {500, 350});
    transform.centreOn({0.25, 0.75});
    EXPECT_EQ(transform.visiblePixels(), QRect(1000, 2650, 1000, 700));
    transform.setPlace(transformOf({6000, 4000}, {1600, 900}).place());
    EXPECT_EQ(transform.visiblePixels(), QRect(700, 2550, 1600, 900));
    transform.setFit();
    EXPECT_TRUE(transform.isFit());
    EXPECT_EQ(transform.frame(), transform.place().fitted);
    // A window in which all of it is as large, or larger, fits it.
    for (const QSizeF &view : {QSizeF(1500, 1000), QSizeF(1800, 1200)}) {
        transform.setPlace(transformOf({6000, 4000}, {1000, 700}).place());
        transform.setScale(0.25, {500, 350});
        EXPECT_FALSE(transform.isFit());
        transform.setPlace(transformOf({6000, 4000}, view).place());
        EXPECT_TRUE(transform.isFit());
    }
}

/// At 100 % what is seen is what the file has, wherever the stroke was painted; a part of it alone is drawn.
TEST_F(View, ShowsWhatAnExportWrites)
{
    for (const auto &[zoom, orientation, format] :
         {std::tuple(1.0, "1", QImage::Format_RGBX8888), std::tuple(3.0, "1", QImage::Format_RGBA64),
          std::tuple(9.0, "6", QImage::Format_RGBX8888)}) {
        MetadataBlocks turn;
        turn.exif = exifBlock({{"Exif.Image.Orientation", orientation}});
        begin(writePhoto(m_folder, WriteFormat::Png, turn, noise({1500, 1100}, format)));
        paintAt(zoom, {0.3, 0.4}, {0.6, 0.5});
        const QSize size = m_session->photo().inputImage->size().toSize();
        const QRect part(200, 300, 640, 449); // a line more than whole bands
        const QImage seen = picture(size, part);
        EXPECT_EQ(m_session->lastExportedImage(), nullptr);
        exportTo({});
        const PhotoImagePtr result = m_session->lastExportedImage();
        const QImage file = DisplayColors().shown(result->bitmap(), result->iccProfile());
        ASSERT_EQ(file.size(), size);
        EXPECT_LE(difference(seen, file.copy(part)), 2) << zoom;
        EXPECT_GT(difference(seen, file.copy(part.translated(5, 0))), 2) << "the check can fail";
        // Looking leaves the mask as it is; a stroke that was painted near makes it finer.
        picture(size / 2, QRect(0, 0, 200, 200), 2);
        EXPECT_EQ(m_session->lastExportedImage(), result);
        EXPECT_EQ(m_session->painting().scaled().scale, std::min(zoom, 2.0));
        // One decoding serves view and export, unless the file was written to in between.
        ExportJob job;
        job.photo = m_session->photo().record->photo();
        job.loaded = m_session->fullPhoto().loaded();
        ASSERT_TRUE(job.loaded && job.run());
        ASSERT_TRUE(QFile::resize(m_session->photo().path(), 2000));
        EXPECT_FALSE(job.run()) << "what was decoded is not what the file holds";
    }
}

/// A painting in a file is as fine as the one in the window: the command line renders the same picture of it.
TEST_F(View, GivesAFileOfStrokesItsScale)
{
    begin(writePhoto(m_folder, WriteFormat::Png, {}, noise({1500, 1100}, QImage::Format_RGBX8888)));
    m_brush.setHardness(0.3F);
    for (const auto &[zoom, y] : {std::pair(1.0, 0.2), std::pair(1.7, 0.5), std::pair(1.2, 0.8)})
        paintAt(zoom, {0.21, y}, {0.63, y + 0.1});
    exportTo({});
    QString fault;
    const std::optional<StrokesFile> file = StrokesFile::parse(m_session->painting().file().toJson(), fault);
    ASSERT_TRUE(file) << fault.toStdString();
    EXPECT_NEAR(file->scale, 1.7, 1e-9);
    ExportJob job;
    job.photo = m_session->photo().record->photo();
    job.painting = file->painting();
    job.settings = m_settings;
    const Outcome<ImageLoader::Loaded> rendered = job.run();
    ASSERT_TRUE(rendered);
    EXPECT_EQ(rendered->photo->bitmap(), m_session->lastExportedImage()->bitmap());
    EXPECT_GT(qGreen(file->mask(fault).pixel(int(0.3 * 750 * 1.7), int(0.52 * 550 * 1.7))), 100);
    // What comes back is as fine as it was.
    m_session->painting().clearPainting();
    EXPECT_EQ(m_session->painting().scaled().scale, 1);
    m_session->undo();
    EXPECT_NEAR(m_session->painting().scaled().scale, 1.7, 1e-9);
    m_session->painting().clearPainting();
    m_session->painting().replaceBy(*file);
    EXPECT_NEAR(m_session->painting().scaled().scale, 1.7, 1e-9);
    m_session->painting().clearPainting();
    EXPECT_EQ(m_session->painting().scaled().scale, 1);
}

/// What is kept from picture to picture shows in none of them.
TEST_F(View, DrawsTheSamePictureWhateverWasDrawnBefore)
{
    // A blur over cells, and one over pixels.
    for (const auto &[format, blur] :
         {std::pair(QImage::Format_RGBX8888, 100.0F), std::pair(QImage::Format_RGBX8888, 40.0F),
          std::pair(QImage::Format_RGBA8888, 100.0F), std::pair(QImage::Format_RGBX64, 40.0F)}) {
        begin(writePhoto(m_folder, WriteFormat::Png, {}, noise({1500, 1100}, format)));
        const PhotoImagePtr full = ImageLoader::load(*m_session->photo().record->photo())->photo;
        ViewRenderer renderer;
        QImage last;
        int differing = 0;
        const auto look = [&](QSize size, const QRect &part, float blur, double canvasScale = 1) {
            ViewJob job;
            job.photo = full;
            job.size = size;
            job.part = part;
            job.painting = m_session->painting().scaled();
            job.canvas = m_session->painting().canvas();
            job.canvasScale = canvasScale;
            job.settings.blurAmount = blur;
            const QImage picture = renderer.render(job).shown;
            ASSERT_EQ(picture, ViewRenderer().render(job).shown) << part.x() << " " << blur;
            differing += std::exchange(last, picture) != picture;
        };
        const QSize near(1200, 880);
        const auto lookAround = [&, blur = blur] {
            for (const QPoint by : {QPoint(0, 0), QPoint(37, 23), QPoint(-120, 40), QPoint(900, 700)})
                look(near, QRect(QPoint(200, 150) + by, QSize(400, 300)) & QRect(QPoint(), near), blur);
            look(full->pixelSize(), {300, 200, 411, 283}, blur);
            look(full->pixelSize() / 3, {100, 50, 300, 200}, blur);
        };
        lookAround();
        paintAt(1, {0.25, 0.3}, {0.4, 0.35});
        lookAround();
        paintAt(2.5, {0.3, 0.3}, {0.5, 0.4});
        lookAround();
        look(near, {200, 150, 400, 300}, blur, 2);
        paintAt(2.5, {0.3, 0.25}, {0.31, 0.4});
        look(near, {200, 150, 400, 300}, blur, 2);
        m_session->undo();
        look(near, {200, 150, 400, 300}, blur, 2);
        look(near, {200, 150, 400, 300}, 0, 2);
        m_session->clearPainting();
        look(near, {200, 150, 400, 300}, blur, 2);
        EXPECT_GT(differing, 12);
    }
}

/// While a hand zooms, the canvas for the screen only looks like the one of the steps; that one follows.
TEST_F(View, DrawsTheCanvasFromItsStepsWhenTheZoomIsOver)
{
    begin(writePhoto(m_folder, WriteFormat::Png, {},
                     noise({1500, 1000}, QImage::Format_RGBX8888))); // no larger one comes
    m_brush.setHardness(0);
    paintAt(2, {0.3, 0.4}, {0.6, 0.5});
    const QRect part(300, 300, 400, 300);
    for (const double zoom : {1.9, 1.6, 1.5})
        m_session->requestView((QSizeF(750, 500) * zoom).toSize(), part, zoom, m_settings);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !m_pictures.empty() && !m_pictures.back().wasInHaste; }));
    const ViewPicture &last = m_pictures.back();
    ASSERT_GE(m_pictures.size(), 2U);
    const ViewPicture &hasty = m_pictures[m_pictures.size() - 2];
    ASSERT_TRUE(hasty.wasInHaste);
    EXPECT_EQ(hasty.size, QSize(1125, 750));
    EXPECT_EQ(hasty.shown, last.shown);
    CanvasPart steps(m_session->painting().scaled().frame, 1.5, last.canvas.rect());
    steps.drawOn(*last.steps, 1);
    EXPECT_EQ(last.canvas.pixels(), steps.pixels());
    EXPECT_EQ(hasty.canvas.stepCount(), steps.stepCount());
    const auto bytes = [&](QImage pixels, QPoint corner) {
        pixels.reinterpretAsFormat(QImage::Format_RGBX8888);
        return pixels.copy(hasty.canvas.rect().translated(-corner));
    };
    const QImage looks = bytes(hasty.canvas.pixels(), hasty.canvas.rect().topLeft());
    EXPECT_LE(difference(looks, bytes(steps.pixels(), steps.rect().topLeft())), 12);
    EXPECT_GT(difference(looks, bytes(steps.pixels(), steps.rect().topLeft() + QPoint(0, 1))), 50);
}

/// Of many wishes the last one is drawn, and small, long and thin pictures are.
TEST_F(View, DrawsTheNewestWishOfAnyPicture)
{
    for (const QSize size : {QSize(1, 1), QSize(3, 3), QSize(20000, 200), QSize(200, 20000)}) {
        begin(photo("a.png", size));
        paintAt(4, {0.4, 0.4}, {0.6, 0.6});
        m_pictures.clear();
        const QRect last = QRect(size.width() / 2, size.height() / 2, 300, 200) & QRect(QPoint(), size);
        for (int i = 100; i >= 1; --i)
            m_session->requestView(size.scaled(size / i, Qt::KeepAspectRatioByExpanding).expandedTo({1, 1}), last, 2,
                                   m_settings);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !m_pictures.empty() && m_pictures.back().size == size; }));
        EXPECT_EQ(m_pictures.back().shown.size(), last.size());
        exportTo({});
        ASSERT_NE(m_session->lastExportedImage(), nullptr);
        EXPECT_LE(difference(m_pictures.back().shown,
                             DisplayColors().shown(m_session->lastExportedImage()->bitmap(), {}).copy(last)),
                  2);
    }
}

/// What is seen comes first; every preview comes in the end.
TEST_F(View, IsDrawnBeforeThePreviewsThatAreAskedForMeanwhile)
{
    std::atomic<bool> hasComeNear = false;
    std::atomic<int> early = 0;
    m_work.render = [&](const PreviewJob &job) {
        early += hasComeNear ? 0 : 1;
        return job.resizedInputImage;
    };
    begin(photo("a.png", {1200, 800}));
    QObject::connect(m_session.get(), &Session::viewDrawn, m_session.get(), [&] { hasComeNear = true; });
    paintAt(1, {0.3, 0.4}, {0.6, 0.5});
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_previews.size() == 1; }));
    picture({1200, 800}, {0, 0, 100, 100});
    for (const bool leaves : {false, true}) {
        hasComeNear = leaves; // or none will come, and the previews do all the same
        early = 0;
        m_previews.clear();
        m_session->requestView({1200, 800}, {0, 0, 1200, 800}, 1, m_settings);
        requestPreview();
        requestPreview();
        EXPECT_TRUE(m_session->hasPreviewsUnderWay());
        if (leaves)
            m_session->leaveView();
        EXPECT_TRUE(QTest::qWaitFor([&] { return m_previews.size() == 2; }));
        EXPECT_EQ(early, 0);
        EXPECT_FALSE(m_session->hasPreviewsUnderWay());
    }
}

} // namespace hazelmark
