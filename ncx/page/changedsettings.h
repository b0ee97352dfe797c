#pragma once

#include <QJsonArray>
#include <QList>

class ObjectDataBase;

/// The settings of a project that differ from their defaults, each with its `group`, `key`, `value`, and where there is
/// something to tell its `line`, `default`, `label` and `meaning`, which stand in docs/settings.md only.
QJsonArray changedSettings(ObjectDataBase &store, const QList<quint8> &lines);
