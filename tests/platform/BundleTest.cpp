#include "Bundle.h"
#include "FormatString.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace hazelmark;
using namespace Qt::StringLiterals;

TEST(BundleTest, FindsResourcesInItselfAndNowhereElse)
{
    const QTemporaryDir folder;
    const QDir dir(folder.path());
    ASSERT_TRUE(dir.mkpath(u"res/Brushes.bundle"_s));
    for (const char *name : {"secret.plist", "res/BS_en.plist", "res/Brushes.bundle/tip.png"}) {
        QFile file(dir.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    const Bundle bundle(dir.filePath(u"res/"_s));
    EXPECT_EQ(bundle.pathForResource(u"BS_en"_s, u"plist"_s), dir.filePath(u"res/BS_en.plist"_s));
    for (const char *name : {"BS_xx", "../secret", ""})
        EXPECT_EQ(bundle.pathForResource(QLatin1String(name), u"plist"_s), QString()) << name;
    for (const char *name : {"Brushes", "None"})
        EXPECT_EQ(bundle.subBundle(QLatin1String(name)).pathForResource(u"tip"_s, u"png"_s).isEmpty(), *name == 'N');
}

TEST(FormatStringTest, FillsSpecifiersInOrderAndLeavesOtherPercentSigns)
{
    const QString a = u"%@"_s, b = u"2"_s;
    EXPECT_EQ(formatString(u"%@ of %d"_s, {a, b}), u"%@ of 2"_s); // a value is never read as a format
    EXPECT_EQ(formatString(u"100 % %@% %@"_s, {b}), u"100 % 2% %@"_s);
}
