#include "NotificationCenter.h"
#include "ProcessWide.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

using namespace hazelmark;
using testing::ElementsAre;

namespace {

const QString kName = QStringLiteral("notificationMouseIn");

class NotificationCenterTest : public testing::Test
{
protected:
    NotificationCenter::Handler note(const std::string &what)
    {
        return [this, what](const QVariantMap &) { m_calls.push_back(what); };
    }

    NotificationCenter m_center;
    std::vector<std::string> m_calls;
};

} // namespace

TEST_F(NotificationCenterTest, CallsTheObserversOfTheNameInOrderWithTheUserInfo)
{
    const auto first = m_center.addObserver(kName, note("first"));
    const auto other = m_center.addObserver(QStringLiteral("notificationMouseout"), note("other"));
    const auto second = m_center.addObserver(kName, note("second"));
    QVariantMap seen;
    const auto third = m_center.addObserver(kName, [&](const QVariantMap &userInfo) { seen = userInfo; });
    const QVariantMap sent{{QStringLiteral("WINDOW_OBJECT"), 7}};
    m_center.post(kName, sent);
    EXPECT_THAT(m_calls, ElementsAre("first", "second"));
    EXPECT_EQ(seen, sent);
}

TEST_F(NotificationCenterTest, RemovesAnObserverWithItsToken)
{
    {
        const auto token = m_center.addObserver(kName, note("gone"));
    }
    auto kept = m_center.addObserver(kName, note("kept"));
    auto moved = std::move(kept);
    m_center.post(kName);
    EXPECT_THAT(m_calls, ElementsAre("kept"));
    moved = m_center.addObserver(kName, note("new")); // assignment removes what the token stood for
    m_center.post(kName);
    EXPECT_THAT(m_calls, ElementsAre("kept", "new"));
}

TEST_F(NotificationCenterTest, AnObserverMayRemoveItselfAndOthersDuringAPost)
{
    NotificationCenter::Token second;
    NotificationCenter::Token first = m_center.addObserver(kName, [&](const QVariantMap &) {
        first.remove();
        second.remove();
        m_calls.push_back("first");
    });
    second = m_center.addObserver(kName, note("second"));
    const auto third = m_center.addObserver(kName, note("third"));
    m_center.post(kName);
    m_center.post(kName);
    EXPECT_THAT(m_calls, ElementsAre("first", "third", "third"));
}

TEST_F(NotificationCenterTest, AnObserverThatIsAddedDuringAPostWaitsForTheNext)
{
    std::vector<NotificationCenter::Token> added;
    const auto token = m_center.addObserver(kName, [&](const QVariantMap &) {
        if (added.empty())
            for (int i = 0; i < 100; ++i) // enough to move the list in memory
                added.push_back(m_center.addObserver(kName, note("added")));
    });
    m_center.post(kName);
    EXPECT_TRUE(m_calls.empty());
    m_center.post(kName);
    EXPECT_EQ(m_calls.size(), 100U);
}

TEST_F(NotificationCenterTest, PostsNest)
{
    int depth = 0;
    const auto token = m_center.addObserver(kName, [&](const QVariantMap &) {
        if (++depth < 3)
            m_center.post(kName);
    });
    const auto last = m_center.addObserver(kName, note("last"));
    m_center.post(kName);
    EXPECT_THAT(m_calls, ElementsAre("last", "last", "last"));
}

TEST_F(NotificationCenterTest, ATokenMayOutliveItsCentreAndAHandlerMayEndIt)
{
    auto center = std::make_optional<NotificationCenter>();
    const auto token = center->addObserver(kName, [&](const QVariantMap &) { center.reset(); });
    const auto after = center->addObserver(kName, note("after"));
    center->post(kName);
    EXPECT_FALSE(center);
    EXPECT_THAT(m_calls, ElementsAre("after"));
}

TEST_F(NotificationCenterTest, TheDefaultCentreCanBeReplaced)
{
    NotificationCenter &own = NotificationCenter::defaultCenter();
    {
        const ProcessWide<NotificationCenter>::Replacement replacement(m_center);
        const auto token = m_center.addObserver(kName, note("replaced"));
        NotificationCenter::defaultCenter().post(kName);
    }
    EXPECT_THAT(m_calls, ElementsAre("replaced"));
    EXPECT_EQ(&NotificationCenter::defaultCenter(), &own);
}
