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

TEST_F(NotificationCenterTest, CallsTheObserversOfTheNameInOrderAsLongAsTheirTokensLive)
{
    const auto first = m_center.addObserver(kName, note("first"));
    const auto other = m_center.addObserver(QStringLiteral("notificationMouseout"), note("other"));
    auto second = m_center.addObserver(kName, note("second"));
    auto moved = std::move(second);
    {
        const auto gone = m_center.addObserver(kName, note("gone"));
    }
    QVariantMap seen;
    const auto third = m_center.addObserver(kName, [&](const QVariantMap &userInfo) { seen = userInfo; });
    const QVariantMap sent{{QStringLiteral("WINDOW_OBJECT"), 7}};
    const ProcessWide<NotificationCenter>::Replacement replacement(m_center);
    NotificationCenter::defaultCenter().post(kName, sent);
    EXPECT_THAT(m_calls, ElementsAre("first", "second"));
    EXPECT_EQ(seen, sent);
    moved = m_center.addObserver(kName, note("new")); // assignment removes what the token stood for
    m_center.post(kName);
    EXPECT_THAT(m_calls, ElementsAre("first", "second", "first", "new"));
}

TEST_F(NotificationCenterTest, ObserversComeAndGoDuringAPostAndPostsNest)
{
    NotificationCenter::Token first, second;
    std::vector<NotificationCenter::Token> added;
    first = m_center.addObserver(kName, [&](const QVariantMap &) {
        first.remove();
        second.remove();
        m_calls.push_back("first");
        for (int i = 0; i < 100; ++i) // enough to move the list in memory
            added.push_back(m_center.addObserver(kName, note("added")));
        added.resize(1);
        m_center.post(kName);
    });
    second = m_center.addObserver(kName, note("second"));
    const auto third = m_center.addObserver(kName, note("third"));
    m_center.post(kName); // the one within reaches what was added, the outer one does not
    EXPECT_THAT(m_calls, ElementsAre("first", "third", "added", "third"));
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
