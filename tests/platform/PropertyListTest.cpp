#include "PropertyList.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace hazelmark;

namespace {

std::optional<QVariantMap> read(const QByteArray &text)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("list.plist")));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
    file.close();
    return readPropertyList(file.fileName());
}

std::optional<QVariantMap> readDict(const QByteArray &inside)
{
    return read("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + inside +
                "</dict></plist>");
}

} // namespace

TEST(PropertyListTest, ReadsEveryTypeOfValue)
{
    const auto list =
        readDict("<!-- a note --><key>a</key><array><string>ü &amp; “{0}”\n</string><integer> -7 </integer>"
                 "<real>0.5</real><true/><false/><dict><key>k</key><string/></dict></array>");
    ASSERT_TRUE(list);
    const QVariantMap inner{{QStringLiteral("k"), QStringLiteral("")}};
    EXPECT_EQ(list->value(QStringLiteral("a")).toList(),
              QVariantList({QStringLiteral("ü & “{0}”\n"), qint64(-7), 0.5, true, false, inner}));
}

TEST(PropertyListTest, ABrokenFileIsNoneAtAll)
{
    QByteArray deep = "<key>k</key>";
    for (int i = 0; i < 100000; ++i)
        deep += "<array>";
    for (const QByteArray &inside :
         {QByteArray("<key>k</key>"), QByteArray("<string>v</string>"), QByteArray("<key>k</key><string>v"),
          QByteArray("<key>k</key><integer>1e9x</integer>"), QByteArray("<key>k</key><data>AAAA</data>"),
          QByteArray("<key>k</key><string>&unknown;</string>"), QByteArray("<key>k</key><string><b/></string>"),
          QByteArray("<key>k</key><string>\xff\xfe</string>"), deep})
        EXPECT_FALSE(readDict(inside)) << inside.left(60).constData();
    for (const QByteArray &text :
         {QByteArray(""), QByteArray("no list"), QByteArray("<plist/>"), QByteArray("<plist><array/></plist>"),
          QByteArray("<dict/>"), QByteArray("<plist><dict/><dict/></plist>"), QByteArray("bplist00\xd1")})
        EXPECT_FALSE(read(text)) << text.left(60).constData();
    EXPECT_FALSE(readPropertyList(QStringLiteral("/nowhere/list.plist")));
}
