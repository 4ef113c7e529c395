// The programs beside this one on a desktop, as far as the stories need them; independent of the project's own code.
//   other_program stripes FILE WIDTH HEIGHT PERIOD  writes a grey picture: PERIOD columns of 40, as many of 220, ...
//   other_program pixels FILE X,Y … prints width and height, then the grey value of each place, as stored
//   other_program drag FILE         a file manager: a window from which the file can be dragged; prints the action
//   other_program clipboard FILE    writes the picture on the clipboard to a file, once there is one
#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QImageReader>
#include <QMimeData>
#include <QMouseEvent>
#include <QTextStream>
#include <QTimer>
#include <QUrl>
#include <QWidget>

namespace {

class FileManager : public QWidget
{
public:
    explicit FileManager(const QString &file)
        : m_file(file)
    {
        setWindowTitle(QStringLiteral("Files"));
        setGeometry(0, 0, 60, 400);
        setWindowFlag(Qt::X11BypassWindowManagerHint); // where the story looks for it
    }

protected:
    void mousePressEvent(QMouseEvent *) override
    {
        auto *data = new QMimeData;
        data->setUrls({QUrl::fromLocalFile(m_file)});
        auto *drag = new QDrag(this); // the toolkit's; it is asked for the files after the drop
        drag->setMimeData(data);
        // Within one disk a file manager would rather move.
        const Qt::DropAction action = drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::MoveAction);
        QTextStream(stdout) << (action == Qt::CopyAction ? "copied" : "moved or refused") << Qt::endl;
    }

private:
    QString m_file;
};

bool writeStripes(const QStringList &arguments)
{
    QImage image(arguments[3].toInt(), arguments[4].toInt(), QImage::Format_Grayscale8);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.scanLine(y)[x] = x / arguments[5].toInt() % 2 ? 220 : 40;
    }
    constexpr int kQuality = 95;
    return image.save(arguments[2], nullptr, kQuality);
}

bool printPixels(const QString &path, const QStringList &places)
{
    QImageReader reader(path);
    reader.setAutoTransform(false);
    const QImage image = reader.read();
    QTextStream out(stdout);
    out << image.width() << ' ' << image.height() << Qt::endl;
    for (const QString &place : places) {
        const QStringList xy = place.split(QLatin1Char(','));
        out << image.pixelColor(xy[0].toInt(), xy[1].toInt()).green() << Qt::endl;
    }
    return !image.isNull();
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const QString what = arguments.value(1);
    const QString path = arguments.value(2);
    if (what == QLatin1String("stripes"))
        return writeStripes(arguments) ? 0 : 1;
    if (what == QLatin1String("pixels"))
        return printPixels(path, arguments.mid(3)) ? 0 : 1;
    if (what == QLatin1String("drag")) {
        FileManager manager(path);
        manager.show();
        return QApplication::exec();
    }
    if (what == QLatin1String("clipboard")) {
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&path] {
            if (QGuiApplication::clipboard()->image().save(path, "PNG"))
                QCoreApplication::quit();
        });
        poll.start(100);
        return QApplication::exec();
    }
    return 2;
}
