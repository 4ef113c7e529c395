#include "FullPhoto.h"

#include "../support/Gate.h"
#include "AvailableMemory.h"
#include "DecodeScope.h"
#include "SamplePhotos.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <vector>

namespace hazelmark {

using namespace testing;

/// Of formats that are read row by row.
TEST(FullPhoto, TellsHowFarItsDecodingIs)
{
    const QTemporaryDir folder;
    for (const WriteFormat format : {WriteFormat::Jpeg, WriteFormat::Png, WriteFormat::Tiff}) {
        const Outcome<PhotoPtr> photo = Photo::open(writePhoto(folder, format, {}));
        ASSERT_TRUE(photo);
        std::vector<double> told;
        const DecodeScope scope([] { return false; }, [&](double done) { told.push_back(done); });
        ASSERT_TRUE(ImageLoader::load(**photo));
        ASSERT_GT(told.size(), 1U);
        EXPECT_GE(told.front(), 0);
        EXPECT_NEAR(told.back(), 1, 0.2);
        EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));

        Gate gate;
        std::vector<bool> unwanted;
        FullPhoto full([&](Photo &loaded) {
            for (const double done : {0.25, 0.5, 0.125, 7.0, -1.0}) {
                DecodeScope::tellProgress(done);
                if (done == 0.125)
                    gate.pass();
            }
            gate.pass();
            unwanted.push_back(DecodeScope::isUnwanted());
            return ImageLoader::load(loaded);
        });
        QSignalSpy progressed(&full, &FullPhoto::progressed);
        full.setPhoto(*photo);
        full.ask();
        const auto hasCome = [&](double done) { return !progressed.empty() && progressed.back().at(0) == done; };
        EXPECT_TRUE(QTest::qWaitFor([&] { return hasCome(0.5); }));
        gate.open(1);
        EXPECT_TRUE(QTest::qWaitFor([&] { return hasCome(1.0); }));
        full.setPhoto(nullptr);
        gate.open();
        full.setPhoto(*photo);
        full.ask();
        EXPECT_TRUE(QTest::qWaitFor([&] { return full.image() != nullptr; }));
        EXPECT_FALSE(full.isDecoding());
        EXPECT_EQ(unwanted, std::vector({true, false}));
        full.giveBackIfShort();
        EXPECT_TRUE(full.image());
        const MemoryCap cap(full.image()->bitmap().sizeInBytes() - 1);
        full.giveBackIfShort();
        EXPECT_FALSE(full.image());
    }
}

} // namespace hazelmark
