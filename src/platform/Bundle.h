#pragma once

#include <QString>
#include <QVariantMap>

namespace hazelmark {

/// A folder of resources. The program's own is `../share/hazelmark` seen from the folder of its executable, in the
/// build tree as in an installation; sub-bundles are folders named "NAME.bundle" in it.
class Bundle
{
public:
    Bundle(); ///< the program's own
    explicit Bundle(const QString &resourcePath);

    static const Bundle &mainBundle();

    /// The absolute folder, without a slash at its end; it need not exist.
    QString resourcePath() const { return m_resourcePath; }
    /// The path of the file or folder "name.type" in this bundle; empty when there is none. `name` may lead into a
    /// sub-folder, but never out of the bundle. An empty `type` stands for a name without extension.
    QString pathForResource(const QString &name, const QString &type) const;
    /// The sub-bundle "name.bundle"; one that is not there has no resources.
    Bundle subBundle(const QString &name) const;
    /// "CFBundleVersion" and "CFBundleName" of the program, as strings.
    static QVariantMap infoDictionary();

private:
    QString m_resourcePath;
};

} // namespace hazelmark
