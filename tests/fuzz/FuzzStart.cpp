#include <QCoreApplication>
#include <QLoggingCategory>

/// What a program does before it reads anything.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication application(*argc, *argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
    return 0;
}
