#include "CoreFilterObject.h"

#include <gtest/gtest.h>

namespace hazelmark {

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
    archive[QStringLiteral("softnessAmmount")] = 5.0f;
    const CoreFilterObject restored = CoreFilterObject::initWithCoder(archive);
    EXPECT_EQ(restored.strPresetTitle + restored.dateString, record.strPresetTitle + record.dateString);
    EXPECT_EQ(restored.isFavouriteOn, true);
    EXPECT_EQ(restored.inFocusBrightness, 5.0f);
    EXPECT_FALSE(restored.blurAmount || restored.warmthAmount || restored.inFocusVividness);
}

} // namespace hazelmark
