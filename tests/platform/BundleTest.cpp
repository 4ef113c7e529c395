#include "Bundle.h"
#include "FormatString.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace hazelmark;

TEST(BundleTest, TheProgramsOwnStandsBesideItsBinFolderWithNameAndVersion)
{
    const QDir bin(QCoreApplication::applicationDirPath());
    EXPECT_EQ(Bundle::mainBundle().resourcePath(),
              QDir::cleanPath(bin.absoluteFilePath(QStringLiteral("../share/hazelmark"))));
    const QVariantMap info = Bundle::infoDictionary();
    EXPECT_EQ(info.value(QStringLiteral("CFBundleName")).toString(), QStringLiteral("Hazelmark"));
    EXPECT_TRUE(info.value(QStringLiteral("CFBundleVersion")).toString().contains(QLatin1Char('.')));
}

TEST(BundleTest, FindsResourcesInItselfAndNowhereElse)
{
    const QTemporaryDir folder;
    const QDir dir(folder.path());
    ASSERT_TRUE(dir.mkpath(QStringLiteral("res/icons")) && dir.mkpath(QStringLiteral("res/Brushes.bundle")));
    for (const char *name : {"secret.plist", "res/BS_en.plist", "res/icons/add.svg", "res/Brushes.bundle/tip.png"}) {
        QFile file(dir.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    const Bundle bundle(dir.filePath(QStringLiteral("res/")));
    const auto path = [&](const char *name, const char *type) {
        return bundle.pathForResource(QString::fromLatin1(name), QString::fromLatin1(type));
    };
    EXPECT_EQ(path("BS_en", "plist"), dir.filePath(QStringLiteral("res/BS_en.plist")));
    EXPECT_EQ(path("icons/add", "svg"), dir.filePath(QStringLiteral("res/icons/add.svg")));
    EXPECT_EQ(path("BS_en.plist", ""), dir.filePath(QStringLiteral("res/BS_en.plist")));
    EXPECT_EQ(path("BS_xx", "plist"), QString());
    EXPECT_EQ(path("../secret", "plist"), QString());
    EXPECT_EQ(path("", ""), QString());
    EXPECT_EQ(path("Brushes", "bundle"), bundle.subBundle(QStringLiteral("Brushes")).resourcePath());
    const auto tipIn = [&](const QString &name) {
        return bundle.subBundle(name).pathForResource(QStringLiteral("tip"), QStringLiteral("png"));
    };
    EXPECT_FALSE(tipIn(QStringLiteral("Brushes")).isEmpty());
    EXPECT_TRUE(tipIn(QStringLiteral("None")).isEmpty());
}

TEST(FormatStringTest, FillsSpecifiersInOrderAndLeavesOtherPercentSigns)
{
    const auto format = [](const char *text, const QStringList &values) {
        return formatString(QString::fromUtf8(text), values);
    };
    const QString a = QStringLiteral("%@"), b = QStringLiteral("2");
    EXPECT_EQ(format("%@ of %d", {a, b}), QStringLiteral("%@ of 2")); // a value is never read as a format
    EXPECT_EQ(format("100 % %@%", {b}), QStringLiteral("100 % 2%"));
    EXPECT_EQ(format("%@ %@", {b}), QStringLiteral("2 %@"));
    EXPECT_EQ(format("none", {b}), QStringLiteral("none"));
}
