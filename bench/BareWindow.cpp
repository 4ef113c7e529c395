// The yardstick for the start of the program: a window of Qt's with nothing in it, of the size that is given.
#include <QApplication>
#include <QWidget>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QStringList words = QApplication::arguments();
    QWidget window(nullptr, Qt::FramelessWindowHint);
    window.setStyleSheet(QStringLiteral("background: #2b2b2b"));
    window.setGeometry(words.value(1).toInt(), words.value(2).toInt(), words.value(3).toInt(), words.value(4).toInt());
    window.show();
    return QApplication::exec();
}
