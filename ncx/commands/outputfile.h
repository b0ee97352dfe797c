#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

class Invocation;

/// A file that a command writes instead of an answer, whole or not at all; `--force` replaces one that is there.
namespace OutputFile {

/// A file that the call reads, which it does not replace.
struct Source
{
    QString path;
    QString text; ///< what it is: "the project"
};

/// True, with that told, if a folder or, without `--force`, a file stands in the way.
bool isTaken(const Invocation &call, const QString &path);
/// The exit code; what went wrong has been told.
int write(const Invocation &call, const QString &path, const QByteArray &content, const QList<Source> &sources);

} // namespace OutputFile
