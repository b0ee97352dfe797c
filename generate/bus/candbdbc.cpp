#include "generate/bus/candbdbc.h"

#include "candb/dbcreader.h"
#include "generate/base/outputfile.h"
#include "generate/base/utf8sink.h"
#include "generate/bus/dbcwriter.h"
#include "texttools/asciitext.h"
#include "texttools/textfile.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using AsciiText::isIdentifier;
using CANdb::AttributeDefinition;

bool CANdbDBC::readFile(const QString &path)
{
    TextFile text;
    if (!text.load(path))
        return failed(u"Cannot read %1."_s.arg(path));
    DbcReader reader;
    const std::optional<CANdb::Database> database = reader.read(text.decode(text.bytes()));
    if (!database)
        return failed(u"%1: %2"_s.arg(path, reader.errorText()));
    database_ = *database;
    forgetNames();
    return true;
}

bool CANdbDBC::writeFile(const QString &path)
{
    if (path.isEmpty())
        return failed(u"Empty target file name"_s);
    OutputFile file(path);
    if (!file.open())
        return failed(file.errorText());
    Utf8Sink sink(file.device());
    writeDbc(sink, database_);
    sink.flush();
    return file.commit() || failed(file.errorText());
}

/// Learns anew which identifiers and names are taken.
void CANdbDBC::forgetNames()
{
    ids_.clear();
    messageNames_.clear();
    signalNames_.clear();
    for (qsizetype place = 0; place < database_.messages.size(); ++place) {
        const CANdb::Message &message = database_.messages.at(place);
        ids_.insert(message.id);
        messageNames_.insert(message.name);
        for (const CANdb::Signal &signal : message.signalList)
            signalNames_[place].insert(signal.name);
    }
}

const AttributeDefinition *CANdbDBC::definition(const QString &name, CANdb::Owner owner) const
{
    const auto found = std::ranges::find_if(database_.definitions, [&](const AttributeDefinition &candidate) {
        return candidate.name == name && candidate.owner == owner;
    });
    return found == database_.definitions.end() ? nullptr : &*found;
}

bool CANdbDBC::takes(const QString &name, CANdb::Owner owner, const QString &value) const
{
    const AttributeDefinition *attribute = definition(name, owner);
    if (!attribute)
        return false;
    if (attribute->type == AttributeDefinition::Type::String)
        return true;
    const std::optional<double> number = dbcNumber(value);
    if (attribute->type == AttributeDefinition::Type::Enumeration)
        return number && *number >= 0 && *number < static_cast<double>(attribute->words.size());
    return number && *number >= attribute->minimum && *number <= attribute->maximum;
}

bool CANdbDBC::defineAttribute(const AttributeDefinition &attribute)
{
    if (!isIdentifier(attribute.name) || definition(attribute.name, attribute.owner))
        return false;
    database_.definitions.append(attribute);
    return true;
}

bool CANdbDBC::setAttribute(const QString &name, const QString &value)
{
    if (!takes(name, CANdb::Owner::Database, value))
        return false;
    database_.attributes.append({name, value});
    return true;
}

CANdbDBC::MessageRef CANdbDBC::addMessage(quint32 id)
{
    MessageRef message;
    if (ids_.contains(id))
        return message;
    ids_.insert(id);
    message.owner_ = this;
    message.message_ = database_.messages.size();
    database_.messages.append(CANdb::Message{.id = id});
    return message;
}

CANdb::Message &CANdbDBC::MessageRef::message() const
{
    return owner_->database_.messages[message_];
}

bool CANdbDBC::MessageRef::setName(const QString &name)
{
    if (!isValid() || !isIdentifier(name) || owner_->messageNames_.contains(name))
        return false;
    owner_->messageNames_.insert(name);
    message().name = name;
    return true;
}

bool CANdbDBC::MessageRef::setLength(quint32 length)
{
    if (!isValid())
        return false;
    message().length = length;
    return true;
}

bool CANdbDBC::MessageRef::setComment(const QString &comment)
{
    if (!isValid())
        return false;
    message().comment = comment;
    return true;
}

bool CANdbDBC::MessageRef::setAttribute(const QString &name, const QString &value)
{
    if (!isValid() || !owner_->takes(name, CANdb::Owner::Message, value))
        return false;
    message().attributes.append({name, value});
    return true;
}

CANdbDBC::SignalRef CANdbDBC::MessageRef::addSignal()
{
    SignalRef signal;
    if (!isValid())
        return signal;
    signal.owner_ = owner_;
    signal.message_ = message_;
    signal.signal_ = message().signalList.size();
    message().signalList.append(CANdb::Signal{});
    return signal;
}

CANdb::Signal &CANdbDBC::SignalRef::signal() const
{
    return owner_->database_.messages[message_].signalList[signal_];
}

bool CANdbDBC::SignalRef::setName(const QString &name)
{
    if (!isValid() || !isIdentifier(name) || owner_->signalNames_[message_].contains(name))
        return false;
    owner_->signalNames_[message_].insert(name);
    signal().name = name;
    return true;
}

bool CANdbDBC::SignalRef::setValueSize(quint32 startBit, quint32 bits, bool isSigned)
{
    if (!isValid() || bits == 0 || startBit + bits > owner_->database_.messages.at(message_).length * 8)
        return false;
    CANdb::Signal &target = signal();
    target.startBit = startBit;
    target.size = bits;
    target.isSigned = isSigned;
    return true;
}

bool CANdbDBC::SignalRef::setValueType(CANdb::ValueType type)
{
    if (!isValid())
        return false;
    signal().valueType = type;
    return true;
}

bool CANdbDBC::SignalRef::setComment(const QString &comment)
{
    if (!isValid())
        return false;
    signal().comment = comment;
    return true;
}

bool CANdbDBC::SignalRef::setAttribute(const QString &name, const QString &value)
{
    if (!isValid() || !owner_->takes(name, CANdb::Owner::Signal, value))
        return false;
    signal().attributes.append({name, value});
    return true;
}
