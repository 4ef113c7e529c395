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
        readDict("<!-- a note --><key>s</key><string>ü &amp; “{0}”\n</string><key>i</key>"
                 "<integer> -7 </integer><key>r</key><real>0.5</real><key>t</key><true/><key>f</key>"
                 "<false/><key>a</key><array><string>x</string><dict><key>k</key><string/></dict></array>");
    ASSERT_TRUE(list);
    EXPECT_EQ(list->value(QStringLiteral("s")).toString(), QStringLiteral("ü & “{0}”\n"));
    EXPECT_EQ(list->value(QStringLiteral("i")), QVariant(qint64(-7)));
    EXPECT_EQ(list->value(QStringLiteral("r")), QVariant(0.5));
    EXPECT_EQ(list->value(QStringLiteral("t")), QVariant(true));
    EXPECT_EQ(list->value(QStringLiteral("f")), QVariant(false));
    const QVariantList array = list->value(QStringLiteral("a")).toList();
    ASSERT_EQ(array.size(), 2);
    EXPECT_EQ(array[1].toMap().value(QStringLiteral("k")), QVariant(QString(QLatin1String(""))));
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
    QByteArray bomb = "<!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaa\">";
    for (char c = 'b'; c < 'k'; ++c)
        bomb += QByteArray("<!ENTITY ") + c + " \"" + (QByteArray("&") + char(c - 1) + ";").repeated(10) + "\">";
    bomb += "]><plist><dict><key>k</key><string>&j;</string></dict></plist>";
    for (const QByteArray &text :
         {QByteArray(""), QByteArray("no list"), QByteArray("<plist/>"), QByteArray("<plist><array/></plist>"),
          QByteArray("<dict/>"), QByteArray("<plist><dict/><dict/></plist>"), QByteArray("bplist00\xd1"), bomb})
        EXPECT_FALSE(read(text)) << text.left(60).constData();
    for (const char *path : {"/nowhere/list.plist", "", "/"})
        EXPECT_FALSE(readPropertyList(QLatin1String(path))) << path;
    EXPECT_TRUE(read("<plist><dict/></plist>"));
}
