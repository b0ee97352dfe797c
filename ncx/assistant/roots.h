#pragma once

#include <QString>
#include <QStringList>

/// The folders that a server reads and writes; everything else of the disk is refused to its client.
class Roots
{
public:
    /// `folders` as they were given, relative ones from the current folder; without any, that one.
    explicit Roots(const QStringList &folders);

    /// Why a path is refused, a sentence with the next step; empty for one that is inside. Links are followed, also
    /// those in the folders of a file that is not there yet.
    QString refusal(const QString &path) const;
    const QStringList &folders() const { return folders_; }

private:
    QStringList folders_; ///< without links
};
