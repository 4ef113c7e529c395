// From a path to the open photo: whole or not at all, and which of several it is.
#include "SessionFixture.h"

#include <string_view>

namespace hazelmark {

using SessionDrops = SessionFixture;
/// What is dropped at once (whole, cut off, no picture), the order in which it is read to its end (indices from 0), and
/// which of it is open then: 0 for the photo before.
using Drop = std::tuple<const char *, const char *, int>;

TEST_F(SessionDrops, TheLastWholePhotoIsOpenAtTheEndWhereverAnotherBreaks)
{
    for (const auto &[dropped, order, last] :
         {Drop("ww", "12", 2), Drop("ww", "21", 2), Drop("wn", "12", 1), Drop("wc", "21", 1), Drop("cw", "12", 2),
          Drop("cw", "21", 2), Drop("wcnc", "1234", 1), Drop("wcnc", "2431", 1), Drop("ccc", "123", 0),
          Drop("wwwwc", "21345", 4)}) {
        const std::string_view kinds(dropped);
        std::vector<Gate> gates(kinds.size() + 1);
        gates[0].open();
        m_work.reading.open = [&gates, real = Session::Work().reading.open](const QString &path) {
            gates[std::size_t(path.chopped(4).right(1).toInt())].pass();
            return real(path);
        };
        start();
        m_opened.clear();
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
        for (const char index : std::string_view(order)) {
            gates[std::size_t(index - '0')].open();
            QTest::qWait(30);
        }
        ASSERT_TRUE(QTest::qWaitFor([&] { return !m_session->isLoading(); }));
        EXPECT_EQ(m_session->photo().path(), paths[last]);
        EXPECT_EQ(m_opened.size(), last ? 2 : 1) << "none that is replaced meanwhile is shown for a moment";
        m_session.reset(); // ends its threads while the gates are there
    }
}

} // namespace hazelmark
