#include "InfoCommand.h"

#include "ExifInfo.h"
#include "PhotoFile.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace hazelmark {

namespace {

QJsonObject jsonOf(const RecordFields &fields)
{
    QJsonObject object;
    for (const auto &[name, value] : fields)
        object[name] = QJsonValue::fromVariant(value);
    return object;
}

} // namespace

int runInfo(const InfoRequest &request)
{
    const Outcome<PhotoPtr> opened = Photo::open(QFileInfo(request.photo).absoluteFilePath());
    if (!opened) {
        printError(Failure{opened.failure().reason, request.photo, opened.failure().detail}.sentence());
        return exitcode::kFailed;
    }
    printPreview(**opened, request.photo);
    const PhotoFile photo(*opened);
    const QJsonObject all{
        {QStringLiteral("PhotoFile"), jsonOf(photo.fields())},
        {QStringLiteral("ExifInfo"), jsonOf(ExifInfo((*opened)->dictionary()).fields())},
        {QStringLiteral("properties"), QJsonObject::fromVariantMap((*opened)->dictionary())},
    };
    const QByteArray text = QJsonDocument(all).toJson();
    const bool written =
        std::fwrite(text.constData(), 1, std::size_t(text.size()), stdout) == std::size_t(text.size()) &&
        std::fflush(stdout) == 0;
    if (!written)
        printError(QStringLiteral("Standard output could not be written."));
    return written ? exitcode::kDone : exitcode::kFailed;
}

} // namespace hazelmark
