#include "store/usersettings.h"

#include <QCoreApplication>
#include <QSettings>

using namespace Qt::StringLiterals;

QString UserSettings::value(const QString &group, const QString &key, const QString &defaultValue)
{
    const QString versioned = qApp ? qApp->property("AppNameWithVersion").toString() : QString();
    const QSettings settings(QSettings::IniFormat, QSettings::UserScope, QCoreApplication::organizationName(),
                             versioned.isEmpty() ? QCoreApplication::applicationName() : versioned);
    QVariant found = settings.value(u"%1/%2"_s.arg(group, key));
    if (!found.isValid() && group == "General"_L1)
        found = settings.value(key);
    if (!found.isValid())
        return defaultValue;
    return found.typeId() == QMetaType::QStringList ? found.toStringList().join(u',') : found.toString();
}
