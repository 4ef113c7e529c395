#include "FormatString.h"

#include <gtest/gtest.h>

using namespace hazelmark;
using namespace Qt::StringLiterals;

TEST(FormatStringTest, FillsSpecifiersInOrderAndLeavesOtherPercentSigns)
{
    const QString a = u"%@"_s, b = u"2"_s;
    EXPECT_EQ(formatString(u"%@ of %d"_s, {a, b}), u"%@ of 2"_s); // a value is never read as a format
    EXPECT_EQ(formatString(u"100 % %@% %@"_s, {b}), u"100 % 2% %@"_s);
}
