#pragma once

#include <QHash>
#include <QList>
#include <QStringList>

#include <random>

namespace TestSupport {

/// A project made by chance, the same for the same seed: the commands that build it, which tests/data/check/README.md
/// lists. What it is made of stands in tests/data/random; what has to fit together (mappings, safety data, signals
/// that share a message) is made here: randomobjects.cpp has the objects of its dictionaries, randomproject.cpp the
/// rest.
class RandomProject
{
public:
    explicit RandomProject(quint32 seed);

    const QStringList &commands() const { return commands_; }
    /// The type codes of its lines.
    const QList<int> &lineTypes() const { return lineTypes_; }
    bool isClassic() const { return classic_; }

private:
    enum Implementation : quint8
    {
        ManagedVariable,
        ManagedConst,
        ApplicationVariable,
        VirtualObject
    };

    /// What a PDO or SRDO may map.
    struct Mappable
    {
        quint16 index;
        quint8 subindex;
        quint32 bits;
        bool readable;
        bool writable;
    };
    /// A subindex in the making.
    struct Place
    {
        quint16 index;
        quint8 subindex;
        quint16 dataType;
    };

    static bool isText(quint16 dataType);
    static QString hex(quint32 number, int digits = 4);

    quint32 number(quint32 first, quint32 last);
    bool chance(quint32 percent) { return number(1, 100) <= percent; }
    template <class List>
    auto oneOf(const List &list)
    {
        return list[number(0, static_cast<quint32>(list.size()) - 1)];
    }

    QString expanded(QString text);
    void addBlock(const QString &name);
    /// Columns of a block as one row of fields, some of them left out.
    QString fields(const QString &block);
    QString value(quint16 dataType);
    quint16 objectType();
    void add(const QString &command) { commands_.append(command); }

    void addLine(int type);
    void addSub(quint16 index, quint8 subindex, quint16 dataType, const QString &more);
    QString implementation(const Place &place, const QString &text, bool isVirtual);
    void addApplicationSub(const Place &place, bool isVirtual);
    void addApplicationObject(quint16 index);
    void addApplicationObjects();
    void addSharedObjects();
    void addPdos(bool transmit);
    void addPdo(quint16 number, bool transmit, QList<Mappable> objects);
    void addSafetyObjects();
    void addSrdo(quint16 number);
    QString signal(quint32 &position, quint16 dataType, const QString &variable, bool isSafe);
    void addGroups();
    void addFrames();

    std::mt19937 random_;
    QStringList commands_;
    QList<int> lineTypes_;
    qsizetype lineCount_ = 1;
    bool classic_ = false;
    bool fd_ = false;
    bool safety_ = false;
    bool server_ = false; ///< J1939 alone, with the SDO server of CiA 510
    quint8 line_ = 0;
    QList<Mappable> mappables_;
    QStringList shared_; ///< the objects that several lines have
    QHash<QString, QStringList> blocks_;
};

} // namespace TestSupport
