#pragma once

#include <QString>
#include <QStringList>

#include <memory>

class ObjectDataBase;

/// The CANopen reference profiles (CiA 301, 401 and so on): read-only databases of standard objects, files with the
/// ending ".codb" in one folder. By default these are the ones compiled into the program; a company may point it to a
/// folder of its own.
///
/// A profile's id is its file name without ".codb" and without one leading "v": "v402_v3.codb" is "402_v3". Asked for,
/// a profile answers to its id and to its file name without ".codb", in any letter case.
class ProfileDatabases
{
public:
    explicit ProfileDatabases(QString folder = QStringLiteral(":/codb"));
    ~ProfileDatabases();
    Q_DISABLE_COPY_MOVE(ProfileDatabases)

    /// Ids in the order of the file names; none if the folder is missing or empty.
    QStringList ids() const;
    /// File names without ".codb", in order.
    QStringList names() const;
    /// The file of a profile; empty if there is no such profile.
    QString filePath(const QString &id) const;
    /// What the banner of a profile's file says it is; empty if there is no such profile or it says nothing.
    QString description(const QString &id) const;
    /// The profile's objects, on line 0 of a store that nobody else uses; null, with `lastError` set, if there is no
    /// such profile or it cannot be read. The profile last loaded is kept and answers from there when it is asked for
    /// again under the same id, whatever happened to its file; any other id reads a file and takes its place.
    std::shared_ptr<ObjectDataBase> load(const QString &id);
    /// Why the last `load` gave null, in words for the user.
    QString lastError() const { return lastError_; }

private:
    QString folder_;
    QString loadedId_;
    std::shared_ptr<ObjectDataBase> loaded_;
    QString lastError_;
};
