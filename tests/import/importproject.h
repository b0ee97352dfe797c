#pragma once

#include <QString>

#include <memory>

class BaseDataImporter;
class ObjectDataBase;

namespace ImportTest {

/// A project with nothing but an empty line 0.
std::shared_ptr<ObjectDataBase> emptyProject();

/// Runs an importer on a line and waits for its end. What its report says; null if it refuses the file.
QString run(BaseDataImporter &importer, const std::shared_ptr<ObjectDataBase> &store, const QString &path,
            quint8 line = 0);

/// Imports a description into line 0 the way the program does, and waits for the end. False if the file is refused.
bool importEds(const std::shared_ptr<ObjectDataBase> &store, const QString &path, quint8 line = 0);

/// The same for a text, by way of a file.
bool importText(const std::shared_ptr<ObjectDataBase> &store, const QByteArray &content, quint8 line = 0);

/// All that an import can leave on a line, as text: a row for each object and sub-object, then the settings.
QString dump(ObjectDataBase &store, quint8 line = 0);

} // namespace ImportTest
