#include "PathParts.h"

#include "SamplePhotos.h"

#include <gtest/gtest.h>

namespace hazelmark {

TEST(PathParts, TakeAPathApart)
{
    struct Case
    {
        const char *path;
        const char *folder;
        const char *name;
        const char *extension;
    };
    for (const Case &c : {Case{"/a/b/c.jpg", "/a/b", "c.jpg", "jpg"}, Case{"/c.JPG", "/", "c.JPG", "JPG"},
                          Case{"c.tar.gz", "", "c.tar.gz", "gz"}, Case{"/a.b/c", "/a.b", "c", ""},
                          Case{"/a/.hidden", "/a", ".hidden", ""}, Case{"/a/.hidden.png", "/a", ".hidden.png", "png"},
                          Case{"/a/b.", "/a", "b.", ""}, Case{"/a/b.png//", "/a", "b.png", "png"},
                          Case{"/a//b.png", "/a", "b.png", "png"}, Case{"/", "/", "/", ""}, Case{"", "", "", ""}}) {
        const QString path = QString::fromUtf8(c.path);
        EXPECT_EQ(pathWithoutLastComponent(path), QString::fromUtf8(c.folder)) << c.path;
        EXPECT_EQ(lastPathComponent(path), QString::fromUtf8(c.name)) << c.path;
        EXPECT_FALSE(lastPathComponent(pathWithoutLastComponent(path)).isNull()) << c.path;
        EXPECT_EQ(pathExtension(path), QString::fromUtf8(c.extension)) << c.path;
    }
}

} // namespace hazelmark
