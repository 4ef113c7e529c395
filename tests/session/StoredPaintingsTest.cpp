#include "SessionFixture.h"

#include "PaintingStore.h"

#include <QDir>

#include <utime.h>

namespace hazelmark {

namespace {

class StoredPaintings : public SessionFixture
{
protected:
    QString folder() const { return m_folder.filePath(QStringLiteral("state/hazelmark/paintings")); }
    QFileInfoList files() const { return QDir(folder()).entryInfoList(QDir::Files | QDir::Hidden, QDir::Time); }
    void stroke(QPointF place, float diameter = 20)
    {
        m_brush.setLineWidth(diameter);
        paint(place, place);
        endStroke();
    }
    /// Starts anew, with the stored paintings of the photo.
    void startAgain(const QString &path, std::size_t stored)
    {
        m_session.reset();
        start();
        QObject::connect(m_session.get(), &Session::paintingRefused, m_session.get(),
                         [this](const Failure &failure) { m_refused.push_back(failure); });
        open(path);
        ASSERT_TRUE(QTest::qWaitFor([&] { return m_session->storedPaintings().size() == stored; }));
    }
    void restore(std::size_t number)
    {
        bool restored = false;
        const auto connection = QObject::connect(m_session.get(), &Session::paintingReplaced, [&] { restored = true; });
        m_session->restore(m_session->storedPaintings().at(number));
        ASSERT_TRUE(QTest::qWaitFor([&] { return restored; }));
        QObject::disconnect(connection);
    }
    int alphaAt(QPointF place)
    {
        const QImage pixels = m_canvas.snapshot();
        return qAlpha(pixels.pixel(int(place.x() * pixels.width()), int(place.y() * pixels.height())));
    }
    /// As if the file had been written so many days ago.
    static void age(const QString &path, int days)
    {
        const time_t then = time(nullptr) - time_t(days) * 86400;
        const utimbuf times{then, then};
        EXPECT_EQ(::utime(path.toLocal8Bit().constData(), &times), 0);
    }
};

} // namespace

TEST_F(StoredPaintings, ComeBackInAWindowOfAnotherSizeAsOneEdit)
{
    const QString path = photo("photo.png", {800, 600});
    startAgain(path, 0);
    stroke(kLeft, 80);
    requestPreview(35);
    ASSERT_TRUE(QTest::qWaitFor([&] { return files().size() == 1; })) << "by itself, while the program runs";
    m_brush.setLineWidth(80);
    paint(kRight, kRight); // is still under way when all ends
    startAgain(path, 1);
    EXPECT_EQ(files()[0].permissions() & (QFile::ReadGroup | QFile::ReadOther), 0) << "nobody else's business";
    EXPECT_TRUE(m_session->painting().isEmpty());

    m_canvas.setCanvasSize({200, 150});
    std::optional<float> blur;
    QObject::connect(m_session.get(), &Session::paintingSettingsRead,
                     [&](std::optional<float> amount, std::optional<float>) { blur = amount; });
    stroke({0.5, 0.1});
    restore(0);
    EXPECT_EQ(blur, 35);
    for (const QPointF place : {kLeft, kRight}) {
        EXPECT_EQ(alphaAt(place), 255);
        EXPECT_EQ(alphaAt(place + QPointF(0.09, 0)), 255) << "as wide in the picture as it was";
        EXPECT_EQ(alphaAt(place + QPointF(0.12, 0)), 0);
    }
    EXPECT_EQ(alphaAt({0.5, 0.1}), 0);
    EXPECT_EQ(m_session->undoEdit(), PaintEdit::Restore);
    m_session->undo();
    EXPECT_EQ(alphaAt({0.5, 0.1}), 255);
    EXPECT_EQ(alphaAt(kLeft), 0);
}

TEST_F(StoredPaintings, AreTheLastThreeOfAPhotoKnownByItsContentOrElseItsPath)
{
    const QString path = photo("photo.png");
    for (std::size_t i = 0; i < 5; ++i) { // each begins anew, none is restored
        startAgain(path, std::min<std::size_t>(i, 3));
        stroke({0.1 + 0.2 * double(i), 0.5});
        m_session->clearPainting(); // which is not what is kept
        m_session.reset();
        EXPECT_EQ(files().size(), qsizetype(std::min<std::size_t>(i + 1, 3)));
        for (qsizetype age_ = files().size(); age_ > 0; --age_)
            age(files().at(age_ - 1).filePath(), int(2 * age_ + 1)); // times may be too coarse to order them
    }
    startAgain(path, 3);
    for (std::size_t i = 0; i < 3; ++i) {
        restore(i);
        EXPECT_EQ(alphaAt({0.9 - 0.2 * double(i), 0.5}), 255) << "the newest first";
        EXPECT_FALSE(m_session->storedPaintings()[i].photoHasChanged);
    }
    m_session.reset();
    EXPECT_EQ(files().size(), 3) << "what was only restored is not kept twice";

    ASSERT_TRUE(QFile::rename(path, out("moved.png")));
    startAgain(out("moved.png"), 3);
    photo("photo.png", {310, 200});
    startAgain(path, 3);
    EXPECT_TRUE(m_session->storedPaintings()[0].photoHasChanged);
    startAgain(photo("another.png", {320, 200}), 0);

    age(files()[1].filePath(), 366);
    startAgain(path, 2);
    m_session->forgetStoredPaintings();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_session->storedPaintings().empty(); }));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(StoredPaintings, ThatCannotBeUsedAreSetAside)
{
    const QString path = photo("photo.png");
    startAgain(path, 0);
    stroke(kLeft);
    m_session.reset();
    ASSERT_EQ(files().size(), 1);
    const QString good = files()[0].filePath();
    const QByteArray content = contentOf(good);
    for (const QByteArray &bad :
         {content.left(content.size() / 2), QByteArray(content).replace("\"version\":1", "\"version\":2"),
          QByteArray(content).replace("\"photo\":\"", "\"photo\":\"0")}) {
        file(good, bad);
        startAgain(path, 0);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !QFile::exists(good); }));
    }
    file(good, content);
    startAgain(path, 1);
}

TEST_F(StoredPaintings, AreSavedAndOpenedByHandAndGiveTheSamePicture)
{
    startAgain(photo("photo.png"), 0);
    stroke(kLeft, 50);
    m_session->blurEverything();
    m_brush.setEraser(true);
    stroke(kRight, 40);
    QString saved;
    QObject::connect(m_session.get(), &Session::paintingSaved, [&](const QString &path) { saved = path; });
    m_session->savePaintingAs(out("painting.json"), m_settings);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !saved.isEmpty(); }));
    requestPreview();
    const QImage mask = m_session->painting().maskImage()->bitmap();
    QString fault;
    EXPECT_EQ(StrokesFile::read(saved, fault)->mask(fault), mask);
    EXPECT_EQ(StrokesFile::read(saved, fault)->steps->size(), 3U) << "without what was covered";
    EXPECT_EQ(StrokesFile::read(saved, fault)->blur, 60);

    open(photo("next.png"));
    m_session->openPainting(saved);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !m_session->painting().isEmpty(); }));
    requestPreview();
    EXPECT_EQ(m_session->painting().maskImage()->bitmap(), mask);

    m_session->openPainting(m_session->photo().path());
    m_session->savePaintingAs(m_session->photo().path(), m_settings);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_refused.size() == 2; }));
    EXPECT_EQ(m_refused[0].reason, Failure::Reason::NotAPainting);
    EXPECT_EQ(m_refused[1].reason, Failure::Reason::SameAsSource);
    requestPreview();
    EXPECT_EQ(m_session->painting().maskImage()->bitmap(), mask);
}

TEST_F(StoredPaintings, AreThoseOfTheLastHundredPhotos)
{
    QDir().mkpath(folder());
    const PaintingStore store(folder());
    for (int photo = 0; photo < 104; ++photo) {
        const QString number = QString::number(photo, 16);
        const QString path = store.newPath({number.rightJustified(32, u'0'), number.rightJustified(16, u'0')});
        for (const char *aside : {"", ".aside"}) { // those that could not be used are no photo's
            file(path + QLatin1String(aside), {});
            age(path + QLatin1String(aside), photo);
        }
    }
    file(QStringLiteral("state/hazelmark/paintings/of-somebody-else.json"), {});
    store.prune();
    EXPECT_EQ(files().size(), 100 + 3 + 1);
    const QStringList kept = QDir(folder()).entryList(QDir::Files, QDir::Name);
    EXPECT_TRUE(kept[0].startsWith(QString(32, u'0')) && kept[5].startsWith(QString(31, u'0') + u'2'));
    EXPECT_TRUE(kept[102].startsWith(QStringLiteral("63-").rightJustified(33, u'0')));
    store.forget();
    EXPECT_EQ(files().size(), 1);
}

} // namespace hazelmark
