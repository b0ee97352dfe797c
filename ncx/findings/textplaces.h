#pragma once

#include "check/frame/finding.h"

#include <QByteArray>
#include <QHash>
#include <QString>

/// Where things stand in a project in text form: the line, from 1, of the first key of an object, subindex, message,
/// signal or setting. The file is read once, when it is first asked for.
class TextPlaces
{
public:
    explicit TextPlaces(QString path)
        : path_(std::move(path))
    {
    }

    /// Of the narrowest thing of a place that the text has; 0 if it has none.
    int lineOf(const FindingPlace &place);

private:
    void read();
    int lineOf(const QString &section, const QString &row) const;

    QString path_;
    bool isRead_ = false;
    QHash<QByteArray, int> lines_; ///< by "section/row"
};
