#include "PaintingStore.h"

#include "Log.h"
#include "SafeFile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <algorithm>
#include <cerrno>
#include <map>
#include <sys/stat.h>

namespace hazelmark {

namespace {

constexpr int kContentDigits = 32;
constexpr int kPathDigits = 16;
constexpr qint64 kBlockBytes = 1 << 20;
/// So much is read in a moment: nobody gives up for that.
constexpr qint64 kReadInAMoment = 64 << 20;
const QString kUnknown(kContentDigits, QLatin1Char('0'));
/// What a file is called that cannot be used.
const QString kAside = QStringLiteral(".aside");

QString digits(const QByteArray &digest, int count)
{
    return QString::fromLatin1(digest.toHex().left(count));
}

/// Each folder that is missing is made for its owner alone.
bool makeFolder(const QString &path)
{
    if (QFileInfo(path).isDir())
        return true;
    const QString parent = QFileInfo(path).path();
    if (parent != path && !makeFolder(parent))
        return false;
    return ::mkdir(QFile::encodeName(path).constData(), 0700) == 0 || errno == EEXIST;
}

} // namespace

struct PaintingStore::Entry
{
    QString path;
    QString content; ///< of the photo; kUnknown when it is not known
    QString photoPath;
    QDateTime when;
    bool isAside = false;

    QString photo() const { return content == kUnknown ? photoPath : content; }
};

PaintingStore::PaintingStore(QString folder)
    : m_folder(std::move(folder))
{
}

QString PaintingStore::personsFolder()
{
    QString state = qEnvironmentVariable("XDG_STATE_HOME");
    if (!QDir::isAbsolutePath(state))
        state = QDir::homePath() + QStringLiteral("/.local/state");
    return QDir::cleanPath(state) + QStringLiteral("/hazelmark/paintings");
}

QString PaintingStore::digestOfPath(const QString &path)
{
    return digits(QCryptographicHash::hash(QFile::encodeName(path), QCryptographicHash::Blake2b_256), kPathDigits);
}

QString PaintingStore::digestOfContent(const QString &path, const FileIdentity &asOpened,
                                       const std::atomic<bool> &cancelled)
{
    QFile file(path);
    if (FileIdentity::ofPath(path) != asOpened || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    QCryptographicHash hash(QCryptographicHash::Blake2b_256);
    QByteArray block(kBlockBytes, Qt::Uninitialized);
    for (qint64 count = 0; (count = file.read(block.data(), block.size())) != 0;) {
        if (count < 0 || (cancelled && asOpened.size > kReadInAMoment))
            return {};
        hash.addData(QByteArrayView(block).first(count));
    }
    if (FileIdentity::ofDescriptor(file.handle()) != asOpened)
        return {};
    return digits(hash.result(), kContentDigits);
}

QString PaintingStore::newPath(const Key &photo) const
{
    return QStringLiteral("%1/%2-%3-%4%5.json")
        .arg(m_folder, photo.content.isEmpty() ? kUnknown : photo.content, photo.path,
             QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMddHHmmsszzz")))
        .arg(QRandomGenerator::global()->bounded(10000), 4, 10, QLatin1Char('0'));
}

/// The newest first.
std::vector<PaintingStore::Entry> PaintingStore::entries() const
{
    static const QRegularExpression ours(QStringLiteral("^([0-9a-f]{%1})-([0-9a-f]{%2})-[0-9]{21}\\.json(\\.aside)?$")
                                             .arg(kContentDigits)
                                             .arg(kPathDigits));
    std::vector<Entry> found;
    for (const QFileInfo &file : QDir(m_folder).entryInfoList(QDir::Files | QDir::NoSymLinks, QDir::Time)) {
        const QRegularExpressionMatch name = ours.match(file.fileName());
        if (name.hasMatch())
            found.push_back({file.filePath(), name.captured(1), name.captured(2), file.lastModified(),
                             !name.captured(3).isEmpty()});
    }
    return found;
}

std::vector<StoredPainting> PaintingStore::find(const Key &photo, const QString &except) const
{
    const QDateTime oldest = QDateTime::currentDateTime().addDays(-kDays);
    const std::vector<Entry> all = entries();
    for (const bool byContent : {true, false}) {
        std::vector<StoredPainting> found;
        for (const Entry &entry : all) {
            const bool fits = byContent ? entry.content == photo.content
                                        : entry.content != photo.content && entry.photoPath == photo.path;
            if (!fits || entry.isAside || entry.path == except || entry.when < oldest)
                continue;
            const std::optional<StrokesFile> painting = read(entry.path);
            if (!painting || painting->steps->empty())
                continue;
            const bool changed = !byContent && entry.content != kUnknown && !photo.content.isEmpty();
            found.push_back({entry.path, entry.when, changed});
            if (found.size() == kPaintingsOfAPhoto)
                break;
        }
        if (!found.empty())
            return found;
    }
    return {};
}

Outcome<Done> PaintingStore::write(const QString &path, const StrokesFile &painting) const
{
    if (!makeFolder(m_folder))
        return Failure::ofWriteError(errno, m_folder);
    ::chmod(QFile::encodeName(m_folder).constData(), 0700); // somebody may have opened it; not to be helped if it fails
    Outcome<SafeFile> file = SafeFile::create(path, {});
    if (!file)
        return file.failure();
    StrokesFile kept = painting;
    kept.photo = QFileInfo(path).fileName().left(kContentDigits);
    if (::fchmod(file->descriptor(), 0600) != 0)
        return Failure::ofWriteError(errno, path);
    const Outcome<Done> written = file->write(kept.toJson());
    return written ? file->commit() : written;
}

std::optional<StrokesFile> PaintingStore::read(const QString &path) const
{
    QString fault;
    std::optional<StrokesFile> painting = StrokesFile::read(path, fault);
    if (painting && painting->photo != QFileInfo(path).fileName().left(kContentDigits)) {
        fault = path + QStringLiteral(": it is of another photo.");
        painting.reset();
    }
    if (!painting) {
        qCWarning(lcSession).noquote() << "a stored painting is set aside:" << fault;
        QFile::remove(path + kAside);
        QFile::rename(path, path + kAside);
    }
    return painting;
}

void PaintingStore::prune() const
{
    const QDateTime oldest = QDateTime::currentDateTime().addDays(-kDays);
    std::map<QString, std::size_t> photos; // how many of each are kept
    std::size_t aside = 0;
    for (const Entry &entry : entries()) {
        std::size_t &count = entry.isAside ? aside : photos[entry.photo()];
        if (count >= kPaintingsOfAPhoto || photos.size() > kPhotos || entry.when < oldest)
            QFile::remove(entry.path);
        else
            ++count;
    }
}

void PaintingStore::forget() const
{
    for (const Entry &entry : entries())
        QFile::remove(entry.path);
}

} // namespace hazelmark
