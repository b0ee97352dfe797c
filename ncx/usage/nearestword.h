#pragma once

#include <QString>
#include <QStringList>

/// The word that somebody is likely to have meant: the one with the fewest letters added, left out, replaced or
/// swapped, or one that begins so. Empty where none is near.
QString nearestWord(const QString &word, const QStringList &known);

/// The same as the end of a message: "; did you mean 'check'?", or nothing.
QString didYouMean(const QString &word, const QStringList &known, const QString &prefix = {});
