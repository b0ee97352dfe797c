#pragma once

#include <QString>

/// The working copies that this process has made. They are gone when it ends, unless by kill -9 or a crash.
namespace WorkingCopies {

void add(const QString &path);
void remove(const QString &path);

/// Removes what is left when a signal asks the process to end, which it then does as if this had not been called.
void removeOnSignals();

} // namespace WorkingCopies
