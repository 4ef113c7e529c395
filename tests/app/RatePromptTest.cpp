#include "RatePrompt.h"
#include "AlertSheet.h"
#include "Fakes.h"
#include "SheetQueue.h"

#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

using namespace hazelmark;

namespace {

const QString kCount = QStringLiteral("appOpenedCount");
const QString kVersion = QStringLiteral("appVersion");

class RatePromptTest : public testing::Test
{
protected:
    RatePromptTest() { m_window.show(); }

    AlertSheet *alert() { return qobject_cast<AlertSheet *>(SheetQueue::forWindow(m_window).current()); }
    /// Long enough for a prompt that is due to be up.
    bool isUp()
    {
        return QTest::qWaitFor([this] { return alert() != nullptr; }, 400);
    }
    void answer(const char *button)
    {
        for (QPushButton *each : {alert()->defaultButton(), alert()->alternateButton()})
            if (each->text() == QLatin1String(button))
                each->click();
        EXPECT_TRUE(QTest::qWaitFor([this] { return !alert(); }));
    }
    static QString version() { return Bundle::infoDictionary().value(QStringLiteral("CFBundleVersion")).toString(); }

    FakeDesktop m_desktop;
    QWidget m_window;
    RatePrompt m_prompt{[this] { return &m_window; }, [] { return QUrl(QStringLiteral("appstream://x")); }};
};

} // namespace

TEST_F(RatePromptTest, IsDueOnEverySeventhLaunch)
{
    for (int launch = 1; launch <= 6; ++launch) {
        m_prompt.checkForRateupPopup();
        EXPECT_EQ(m_desktop.m_defaults.integer(kCount), launch);
    }
    EXPECT_FALSE(isUp());
    m_prompt.checkForRateupPopup();
    EXPECT_EQ(m_desktop.m_defaults.integer(kCount), 0);
    EXPECT_EQ(alert(), nullptr) << "not before its delay";
    m_window.close();
    EXPECT_FALSE(isUp()) << "on a window that is closed";
    m_window.show();
    ASSERT_TRUE(isUp());
    EXPECT_EQ(alert()->messageText(), QStringLiteral("Rate Us"));
    m_prompt.showAlertForRateApp();
    EXPECT_EQ(SheetQueue::forWindow(m_window).waiting(), 0) << "two prompts stand on each other";
}

TEST_F(RatePromptTest, AnAnswerHoldsForThisVersion)
{
    m_prompt.showAlertForRateApp();
    answer("NO");
    EXPECT_EQ(m_desktop.m_defaults.string(kVersion), version());
    EXPECT_TRUE(m_desktop.m_workspace.m_opened.empty());
    m_desktop.m_defaults.setInteger(kCount, 6);
    m_prompt.checkForRateupPopup();
    EXPECT_EQ(m_desktop.m_defaults.integer(kCount), 0);
    EXPECT_FALSE(isUp());
    m_desktop.m_defaults.setString(kVersion, QStringLiteral("0.1"));
    m_desktop.m_defaults.setInteger(kCount, 6);
    m_prompt.checkForRateupPopup();
    EXPECT_TRUE(isUp()) << "a new version asks again";
}

TEST_F(RatePromptTest, EscIsNoAnswer)
{
    m_prompt.showAlertForRateApp();
    QTest::keyClick(alert(), Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !alert(); }));
    EXPECT_TRUE(m_desktop.m_workspace.m_opened.empty());
    EXPECT_EQ(m_desktop.m_defaults.string(kVersion), QString());
}

TEST_F(RatePromptTest, YesCountsOnlyWhenTheStoreOpened)
{
    m_desktop.m_workspace.m_succeeds = false;
    m_prompt.showAlertForRateApp();
    answer("YES");
    EXPECT_EQ(m_desktop.m_workspace.m_opened.size(), 1U);
    EXPECT_EQ(m_desktop.m_defaults.string(kVersion), QString());
    m_desktop.m_workspace.m_succeeds = true;
    m_prompt.showAlertForRateApp();
    answer("YES");
    EXPECT_EQ(m_desktop.m_defaults.string(kVersion), version());
}
