// From a path to the open photo: whole or not at all, and which of several it is.
#include "SessionFixture.h"

#include <string_view>

namespace hazelmark {

namespace {

using SessionOpening = SessionFixture;

/// What is dropped at once (whole, cut off, no picture), the order in which it is read to its end (indices from 0), and
/// which of it is open then: 0 for the photo before.
struct Drop
{
    const char *kinds;
    const char *order;
    int open;
};

class SessionDrops : public SessionFixture, public testing::WithParamInterface<Drop>
{
};

} // namespace

TEST_P(SessionDrops, TheLastWholePhotoIsOpenAtTheEndWhereverAnotherBreaks)
{
    const Drop drop = GetParam();
    const std::string_view kinds(drop.kinds);
    std::vector<Gate> gates(kinds.size() + 1);
    gates[0].open();
    m_work.reading.open = [&gates, real = m_work.reading.open](const QString &path) {
        gates[std::size_t(path.chopped(4).right(1).toInt())].pass();
        return real(path);
    };
    start();
    const QByteArray whole = contentOf(photo("before-0.png"));
    QStringList paths{out("before-0.png")};
    open(paths.first());
    for (const char kind : kinds) {
        paths << file(QStringLiteral("%1.png").arg(paths.size()), kind == 'w'   ? whole
                                                                  : kind == 'c' ? whole.first(whole.size() / 3)
                                                                                : QByteArray("words"));
    }
    for (const QString &path : paths.mid(1))
        m_session->open(path, kView);
    for (const char index : std::string_view(drop.order)) {
        gates[std::size_t(index - '0')].open();
        QTest::qWait(30);
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return !m_session->isLoading(); }));
    EXPECT_EQ(m_session->photo().path(), paths[drop.open]);
    EXPECT_EQ(m_opened.size(), drop.open ? 2 : 1) << "none that is replaced meanwhile is shown for a moment";
}

INSTANTIATE_TEST_SUITE_P(Orders, SessionDrops,
                         testing::Values(Drop{"ww", "12", 2}, Drop{"ww", "21", 2}, Drop{"wn", "12", 1},
                                         Drop{"wc", "21", 1}, Drop{"cw", "12", 2}, Drop{"cw", "21", 2},
                                         Drop{"wcnc", "1234", 1}, Drop{"wcnc", "2431", 1}, Drop{"ccc", "123", 0},
                                         Drop{"wwwwc", "21345", 4}));

TEST_F(SessionOpening, ABrokenFileTouchesNothing)
{
    start();
    const QString before = photo("before.png");
    const QByteArray png = contentOf(before);
    open(before);
    paint({0.3, 0.5}, {0.6, 0.5});
    endStroke();
    m_session->setLastExportedImage(m_session->photo().inputImage);
    using Reason = Failure::Reason;
    const std::tuple<const char16_t *, QByteArray, Reason> files[]{
        {u"text.jpg", "just words", Reason::NotAPicture},
        {u"nothing.jpg", "", Reason::Empty},
        {u"cut.png", png.first(png.size() / 3), Reason::Truncated},
    };
    for (const auto &[name, content, reason] : files) {
        const QString path = file(QString::fromUtf16(name), content);
        m_session->open(path, kView);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !m_session->isLoading(); }));
        ASSERT_FALSE(m_refused.empty());
        EXPECT_EQ(m_refused.back().reason, reason);
        EXPECT_EQ(m_refused.back().path, path);
        EXPECT_FALSE(m_session->read(path, kView));
    }
    EXPECT_EQ(m_opened, QStringList(before));
    EXPECT_FALSE(m_session->painting().isEmpty());
    EXPECT_GT(maskAt({0.4, 0.5}), 200);
    EXPECT_TRUE(m_session->lastExportedImage());
}

} // namespace hazelmark
