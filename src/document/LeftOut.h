#pragma once

#include <QString>

#include <map>

namespace hazelmark {

/// What of a photo's metadata is not carried, by kind and size, to be said once.
class LeftOut
{
public:
    void add(const QString &kind, qint64 bytes, int count = 1);
    void add(const LeftOut &others);

    /// One line: "thumbnail (6144 bytes), EXIF tag 0xcd41 (90112 bytes)". Empty when nothing was left out.
    QString text() const;

private:
    struct Total
    {
        int count = 0;
        qint64 bytes = 0;
    };
    std::map<QString, Total> m_totals;
};

} // namespace hazelmark
