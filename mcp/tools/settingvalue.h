#pragma once

#include "mcp/tools/settingscatalogue.h"

#include <QJsonValue>

/// Settings between their stored text and JSON.
namespace SettingValue {

/// The stored text as clients see it: a boolean, an item's name, or a text. A number keeps its notation.
QJsonValue toJson(const Setting &setting, const QString &stored);

/// The outcome of `fromJson`: a text to store, or why the value is refused.
struct Text
{
    QString text{};
    QString refusal{};
};
/// Takes what a client wrote into the form that the store keeps.
Text fromJson(const Setting &setting, const QJsonValue &value);

} // namespace SettingValue
