#pragma once

#include <QString>

#include <functional>

class ObjectDataBase;

/// A setting as a message names it.
struct CheckedSetting
{
    QLatin1StringView key;
    QLatin1StringView label;
    QString value; ///< of one line, where the setting is a comma list
};

/// Goes through the entries of all settings that have to be numbers, in the order in which a user meets them. An entry
/// that is empty or blank is left out, and so are the UDS addresses of a boot loader, which fills them at run time.
void visitNumericSettings(ObjectDataBase &store, const std::function<void(const CheckedSetting &)> &visit);
