#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTest>
#include <QTimer>

namespace hazelmark {

/// Comes back when every timer that is due within so many milliseconds has fired: timers fire in the order in which
/// they are due, however late they are on a machine that is busy.
inline void letTimersFire(int milliseconds)
{
    constexpr int kPatience = 60'000; // milliseconds
    bool isOver = false;
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, [&] { isOver = true; });
    timer.start(milliseconds);
    ASSERT_TRUE(QTest::qWaitFor([&] { return isOver; }, kPatience));
}

} // namespace hazelmark
