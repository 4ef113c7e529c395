#pragma once

#include <QString>
#include <QStringList>

namespace hazelmark {

/// The kinds of picture files that can be read, by the extensions that their files usually have. The one list that
/// the open panel, the drop target and the fitting of a photo go by; whether a file really is what its name says is
/// for its content to tell (readPictureInfo()).
class ReadableTypes
{
public:
    /// Lower case, without dots, sorted, the common ones first.
    static const QStringList &extensions();
    /// Case does not matter. The names that readPictureInfo() gives formats are extensions too.
    static bool contains(const QString &extension);
    /// "*.jpg *.jpeg ...", in lower and upper case.
    static QString fileNamePatterns();
};

} // namespace hazelmark
