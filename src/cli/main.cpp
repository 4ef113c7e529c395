#include "CommandLine.h"
#include "SafeFile.h"

#include <QCoreApplication>
#include <QLoggingCategory>

int main(int argc, char *argv[])
{
    using namespace hazelmark;
    SafeFile::handleSignals();
    // Before anything can write to the log.
    QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(HAZELMARK_VERSION));
    const CommandLine commandLine = CommandLine::parse(QCoreApplication::arguments().mid(1));
    if (commandLine.verbose)
        QLoggingCategory::setFilterRules(QStringLiteral("hazelmark.*=true"));
    return runCommandLine(commandLine);
}
