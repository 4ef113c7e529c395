#include "Failure.h"

#include <gtest/gtest.h>

namespace hazelmark {

TEST(Failure, SentenceIsOneLineThatNamesTheFileAndTheReason)
{
    const Failure failure{Failure::Reason::Truncated, QStringLiteral("/a/b.jpg"), QStringLiteral("premature\n end")};
    EXPECT_EQ(failure.sentence().toStdString(), "/a/b.jpg: its picture data is cut off (premature end).");
}

} // namespace hazelmark
