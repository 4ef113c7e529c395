#include "UserDefaults.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace hazelmark;

namespace {

const QString kCount = QStringLiteral("appOpenedCount");
const QString kVersion = QStringLiteral("appVersion");
const QString kSwitch = QStringLiteral("notShowPromotionWindow");

} // namespace

TEST(UserDefaultsTest, KeepsValuesFromOneProcessToTheNext)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("defaults.conf"));
    {
        UserDefaults defaults(path);
        EXPECT_EQ(defaults.integer(kCount), 0);
        EXPECT_EQ(defaults.string(kVersion), QString());
        EXPECT_FALSE(defaults.boolean(kSwitch));
        defaults.setInteger(kCount, 6);
        defaults.setString(kVersion, QStringLiteral("1.0, \"β\" = 1"));
        defaults.setBoolean(kSwitch, true);
        defaults.synchronize();
        EXPECT_TRUE(QFile::exists(path));
    }
    const UserDefaults again(path);
    EXPECT_EQ(again.integer(kCount), 6);
    EXPECT_EQ(again.string(kVersion), QStringLiteral("1.0, \"β\" = 1"));
    EXPECT_TRUE(again.boolean(kSwitch));
}

TEST(UserDefaultsTest, AFileThatCannotBeReadHasNoValues)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("defaults.conf"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray("\x00\xff[[[appOpenedCount\n=@Invalid(", 30));
    file.close();
    const UserDefaults defaults(path);
    EXPECT_EQ(defaults.integer(kCount), 0);
    EXPECT_FALSE(defaults.boolean(kSwitch));
}
