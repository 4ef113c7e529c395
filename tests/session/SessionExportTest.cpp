// From a painting to its file: what goes into it, what counts as saved, and that another photo gets none of it.
#include "SessionFixture.h"

#include <QDir>

namespace hazelmark {

namespace {

using SessionExport = SessionFixture;

} // namespace

TEST_F(SessionExport, OnlyAWholeFileWithTheseStrokesAndSettingsCountsAsSaved)
{
    m_work.exporting.write = [](const auto &, const QString &path, const auto &) -> Outcome<Done> {
        if (path.endsWith(QLatin1String("good.png")))
            return Done();
        return Failure{Failure::Reason::DiskFull, path, {}};
    };
    start();
    open(photo("a.png"));
    EXPECT_TRUE(m_session->isSaved(m_settings)) << "nothing was painted";
    paint({0.2, 0.5}, {0.8, 0.5});
    endStroke();
    CoreFilterObject others = m_settings;
    others.blurAmount = 10;
    const std::tuple<const char *, std::function<void()>, bool> stories[]{
        {"painted", [] {}, false},
        {"shared", [&] { exportTo({}); }, false},
        {"a disk that is full", [&] { exportTo(out("full.png")); }, false},
        {"written", [&] { exportTo(out("good.png")); }, true},
        {"a preview of the same", [&] { requestPreview(); }, true},
        {"another write fails", [&] { exportTo(out("full.png")); }, true},
        {"one stroke more",
         [&] {
             paint({0.2, 0.2}, {0.8, 0.2});
             endStroke();
         },
         false},
        {"written again", [&] { exportTo(out("good.png")); }, true},
    };
    for (const auto &[what, happens, saved] : stories) {
        happens();
        EXPECT_EQ(m_session->isSaved(m_settings), saved) << what;
        EXPECT_FALSE(m_session->isSaved(others)) << what;
    }
}

TEST_F(SessionExport, TheEndOfTheSessionWaitsForTheFile)
{
    m_work.exporting.render = [](const ExportJob &job) {
        QTest::qSleep(100);
        return job.run();
    };
    start();
    open(photo("a.png"));
    paint({0.5, 0.2}, {0.5, 0.8});
    m_session->endStroke(); // no preview is asked for
    m_session->startExport(exportRequest(out("out.png")));
    m_session.reset();
    const int level = QImage(out("out.png")).pixelColor(150, 100).green(); // none where there is no whole file
    EXPECT_TRUE(level > 90 && level < 250) << "written to its end and blurred: " << level;
    EXPECT_TRUE(m_results.empty());
}

} // namespace hazelmark
