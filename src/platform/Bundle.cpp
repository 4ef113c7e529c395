#include "Bundle.h"

#include "ProcessWide.h"

#include <QDir>
#include <QFileInfo>

namespace hazelmark {

namespace {

// Not through QCoreApplication: resources are also looked up where there is no application object.
QString executableFolder()
{
    return QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).absolutePath();
}

} // namespace

Bundle::Bundle()
    : Bundle(executableFolder() + QStringLiteral("/../share/hazelmark"))
{
}

Bundle::Bundle(const QString &resourcePath)
    : m_resourcePath(QDir::cleanPath(QDir(resourcePath).absolutePath()))
{
}

const Bundle &Bundle::mainBundle()
{
    return ProcessWide<Bundle>::instance();
}

QString Bundle::pathForResource(const QString &name, const QString &type) const
{
    if (name.isEmpty())
        return {};
    const QString path =
        QDir::cleanPath(m_resourcePath + QLatin1Char('/') + name + (type.isEmpty() ? type : QLatin1Char('.') + type));
    return path.startsWith(m_resourcePath + QLatin1Char('/')) && QFileInfo::exists(path) ? path : QString();
}

Bundle Bundle::subBundle(const QString &name) const
{
    return Bundle(m_resourcePath + QLatin1Char('/') + name + QStringLiteral(".bundle"));
}

QVariantMap Bundle::infoDictionary()
{
    return {{QStringLiteral("CFBundleVersion"), QStringLiteral(HAZELMARK_VERSION)},
            {QStringLiteral("CFBundleName"), QStringLiteral("Hazelmark")}};
}

} // namespace hazelmark
