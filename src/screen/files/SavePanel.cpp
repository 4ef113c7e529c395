#include "SavePanel.h"

#include "ApplicationDelegate.h"
#include "FileAttributes.h"
#include "FilePanelLook.h"
#include "FloatSlider.h"
#include "FormatString.h"
#include "ImageCatalog.h"
#include "PathParts.h"
#include "RefusalKey.h"
#include "SafeFile.h"
#include "Theme.h"
#include "ViewSettings.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCompleter>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace hazelmark {

namespace {

constexpr int kQualityWidth = 140;
constexpr int kIconSize = 24;
constexpr double kQuality = 0.92;       // what the files are written with
constexpr qsizetype kLongestName = 255; // bytes, on all usual file systems

bool isJpeg(const QString &format)
{
    return format == QLatin1String("jpg") || format == QLatin1String("jpeg");
}

/// Bytes that a picture of this size takes at the very least: a photo may take far more, and then the writer says so.
quint64 leastRoom(QSize pixelSize, const QString &format)
{
    constexpr quint64 kBmpBytesPerPixel = 3;
    constexpr quint64 kPixelsPerByte = 32; // a quarter of a bit a pixel: no photo compresses better
    const quint64 pixels = quint64(pixelSize.width()) * quint64(pixelSize.height());
    return format == QLatin1String("bmp") ? pixels * kBmpBytesPerPixel : pixels / kPixelsPerByte;
}

QLabel *quietLabel(const QString &text)
{
    auto *label = new QLabel(text);
    label->setFont(theme::systemFont(theme::kSmallTextSize));
    theme::setTextColor(*label, theme::kQuietText);
    return label;
}

} // namespace

SavePanel::SavePanel(ApplicationDelegate &application, const Photo &photo, const ExportFormats &formats,
                     const QString &folder, QWidget *parent)
    : QFileDialog(parent)
    , m_application(application)
    , m_photo(photo)
    , m_formats(formats)
    , m_allowed(formats)
{
    setObjectName(QStringLiteral("savePanel"));
    setWindowTitle(lookup("SAVE_IMAGE"));
    setOption(QFileDialog::DontUseNativeDialog);  // the desktop's own have no place for the options
    setOption(QFileDialog::DontConfirmOverwrite); // asked here, about the path that will be written
    setAcceptMode(QFileDialog::AcceptSave);
    setFileMode(QFileDialog::AnyFile);
    setLabelText(QFileDialog::Accept, lookup("SAVE"));
    setLabelText(QFileDialog::Reject, lookup("CANCEL"));
    dressFilePanel(*this, application);
    setDirectory(folder);
    m_nameField = findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    makeOptions();
    arrange();

    showFileName(nameWithoutExtension(photo.path));
    // The quality is a JPEG's matter, and at first only for photos that are JPEG themselves.
    showQuality(formats.formats.first());
    clearMessage();
    connect(m_nameField, &QLineEdit::textEdited, this, &SavePanel::followTypedExtension);
    connect(m_nameField, &QLineEdit::textChanged, this, &SavePanel::clearMessage);
    connect(this, &QFileDialog::directoryEntered, this, &SavePanel::clearMessage);
    connect(m_btnPopupFileFormat, &QComboBox::activated, this, &SavePanel::selectFormat);
    connect(m_replaceButton, &QPushButton::clicked, this, [this] { finish(m_replacing); });
}

QString SavePanel::lookup(const char *key) const
{
    return m_application.getLocalizedStringForKey(QLatin1String(key));
}

void SavePanel::makeOptions()
{
    m_btnPopupFileFormat = new QComboBox;
    m_btnPopupFileFormat->setObjectName(QStringLiteral("btnPopupFileFormat"));
    m_btnPopupFileFormat->addItems(m_formats.titles);
    m_lblFormat = new QLabel(lookup("FORMAT"));
    m_lblFormat->setObjectName(QStringLiteral("lblFormat"));
    m_lblFormat->setBuddy(m_btnPopupFileFormat);
    m_btnPopupFileFormat->setAccessibleName(lookup("FORMAT"));

    m_viewExportOptions = new QWidget;
    m_viewExportOptions->setObjectName(QStringLiteral("viewExportOptions"));
    auto *layout = new QHBoxLayout(m_viewExportOptions);
    layout->setContentsMargins({});
    layout->setSpacing(theme::kSpacing);
    layout->addWidget(m_btnPopupFileFormat);
    layout->addSpacing(theme::kSpacing);
    layout->addWidget(makeQuality());
    layout->addStretch();
}

QWidget *SavePanel::makeQuality()
{
    m_sliderExportQuality = new FloatSlider;
    m_sliderExportQuality->setObjectName(QStringLiteral("sliderExportQuality"));
    m_sliderExportQuality->setRange(0, 1);
    m_sliderExportQuality->setValue(kQuality);
    m_sliderExportQuality->setFixedWidth(kQualityWidth);
    m_sliderExportQuality->setAccessibleName(lookup("QUALITY"));
    auto *lblQuality = new QLabel(lookup("QUALITY"));
    lblQuality->setObjectName(QStringLiteral("lblQuality"));
    QLabel *lblLow = quietLabel(lookup("LOW"));
    lblLow->setObjectName(QStringLiteral("lblLow"));
    QLabel *lblhigh = quietLabel(lookup("HIGH"));
    lblhigh->setObjectName(QStringLiteral("lblhigh"));
    QLabel *note = quietLabel(lookup("QUALITY_WITHOUT_EFFECT"));

    m_viewExportQuality = new QWidget;
    m_viewExportQuality->setObjectName(QStringLiteral("viewExportQuality"));
    auto *layout = new QGridLayout(m_viewExportQuality);
    layout->setContentsMargins({});
    layout->setHorizontalSpacing(theme::kSpacing);
    layout->setVerticalSpacing(0);
    layout->addWidget(lblQuality, 0, 0);
    layout->addWidget(lblLow, 0, 1);
    layout->addWidget(m_sliderExportQuality, 0, 2);
    layout->addWidget(lblhigh, 0, 3);
    layout->addWidget(note, 1, 0, 1, 4);
    return m_viewExportQuality;
}

QWidget *SavePanel::makeMessage()
{
    auto *icon = new QLabel;
    icon->setPixmap(
        ImageCatalog::imageNamed(QStringLiteral("warning"), QSizeF(kIconSize, kIconSize), devicePixelRatioF()));
    m_message = new QLabel;
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    m_replaceButton = new QPushButton(lookup("REPLACE"));
    m_replaceButton->setAutoDefault(false); // Return asks again; it never replaces
    m_messageStrip = new QWidget;
    auto *layout = new QHBoxLayout(m_messageStrip);
    layout->setContentsMargins(0, theme::kSpacing, 0, 0);
    layout->setSpacing(theme::kSpacing);
    layout->addWidget(icon, 0, Qt::AlignTop);
    layout->addWidget(m_message, 1);
    layout->addWidget(m_replaceButton, 0, Qt::AlignTop);
    return m_messageStrip;
}

/// The popup with the quality takes the place of the toolkit's list of filters; the message stands below everything.
void SavePanel::arrange()
{
    auto *layout = qobject_cast<QGridLayout *>(this->layout());
    const int row = layout->rowCount() - 1;
    for (const char *name : {"fileTypeLabel", "fileTypeCombo"}) {
        auto *part = findChild<QWidget *>(QLatin1String(name));
        layout->removeWidget(part);
        part->hide();
    }
    layout->addWidget(m_lblFormat, row, 0);
    layout->addWidget(m_viewExportOptions, row, 1);
    layout->addWidget(makeMessage(), row + 1, 0, 1, -1);
}

/// The slider changes nothing, and is there with the other settings that do not.
void SavePanel::showQuality(const QString &format)
{
    m_viewExportQuality->setVisible(isJpeg(format) && ViewSettings::showsAllSettings());
}

void SavePanel::showFileName(const QString &baseName)
{
    const QString format = m_formats.formats[m_btnPopupFileFormat->currentIndex()];
    m_nameField->setText(baseName + QLatin1Char('.') + format);
    m_nameField->setSelection(0, static_cast<int>(baseName.size()));
    m_nameField->setFocus();
}

void SavePanel::selectFormat(int index)
{
    const QString format = m_formats.formats[index];
    m_btnPopupFileFormat->setCurrentIndex(index);
    showQuality(format);
    const QString name = m_nameField->text();
    const QString extension = pathExtension(name);
    const bool isFormat = !m_formats.formFor(extension).isEmpty();
    m_allowed = {{format}, {m_formats.titles[index]}};
    showFileName(isFormat ? name.chopped(extension.size() + 1) : name);
}

/// As long as every format is allowed the popup shows what the typed extension asks for.
void SavePanel::followTypedExtension()
{
    if (m_allowed.formats.size() != m_formats.formats.size())
        return;
    const auto index = m_formats.formats.indexOf(m_formats.formFor(pathExtension(m_nameField->text())));
    if (index < 0)
        return;
    m_btnPopupFileFormat->setCurrentIndex(static_cast<int>(index));
    showQuality(m_formats.formats[index]);
}

QString SavePanel::pathToWrite(const QString &path) const
{
    const QString extension = pathExtension(path);
    const QString form = m_allowed.formFor(extension);
    if (!form.isEmpty())
        return path.chopped(extension.size()) + form;
    const QString dot = path.endsWith(QLatin1Char('.')) ? QString() : QStringLiteral(".");
    return path + dot + m_formats.formats[m_btnPopupFileFormat->currentIndex()];
}

/// What the person named, as an absolute path.
QString SavePanel::namedPath() const
{
    QString typed = m_nameField->text();
    // A file of another folder can be selected, by its path; the field then has its name alone.
    const QStringList selected = selectedFiles();
    if (selected.size() == 1 && lastPathComponent(selected.first()) == typed)
        return QDir::cleanPath(selected.first());
    // Otherwise read here and not by the toolkit, which takes names that begin with a dollar sign for variables.
    if (typed == QLatin1String("~") || typed.startsWith(QLatin1String("~/")))
        typed.replace(0, 1, QDir::homePath());
    return QDir::cleanPath(directory().absoluteFilePath(typed));
}

void SavePanel::accept()
{
    if (m_nameField->text().isEmpty())
        return;
    if (const QCompleter *completer = m_nameField->completer())
        completer->popup()->hide(); // it would cover the message
    const QString path = namedPath();
    if (QFileInfo(path).isDir()) {
        setDirectory(path);
        return;
    }
    const QString destination = pathToWrite(path);
    if (const std::optional<Failure> failure = objection(destination)) {
        showMessage(formatString(m_application.getLocalizedStringForKey(refusalKey(failure->reason)),
                                 {lastPathComponent(destination)}),
                    false);
    } else if (QFileInfo::exists(destination)) {
        m_replacing = destination;
        showMessage(formatString(lookup("REPLACE_TITLE"), {lastPathComponent(destination)}) + QLatin1Char(' ') +
                        lookup("REPLACE_MSG"),
                    true);
    } else {
        finish(destination);
    }
}

/// Why nothing can be written to `path`, if that is so.
std::optional<Failure> SavePanel::objection(const QString &path) const
{
    if (QFile::encodeName(lastPathComponent(path)).size() > kLongestName)
        return Failure{Failure::Reason::WriteFailed, path, {}};
    const Outcome<Done> possible = SafeFile::checkDestination(path, {{m_photo.path}});
    if (!possible)
        return possible.failure();
    const std::optional<quint64> room = availableBytes(pathWithoutLastComponent(path));
    if (room && *room < leastRoom(m_photo.pixelSize, pathExtension(path)))
        return Failure{Failure::Reason::DiskFull, path, {}};
    return std::nullopt;
}

QString SavePanel::message() const
{
    return m_message->text();
}

void SavePanel::showMessage(const QString &text, bool canReplace)
{
    m_message->setText(text);
    m_replaceButton->setVisible(canReplace);
    m_messageStrip->show();
}

void SavePanel::clearMessage()
{
    m_messageStrip->hide();
    m_message->clear();
    m_replacing.clear();
}

void SavePanel::finish(const QString &path)
{
    // The disk may have changed while the question stood.
    if (const std::optional<Failure> failure = objection(path)) {
        showMessage(formatString(m_application.getLocalizedStringForKey(refusalKey(failure->reason)),
                                 {lastPathComponent(path)}),
                    false);
        return;
    }
    emit chosen(path);
    QDialog::accept();
}

} // namespace hazelmark
