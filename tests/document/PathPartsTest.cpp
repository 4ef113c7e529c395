#include "PathParts.h"

#include <gtest/gtest.h>

namespace hazelmark {

TEST(PathParts, TakeAPathApart)
{
    const struct
    {
        const char *path;
        const char *folder;
        const char *stem;
        const char *extension; ///< with its dot
    } rows[] = {{"/a/b/c.jpg", "/a/b", "c", ".jpg"},
                {"/c.JPG", "/", "c", ".JPG"},
                {"c.tar.gz", "", "c.tar", ".gz"},
                {"/a.b/c", "/a.b", "c", ""},
                {"/a/.hidden", "/a", ".hidden", ""},
                {"/a/.h.png", "/a", ".h", ".png"},
                {"/a/b.", "/a", "b", "."},
                {"/a/b.png//", "/a", "b", ".png"},
                {"/a//b.png", "/a", "b", ".png"},
                {"/", "/", "/", ""},
                {"", "", "", ""}};
    for (const auto &[path, folder, stem, extension] : rows) {
        const QString text = QString::fromUtf8(path);
        EXPECT_EQ(pathWithoutLastComponent(text).toStdString(), folder) << path;
        EXPECT_FALSE(lastPathComponent(pathWithoutLastComponent(text)).isNull()) << path;
        EXPECT_EQ(lastPathComponent(text).toStdString(), std::string(stem) + extension) << path;
        EXPECT_EQ(nameWithoutExtension(text).toStdString(), stem) << path;
        EXPECT_EQ(pathExtension(text).toStdString(), *extension ? extension + 1 : "") << path;
    }
}

} // namespace hazelmark
