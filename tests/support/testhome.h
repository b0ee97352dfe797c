#pragma once

#include <QStringList>
#include <QTemporaryDir>

namespace TestSupport {

/// The home folder of this test process: a temporary one, set up before main() runs, so that no test reads or leaves
/// anything in the user's own.
const QTemporaryDir &home();

/// The application's local data folder under that home, where working copies live.
QString dataFolder();

/// The real device files, from NCX_CORPUS or beside the project; empty where they are missing.
QString corpusFolder();

/// Contents of a file; empty if it cannot be read.
QByteArray readFile(const QString &path);
/// Writes a file, replacing it; false on failure.
bool writeFile(const QString &path, const QByteArray &content);

/// Compares text with the file of this name in tests/data. NCX_ACCEPT=1 in the environment writes the file.
void expectInFile(const QString &made, const QString &name);

} // namespace TestSupport
