#pragma once

#include <QStringList>

#include <memory>

class ObjectDataBase;

namespace ImportTest {

/// A project with nothing but an empty line 0.
std::shared_ptr<ObjectDataBase> emptyProject();

/// Imports a description into line 0 the way the program does, and waits for the end. False if the file is refused.
bool importEds(const std::shared_ptr<ObjectDataBase> &store, const QString &path, quint8 line = 0);

/// The same for a text, by way of a file.
bool importText(const std::shared_ptr<ObjectDataBase> &store, const QByteArray &content, quint8 line = 0);

/// All that an import can leave on a line, as text: a row for each object and sub-object, then the settings.
QString dump(ObjectDataBase &store, quint8 line = 0);

/// Compares text with the file of this name in tests/data. NCX_ACCEPT=1 in the environment writes the file.
void expectInFile(const QString &made, const QString &name);

/// The files of a folder in tests/data with one of the endings; there is one at least.
QStringList casesIn(const QString &folder, const QStringList &endings);

} // namespace ImportTest
