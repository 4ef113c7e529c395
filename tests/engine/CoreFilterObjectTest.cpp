#include "CoreFilterObject.h"

#include <gtest/gtest.h>

namespace hazelmark {

TEST(CoreFilterObject, FreshRecordHasItsDefaults)
{
    const CoreFilterObject record;
    EXPECT_EQ(record.blurAmount, 0.0f);
    EXPECT_EQ(record.vignetteAmount, 1.0f);
    EXPECT_EQ(record.highlightsAmount, 1.0f);
    EXPECT_EQ(record.inFocusBrightness, 6500.0f);
    EXPECT_EQ(record.inFocusVividness, 1.0f);
    EXPECT_EQ(record.strPresetTitle, QString());
    EXPECT_FALSE(record.strPresetTitle.isNull());
    EXPECT_TRUE(record.dateString.isNull());
    EXPECT_EQ(record.isFavouriteOn, false);
}

TEST(CoreFilterObject, ArchivedAndRestoredKeepsWordsAndReadsNumbersUnderTheOlderKeys)
{
    CoreFilterObject record;
    record.strPresetTitle = QStringLiteral("Dusk");
    record.dateString = QStringLiteral("Mar-05-2024 09:07:4 PM");
    record.isFavouriteOn = true;
    record.blurAmount = 42.0f;
    QVariantMap archive = record.encodeWithCoder();
    EXPECT_EQ(archive.size(), 15);
    EXPECT_EQ(archive.value(QStringLiteral("blurAmount")).toFloat(), 42.0f);
    EXPECT_FALSE(archive.contains(QStringLiteral("warmthAmount")));
    archive[QStringLiteral("softnessAmmount")] = 5.0f;
    const CoreFilterObject restored = CoreFilterObject::initWithCoder(archive);
    EXPECT_EQ(restored.strPresetTitle, record.strPresetTitle);
    EXPECT_EQ(restored.dateString, record.dateString);
    EXPECT_EQ(restored.isFavouriteOn, true);
    EXPECT_EQ(restored.inFocusBrightness, 5.0f);
    for (const CoreFilterObject::Number &number :
         {restored.blurAmount, restored.vignetteAmount, restored.contrastAmount, restored.highlightsAmount,
          restored.warmthAmount, restored.motionLinearAngle, restored.inFocusVividness, restored.inFocusWarmth})
        EXPECT_FALSE(number.has_value());
}

} // namespace hazelmark
