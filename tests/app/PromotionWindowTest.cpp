#include "PromotionWindow.h"

#include "DotPageControl.h"
#include "Fakes.h"
#include "Localisation.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

using namespace hazelmark;

namespace {

class PromotionWindowTest : public testing::Test
{
protected:
    QString name(int index) const
    {
        return m_window.arrOurApps().at(index).toMap().value(QStringLiteral("appName")).toString();
    }
    bool shows(const QString &text) const
    {
        const auto labels = m_window.findChildren<QLabel *>();
        return std::any_of(labels.begin(), labels.end(), [&](const QLabel *label) { return label->text() == text; });
    }

    FakeDesktop m_desktop;
    QStringList m_installed;
    Localisation m_texts;
    PromotionWindow m_window{m_texts, [this](const QString &name) { return m_installed.contains(name); }};
};

} // namespace

TEST_F(PromotionWindowTest, EveryEntryIsComplete)
{
    m_window.promotionWindowSetup();
    ASSERT_EQ(m_window.arrOurApps().size(), 3);
    for (const QVariant &item : m_window.arrOurApps()) {
        const QVariantMap entry = item.toMap();
        EXPECT_EQ(entry.keys(), QStringList({QStringLiteral("Desc"), QStringLiteral("appName"),
                                             QStringLiteral("imageName"), QStringLiteral("url")}));
        EXPECT_FALSE(entry.value(QStringLiteral("appName")).toString().isEmpty());
        EXPECT_NE(entry.value(QStringLiteral("Desc")).toString(), QStringLiteral("(null)"));
        const QUrl url(entry.value(QStringLiteral("url")).toString());
        EXPECT_EQ(url.scheme(), QStringLiteral("appstream"));
        EXPECT_TRUE(url.host().isEmpty()) << "would lose its capitals";
        EXPECT_TRUE(QFile::exists(Bundle::mainBundle().pathForResource(
            QStringLiteral("icons/") + entry.value(QStringLiteral("imageName")).toString(), QStringLiteral("svg"))));
    }
}

TEST_F(PromotionWindowTest, LeavesOutWhatIsInstalled)
{
    m_window.promotionWindowSetup();
    const QStringList all{name(0), name(1), name(2)};
    m_installed = {all[1]};
    m_window.promotionWindowSetup();
    ASSERT_EQ(m_window.arrOurApps().size(), 2);
    EXPECT_EQ(name(0), all[0]);
    EXPECT_EQ(name(1), all[2]);
    EXPECT_EQ(m_window.control()->numberOfPages(), 2);
    m_installed = all;
    m_window.present();
    EXPECT_TRUE(m_window.arrOurApps().isEmpty());
    m_window.changeAppDetail(); // nothing to turn to
    m_window.btnOpenSuggestedAppTapped();
    EXPECT_TRUE(m_desktop.m_workspace.m_opened.empty());
    EXPECT_FALSE(PromotionWindow::isApplicationInstalledWithName(all[0]));
}

TEST_F(PromotionWindowTest, TurnsRoundUntilADotIsChosen)
{
    m_window.present();
    EXPECT_TRUE(m_window.isRotating());
    EXPECT_TRUE(shows(name(0)));
    for (const int index : {1, 2, 0, 1}) {
        m_window.changeAppDetail();
        EXPECT_EQ(m_window.selectedRecommendedAppIndex(), index);
        EXPECT_EQ(m_window.control()->currentPage(), index);
        EXPECT_TRUE(shows(name(index)));
    }
    testing::internal::CaptureStderr();
    QTest::keyClick(m_window.control(), Qt::Key_Right);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("Selected page at index: 2"), std::string::npos);
    EXPECT_TRUE(shows(name(2)));
    EXPECT_FALSE(m_window.isRotating());
    m_window.present();
    EXPECT_TRUE(m_window.isRotating());
    EXPECT_EQ(m_window.selectedRecommendedAppIndex(), 0);
    m_window.close();
    EXPECT_FALSE(m_window.isRotating());
}

TEST_F(PromotionWindowTest, OpensThePageOfTheEntryOnShow)
{
    m_window.present();
    m_window.changeAppDetail();
    QTest::mouseClick(m_window.btnOpenSuggestedApp(), Qt::LeftButton);
    ASSERT_EQ(m_desktop.m_workspace.m_opened.size(), 1U);
    EXPECT_EQ(m_desktop.m_workspace.m_opened[0].toString(),
              m_window.arrOurApps().at(1).toMap().value(QStringLiteral("url")).toString());
}

TEST_F(PromotionWindowTest, SpeaksTheInterfaceLanguage)
{
    m_desktop.m_session.m_languages = {QStringLiteral("de-DE")};
    Localisation german;
    PromotionWindow window(german);
    EXPECT_EQ(window.btnQuitAppPromotion()->text(), QStringLiteral("Beenden"));
    EXPECT_NE(window.btnCheckDontShow()->text(), QStringLiteral("(null)"));
}
