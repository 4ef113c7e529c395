#include "AppDelegate.h"
#include "Bundle.h"
#include "MainScreenVC.h"
#include "SafeFile.h"
#include "ScreenScale.h"
#include "TerminationSignals.h"
#include "Theme.h"
#include "ToolkitTexts.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>

#include <vector>

using namespace hazelmark;

int main(int argc, char **argv)
{
    SafeFile::handleSignals(); // for the signals that are not turned into an orderly end below
    std::vector<char *> arguments(argv, argv + argc + 1); // the toolkit takes its own out
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("hazelmark"));
    QCoreApplication::setApplicationVersion(
        Bundle::infoDictionary().value(QStringLiteral("CFBundleVersion")).toString());

    QCommandLineParser commandLine;
    commandLine.setApplicationDescription(QStringLiteral("Blurs the parts of a photo that you paint over."));
    commandLine.addHelpOption();
    commandLine.addVersionOption();
    commandLine.addPositionalArgument(QStringLiteral("PHOTO"), QStringLiteral("the photo to open"),
                                      QStringLiteral("[PHOTO]"));
    commandLine.process(application);
    QStringList photos = commandLine.positionalArguments();
    for (QString &photo : photos)
        photo = QFileInfo(photo).absoluteFilePath();

    ScreenScale::apply(arguments.data());
    theme::apply(application);
    installToolkitTexts(application);
    MainScreenVC *screen = nullptr;
    AppDelegate delegate([&screen](ApplicationDelegate &owner) {
        auto made = std::make_unique<MainScreenVC>(owner);
        screen = made.get();
        return made;
    });
    // The end of a desktop session: files that are being written are finished, shared pictures removed.
    const TerminationSignals terminationSignals;
    QObject::connect(&terminationSignals, &TerminationSignals::received, &delegate, &AppDelegate::btnQuitApp);
    delegate.applicationDidFinishLaunching();
    screen->openPhotos(photos);
    return QApplication::exec();
}
