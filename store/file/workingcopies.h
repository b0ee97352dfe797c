#pragma once

#include <QFile>
#include <QString>

/// The working copies that this process has made. They are gone when it ends, but for kill -9 or a crash; what these
/// leave is removed by the next process that starts.
namespace WorkingCopies {

/// Where they are: the application's local data folder.
QString folder();

/// Makes an empty file of a name of its own in `folder`, which this process holds until `remove`, and opens it for
/// writing. False if the folder takes no file.
bool create(QFile &file);
void remove(const QString &path);

/// Removes the working copies that no living process holds.
void removeAbandoned();
/// Removes what is left when a signal asks the process to end, which it then does as if this had not been called.
void removeOnSignals();

} // namespace WorkingCopies
