#include "CoreFilterObject.h"

#include <gtest/gtest.h>

namespace hazelmark {

TEST(CoreFilterObject, ArchivedAndRestoredKeepsWordsAndReadsNumbersUnderTheOlderKeys)
{
    CoreFilterObject record;
    for (const auto &[number, initial] : {std::pair{record.blurAmount, 0.0f},
                                          {record.vignetteAmount, 1.0f},
                                          {record.highlightsAmount, 1.0f},
                                          {record.inFocusBrightness, 6500.0f},
                                          {record.inFocusVividness, 1.0f}})
        EXPECT_EQ(number, initial);
    EXPECT_TRUE(record.strPresetTitle.isEmpty() && !record.strPresetTitle.isNull() && record.dateString.isNull());
    EXPECT_EQ(record.isFavouriteOn, false);
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
    EXPECT_EQ(restored.strPresetTitle + restored.dateString, record.strPresetTitle + record.dateString);
    EXPECT_EQ(restored.isFavouriteOn, true);
    EXPECT_EQ(restored.inFocusBrightness, 5.0f);
    for (const CoreFilterObject::Number &number :
         {restored.blurAmount, restored.vignetteAmount, restored.contrastAmount, restored.highlightsAmount,
          restored.warmthAmount, restored.motionLinearAngle, restored.inFocusVividness, restored.inFocusWarmth})
        EXPECT_FALSE(number.has_value());
}

} // namespace hazelmark
