#pragma once

#include <QObject>

/// Reads from a stack's feature file which version of this tool the stack needs.
///
/// Such a file lies in the stack's folder, is named *_featureinfo_*.xml, and holds an element `required_tool_version`
/// with the version as its text.
class VersionReader : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Keeps the path if the file exists; false otherwise.
    bool setFile(const QString &path);
    /// Gives the text of the first such element as it stands, or "0.0" where the file cannot be opened or parsed, or
    /// has no such text.
    void requiredToolVersion(QString &version) const;

private:
    QString file_;
};
