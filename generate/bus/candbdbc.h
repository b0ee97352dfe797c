#pragma once

#include "generate/bus/candbfileio.h"

#include <QHash>
#include <QSet>

/// A CAN database in the form DBC: read, built frame by frame, and written.
///
/// The operations that build refuse what a DBC file cannot hold: names that are no identifiers or not unique, a second
/// frame of one identifier, a signal without bits or beyond its frame, an attribute or word that is not defined.
class CANdbDBC : public CANdbFileIo
{
public:
    /// Reads UTF-8 or Windows-1252.
    bool readFile(const QString &path) override;
    /// Writes UTF-8.
    bool writeFile(const QString &path) override;

    bool defineAttribute(const CANdb::AttributeDefinition &definition);
    bool setAttribute(const QString &name, const QString &value);

    /// A frame of the database that is being built.
    class MessageRef;
    /// Adds a frame of this identifier; invalid if there is one already.
    MessageRef addMessage(quint32 id);

    class SignalRef
    {
    public:
        bool isValid() const { return message_ >= 0; }
        bool setName(const QString &name);
        bool setValueSize(quint32 startBit, quint32 bits, bool isSigned);
        bool setValueType(CANdb::ValueType type);
        bool setComment(const QString &comment);
        /// The value of an enumeration is the place of its word.
        bool setAttribute(const QString &name, const QString &value);

    private:
        friend class MessageRef;
        CANdb::Signal &signal() const;

        CANdbDBC *owner_ = nullptr;
        qsizetype message_ = -1;
        qsizetype signal_ = -1;
    };

    class MessageRef
    {
    public:
        bool isValid() const { return message_ >= 0; }
        bool setName(const QString &name);
        /// In bytes.
        bool setLength(quint32 length);
        bool setComment(const QString &comment);
        bool setAttribute(const QString &name, const QString &value);
        SignalRef addSignal();

    private:
        friend class CANdbDBC;
        CANdb::Message &message() const;

        CANdbDBC *owner_ = nullptr;
        qsizetype message_ = -1;
    };

private:
    const CANdb::AttributeDefinition *definition(const QString &name, CANdb::Owner owner) const;
    bool takes(const QString &name, CANdb::Owner owner, const QString &value) const;
    void forgetNames();

    QSet<quint32> ids_;
    QSet<QString> messageNames_;
    QHash<qsizetype, QSet<QString>> signalNames_; ///< by the place of the frame
};
