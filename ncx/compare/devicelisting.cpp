#include "ncx/compare/devicelisting.h"

#include "store/objectdatabase.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

class Listing
{
public:
    Listing(ComparedDevice &device, const std::function<void(const QString &)> &take)
        : device_(device)
        , take_(take)
    {
    }

    void listProject()
    {
        takePart({}, {}, {});
        takeSettings(FactsOf::projectSettings(device_.store()));
    }

    void listLine(quint8 number)
    {
        line_ = number;
        DeviceLine &line = device_.line(number);
        takePart(place(PartKind::Line), line.name(), FactsOf::line(device_.store(), line, Scope::Project));
        takeSettings(FactsOf::lineSettings(device_.store(), line, Scope::Project));
        for (const CheckedObject &object : line.objects())
            listObject(object);
        for (const CheckedPGN &pgn : line.pgns()) {
            takePart(place(PartKind::Pgn, pgn.data.number, 0, pgn.direction()), pgn.data.name, FactsOf::pgn(pgn));
            for (const CheckedSignal &spn : pgn.spns)
                takePart(place(PartKind::Spn, pgn.data.number, spn.data.spnnumber, pgn.direction()), spn.data.name,
                         FactsOf::signal(spn));
        }
        for (const CheckedCanId &canId : line.canIds()) {
            takePart(place(PartKind::CanId, canId.data.id, 0, canId.direction()), canId.data.name,
                     FactsOf::canId(canId));
            for (const CheckedSignal &signal : canId.signalList)
                takePart(place(PartKind::Signal, canId.data.id, signal.data.spnnumber, canId.direction()),
                         signal.data.name, FactsOf::signal(signal));
        }
        for (const FactsOf::Service &service : FactsOf::services(device_.store(), number))
            takePart(place(PartKind::Service, service.sid), service.name, service.facts);
    }

private:
    PartPlace place(PartKind kind, quint32 number = 0, quint32 sub = 0, quint8 direction = 0) const
    {
        return {.kind = kind, .line = line_, .number = number, .sub = sub, .direction = direction};
    }

    void listObject(const CheckedObject &object)
    {
        takePart(place(PartKind::Object, object.index), object.data.name, FactsOf::object(object, Scope::Project));
        for (const CheckedSubindex &sub : object.subs)
            takePart(place(PartKind::Subindex, object.index, sub.subindex),
                     object.isComplex() || sub.data->name != object.data.name ? sub.data->name : QString(),
                     FactsOf::subindex(object, sub, Scope::Project));
    }

    void takeSettings(Facts facts)
    {
        std::ranges::stable_sort(facts, {}, &Fact::name);
        takeFacts(facts);
    }

    void takePart(const PartPlace &place, const QString &name, const Facts &facts)
    {
        take_(name.isEmpty() ? place.text() : u"%1 \"%2\""_s.arg(place.text(), inOneLine(name)));
        takeFacts(facts);
    }

    /// The name stands in the line of the part.
    void takeFacts(const Facts &facts)
    {
        for (const Fact &fact : facts) {
            if (!fact.isUsual && fact.name != "name"_L1)
                take_(u"    %1: %2"_s.arg(fact.name, inOneLine(fact.value)));
        }
    }

    static QString inOneLine(QString text)
    {
        return text.replace(u'\\', "\\\\"_L1).replace(u'\n', "\\n"_L1).replace(u'\r', "\\r"_L1);
    }

    ComparedDevice &device_;
    const std::function<void(const QString &)> &take_;
    quint8 line_ = 0;
};

} // namespace

void listDevice(ComparedDevice &device, const QList<quint8> &lines, const std::function<void(const QString &)> &take)
{
    Listing listing(device, take);
    listing.listProject();
    for (const quint8 line : lines)
        listing.listLine(line);
}
