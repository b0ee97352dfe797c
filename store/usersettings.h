#pragma once

#include <QString>

/// The user's own settings of the application, kept in the framework's INI form in the user's configuration folder
/// under the organisation's name: `ORGANISATION/APPLICATION.ini`, and `ORGANISATION.ini` for what that lacks.
/// The application's name is its property "AppNameWithVersion" or, where that is not set, the plain name.
namespace UserSettings {

/// Value of a key as text; the default where it is not set. A key of the group "General" may stand in [General], which
/// is where a person writes it, or in [%General], which is what the framework calls that group.
QString value(const QString &group, const QString &key, const QString &defaultValue = {});

} // namespace UserSettings
