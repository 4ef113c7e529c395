#include "NotificationCenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace hazelmark;
using testing::ElementsAre;

TEST(NotificationCenterTest, ObserversComeAndGoDuringAPostAndPostsNest)
{
    const QString name = QStringLiteral("notificationMouseIn");
    std::vector<std::string> calls;
    const auto note = [&](const char *what) { return [&calls, what](const auto &) { calls.push_back(what); }; };
    NotificationCenter center;
    NotificationCenter::Token first, second;
    std::vector<NotificationCenter::Token> added;
    first = center.addObserver(name, [&](const QVariantMap &) {
        first.remove();
        second.remove();
        calls.push_back("first");
        for (int i = 0; i < 100; ++i) // enough to move the list in memory
            added.push_back(center.addObserver(name, note("added")));
        added.resize(1);
        center.post(name);
    });
    second = center.addObserver(name, note("second"));
    const auto third = center.addObserver(name, note("third"));
    center.post(name); // the one within reaches what was added, the outer one does not
    EXPECT_THAT(calls, ElementsAre("first", "third", "added", "third"));
    added[0] = center.addObserver(name, note("new")); // assignment removes what the token stood for
    calls.clear();
    center.post(name);
    EXPECT_THAT(calls, ElementsAre("third", "new"));
}
