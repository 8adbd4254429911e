#include <pylon/platform/plugins.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDebug>
#include <QtCore/QLibrary>

namespace pylon {

void loadPlugin(const QString& name) {
    const QString path =
        QCoreApplication::applicationDirPath() + u'/' + name + QStringLiteral(".dll");
    // The object does not unload the library when it goes.
    if (!QLibrary(path).load())
        qWarning().noquote() << "PylonSDK: Could not load plugin:" << path;
}

void loadQtPlugins(const QList<QString>& names) {
    for (const QString& name : names)
        loadPlugin(QStringLiteral("Qt6") + name);
}

}  // namespace pylon
