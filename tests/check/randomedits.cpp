#include "check/randomedits.h"

#include <random>

using namespace Qt::StringLiterals;

namespace {

class Edits
{
public:
    Edits(unsigned seed, QList<quint8> lines)
        : random_(seed)
        , lines_(std::move(lines))
    {
    }

    Edit next()
    {
        const quint8 line = oneOf(lines_);
        switch (below(24)) {
        case 0:
            return settings();
        case 1:
            return unusual(line);
        case 2:
        case 3:
            return [=, index = index()](ObjectDataBase &store) { std::ignore = store.removeIndex(line, index); };
        case 4:
        case 5:
            return [=, index = index(), sub = sub()](ObjectDataBase &store) {
                std::ignore = store.removeSubIndex(line, index, sub);
            };
        case 6:
            return [=, from = index(), to = index()](ObjectDataBase &store) {
                std::ignore = store.copyIndex(line, from, line, to);
            };
        case 7:
            return [=, index = index(), name = name()](ObjectDataBase &store) {
                std::ignore = store.setIndexName(line, index, name);
            };
        case 8:
        case 9:
        case 10:
            return [=, index = index(), data = object()](ObjectDataBase &store) {
                std::ignore = store.addIndex(line, index, data);
            };
        case 11:
        case 12:
        case 13:
            return [=, index = index(), sub = sub(), value = value()](ObjectDataBase &store) {
                std::ignore = store.setSubIndexDefaultValue(line, index, sub, value, Quotes::Kept);
            };
        case 14:
        case 15:
        case 16:
        case 17:
            return [=, index = index(), sub = sub(), data = subindex()](ObjectDataBase &store) {
                std::ignore = store.addSubIndex(line, index, sub, data, Quotes::Kept);
            };
        default:
            return below(2) ? ofPgn(line) : ofCanId(line);
        }
    }

private:
    int below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }
    template <class Value>
    Value oneOf(const QList<Value> &list)
    {
        return list[below(static_cast<int>(list.size()))];
    }

    quint16 index()
    {
        static const QList<quint16> some{0x1000, 0x1001, 0x1003, 0x1005, 0x1010, 0x1014, 0x1016, 0x1017,
                                         0x1018, 0x1028, 0x1301, 0x1381, 0x1400, 0x1600, 0x1800, 0x1801,
                                         0x1A00, 0x1A01, 0x2000, 0x2001, 0x2002, 0x6000};
        return oneOf(some);
    }
    quint8 sub() { return static_cast<quint8>(below(5)); }
    quint8 direction() { return oneOf(QList<quint8>{StoreRecords::transmit, StoreRecords::receive}); }
    QString name() { return oneOf(QStringList{u"a"_s, u"b c"_s, u" "_s, u""_s, u"7th"_s, u"it's"_s}); }
    QString variable() { return oneOf(QStringList{u""_s, u"v"_s, u"w"_s, u"x y"_s, u"u[<sub>]"_s, u"n<index>"_s}); }
    QString value()
    {
        return oneOf(QStringList{u"0"_s, u"1"_s, u"2"_s, u"4"_s, u"7"_s, u""_s, u"x"_s, u"it's"_s, u"0x20000108"_s,
                                 u"0x20010110"_s, u"0x20020001"_s, u"0x60000020"_s, u"$NODEID+0x180"_s, u"0x182"_s,
                                 u"0x80000182"_s, u"0x5A7"_s, u"300"_s});
    }

    StoreRecords::IndexData object()
    {
        StoreRecords::IndexData data;
        data.name = name();
        data.objecttype = oneOf(QList<quint32>{7, 7, 8, 9, 2});
        if (below(8) == 0)
            data.metadata = {{u"k"_s, name()}};
        return data;
    }

    StoreRecords::SubIndexData subindex()
    {
        StoreRecords::SubIndexData data;
        data.name = name();
        data.datatype = oneOf(QList<quint16>{5, 6, 7, 7, 2, 9, 10, 99});
        data.accesstype = oneOf(QStringList{u"ro"_s, u"rw"_s, u"const"_s, u"rww"_s, u"wrong"_s});
        data.defaultvalue = value();
        data.implementation = static_cast<quint8>(oneOf(QList<int>{0, 1, 2, 2, 2, 3}));
        data.varname = variable();
        data.pdomapping = PDOMapping(static_cast<quint32>(below(3)));
        data.limitineds = below(3) == 0;
        data.uplimit = u"255"_s;
        data.defaultineds = below(2) == 0;
        data.writedefaulttoeds = static_cast<quint8>(below(3));
        return data;
    }

    StoreRecords::SPN signal()
    {
        StoreRecords::SPN data;
        data.name = name();
        data.varname = variable();
        data.datatype = oneOf(QList<quint32>{5, 6, 7, 9, 8});
        data.pos = static_cast<quint32>(below(4));
        data.bitposition = static_cast<quint16>(below(6) * 8);
        data.bitsize = 8;
        data.implementation = static_cast<quint8>(oneOf(QList<int>{0, 2, 2}));
        return data;
    }

    Edit ofPgn(quint8 line)
    {
        const quint32 number = oneOf(QList<quint32>{0xF200, 0xFA00, 0xFA01, 0xFE00, 65226, 60928});
        const quint8 way = direction();
        const auto spn = static_cast<quint32>(below(4));
        switch (below(6)) {
        case 0:
            return [=](ObjectDataBase &store) { std::ignore = store.removePGN(line, number, way); };
        case 1:
            return [=](ObjectDataBase &store) { std::ignore = store.removeSPN(line, number, spn, way); };
        case 2:
        case 3: {
            StoreRecords::PGN data;
            data.name = name();
            data.direction = way;
            data.issafe = below(2) == 0;
            data.safetytype = static_cast<quint8>(below(5));
            return [=](ObjectDataBase &store) { std::ignore = store.addPGN(line, number, data); };
        }
        default:
            return [=, data = signal()](ObjectDataBase &store) {
                std::ignore = store.addSPN(line, number, way, spn, data, Quotes::Kept);
            };
        }
    }

    Edit ofCanId(quint8 line)
    {
        const quint32 id = oneOf(QList<quint32>{0x100, 0x101, 0x7ff, 0x800, 0x80000800});
        const quint8 way = direction();
        const auto number = static_cast<quint32>(below(4));
        switch (below(6)) {
        case 0:
            return [=](ObjectDataBase &store) { std::ignore = store.removeCANID(line, id, way); };
        case 1:
            return [=](ObjectDataBase &store) { std::ignore = store.removeDataElement(line, id, number, way); };
        case 2:
        case 3: {
            StoreRecords::CANID data;
            data.name = name();
            data.direction = way;
            return [=](ObjectDataBase &store) { std::ignore = store.addCANID(line, id, data); };
        }
        default:
            return [=, data = signal()](ObjectDataBase &store) {
                std::ignore = store.addDataElement(line, id, way, number, data, Quotes::Kept);
            };
        }
    }

    Edit settings()
    {
        const QString value = oneOf(QStringList{u"0"_s, u"1"_s, u"0,1"_s, u"8"_s, u"5,6"_s, u""_s});
        switch (below(4)) {
        case 0:
            return
                [=, groups = oneOf(QStringList{u""_s, u"WG_NAMING"_s, u"wg_eds,WG_LAYOUT"_s})](ObjectDataBase &store) {
                    std::ignore = store.setMiscSetting(u"SuppressedWarningGroups"_s, groups);
                };
        case 1:
            return [=, key = oneOf(QStringList{u"safetysupport"_s, u"bamsupport"_s, u"diagsupport_dm1"_s})](
                       ObjectDataBase &store) { std::ignore = store.setJ1939Setting(key, value); };
        case 2:
            return [=](ObjectDataBase &store) { std::ignore = store.setDescriptionSetting(u"Granularity"_s, value); };
        default:
            return [=, key = oneOf(QStringList{u"limit_check"_s, u"canfd_supported"_s, u"co_node_id"_s, u"nmtmaster"_s,
                                               u"bitwise_mapping"_s, u"overwrite_predef"_s})](ObjectDataBase &store) {
                std::ignore = store.setGeneralSetting(key, value);
            };
        }
    }

    /// What no operation announces, or what is taken back.
    Edit unusual(quint8 line)
    {
        const QString type = oneOf(QStringList{u"1"_s, u"2"_s, u"4"_s, u"5"_s, u"6"_s, u"7"_s});
        switch (below(7)) {
        case 0:
            return [=, index = index(), value = value()](ObjectDataBase &store) {
                std::ignore = store.statements().execute(
                    {"test", u"update SubObjects%1 set defaultvalue = ? where objectindex = ?"_s.arg(line),
                     Statement::Effect::Rows},
                    {value, index});
            };
        case 1:
            return [=](ObjectDataBase &store) {
                std::ignore = store.statements().execute(
                    {"test", u"delete from SPNs%1 where spnnumber = 1"_s.arg(line), Statement::Effect::Rows});
            };
        case 2:
            return [=, index = index(), data = object()](ObjectDataBase &store) {
                const ObjectDataBase::Step step(store);
                std::ignore = store.removeIndex(line, index);
                std::ignore = store.addIndex(line, 0x2000, data);
            };
        case 3:
            return [=](ObjectDataBase &store) {
                if (store.getNodeList().size() > 1)
                    std::ignore = store.removeNode(line);
                std::ignore = store.addNode(line, {});
            };
        case 4:
            return [=](ObjectDataBase &store) { std::ignore = store.removeUnusedStrings(); };
        case 5:
            return [=](ObjectDataBase &store) { store.setBlocked(true); }; // until the next edit
        default:
            // Changed for one check, and then back: what is not asked meanwhile has missed nothing.
            return
                [=](ObjectDataBase &store) { std::ignore = store.setGeneralSetting(u"line%1type"_s.arg(line), type); };
        }
    }

    std::mt19937 random_;
    QList<quint8> lines_;
};

} // namespace

std::function<Edit()> randomEdits(unsigned seed, const QList<quint8> &lines)
{
    return [edits = Edits(seed, lines)]() mutable { return edits.next(); };
}
