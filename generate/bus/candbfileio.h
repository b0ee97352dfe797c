#pragma once

#include "candb/candb.h"

/// A CAN database and a file form of it.
class CANdbFileIo
{
public:
    CANdbFileIo() = default;
    virtual ~CANdbFileIo() = default;
    Q_DISABLE_COPY_MOVE(CANdbFileIo)

    /// Takes the file's contents in place of the database; false, with an error text, if the file cannot be read.
    virtual bool readFile(const QString &path) = 0;
    /// False, with an error text, if the file cannot be written whole.
    virtual bool writeFile(const QString &path) = 0;

    const CANdb::Database &database() const { return database_; }
    QString errorText() const { return errorText_; }

protected:
    bool failed(const QString &text)
    {
        errorText_ = text;
        return false;
    }

    CANdb::Database database_;

private:
    QString errorText_;
};
