#pragma once

#include <QRegularExpression>
#include <QString>

/// The expression that a glob pattern stands for: matched against a whole name, letter case ignored. Invalid for a set
/// that nothing closes.
QRegularExpression globExpression(const QString &pattern);
