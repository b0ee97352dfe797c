#pragma once

#include <QObject>
#include <QString>

#include <memory>

class ObjectDataBase;

/// Applies a modifier file to the settings of an open project, in its working copy.
///
/// Each line of the file is `<table>:<key>:<value>`, the table "GeneralSettings" or "J1939Settings". Empty lines, lines
/// that begin with "#" and everything else are passed over; so a value cannot hold a colon.
class DatabaseModifier : public QObject
{
    Q_OBJECT

public:
    explicit DatabaseModifier(QObject *parent = nullptr)
        : QObject(parent)
    {
    }

    void setDatabase(const std::shared_ptr<ObjectDataBase> &store) { store_ = store; }
    void setModifierFile(const QString &path) { path_ = path; }
    /// False if the file cannot be read, or at the first line that the store refuses; those before it stay applied.
    bool applyModifierFile();
    /// The line that the store refused; empty if none.
    QString failedLine() const { return failedLine_; }

private:
    bool applyLine(const QString &line);

    std::shared_ptr<ObjectDataBase> store_;
    QString path_;
    QString failedLine_;
};
