#include "ncx/page/devicepage.h"

#include "ncx/device/devicejson.h"
#include "ncx/findings/projectfindings.h"
#include "ncx/page/changedsettings.h"
#include "ncx/page/framesvg.h"
#include "ncx/page/webpage.h"
#include "ncx/project/openedproject.h"
#include "store/objectdatabase.h"
#include "store/settings.h"
#include "store/tables/descriptiondefaults.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace {

template <class Part, class Draw>
QJsonArray drawings(const std::vector<Part> &parts, const Draw &draw)
{
    QJsonArray list;
    for (const Part &part : parts)
        list.append(FrameSvg::element(draw(part)));
    return list;
}

/// The drawings of the frames, in the orders of the lists that the device has them in.
QJsonObject drawingsOf(DeviceLine &line)
{
    QJsonObject json;
    if (line.protocols().canOpen)
        json.insert(u"pdos"_s, drawings(line.pdos(), [](const Pdo &pdo) { return FrameSvg::of(pdo); }));
    if (line.protocols().j1939)
        json.insert(u"pgns"_s, drawings(line.pgns(), [](const CheckedPGN &pgn) { return FrameSvg::of(pgn); }));
    if (line.protocols().rawCan)
        json.insert(u"canIds"_s,
                    drawings(line.canIds(), [](const CheckedCanId &canId) { return FrameSvg::of(canId); }));
    return json;
}

/// Bit rates in kbit/s that the description of a line allows; what a J1939 line is made for where it has none.
QJsonArray bitRates(ObjectDataBase &store, const LineProtocols &protocols)
{
    if (protocols.j1939 && !protocols.canOpen)
        return {250, 500}; // SAE J1939-11 and -14
    QJsonArray rates;
    for (const int rate : {10, 20, 50, 125, 250, 500, 800, 1000}) {
        if (store.getDescriptionSetting(u"BaudRate_%1"_s.arg(rate)).toInt() > 0)
            rates.append(rate);
    }
    return rates;
}

/// What the page needs of a line beside the form "ncx-device".
QJsonObject lineData(ObjectDataBase &store, DeviceLine &line)
{
    const quint8 number = line.number();
    store.setCurrentLine(number);
    QJsonObject json{{u"line"_s, number},
                     {u"bitRates"_s, bitRates(store, line.protocols())},
                     {u"canFd"_s, Settings(store).isOn(u"canfd_supported"_s)},
                     {u"drawings"_s, drawingsOf(line)}};
    if (line.protocols().j1939)
        json.insert(u"sourceAddress"_s,
                    qint64{Settings(store, Settings::Table::J1939).number(u"startaddress"_s, number)});
    for (const auto &[key, setting] : {std::pair{"vendor"_L1, "VendorName"_L1},
                                       {"product"_L1, "ProductName"_L1},
                                       {"orderCode"_L1, "OrderCode"_L1},
                                       {"comment"_L1, "Comment"_L1}}) {
        const QString text = store.getDescriptionSetting(setting);
        if (!text.isEmpty() && text != DescriptionDefaults::of(setting))
            json.insert(key, text);
    }
    return json;
}

} // namespace

QByteArray DevicePage::html(OpenedProject &project, const QList<quint8> &lines)
{
    DeviceJson::LinesJson deviceLines(QJsonDocument::Compact);
    QJsonArray lineList;
    for (const quint8 number : lines) {
        DeviceLine line(project.store(), number);
        deviceLines.add(line);
        lineList.append(lineData(project.store(), line));
    }
    QJsonObject json{{u"format"_s, u"ncx-page"_s},
                     {u"version"_s, version},
                     {u"device"_s, DeviceJson::wrap(project.path(), deviceLines.lines())},
                     {u"lines"_s, lineList},
                     {u"settings"_s, changedSettings(project.store(), lines)}};
    // The check corrects the working copy: what it finds is asked for at the end.
    json.insert(u"check"_s, ProjectFindings::of(project).toJson(project.path()));
    return WebPage::html(u"page.html"_s, deviceLines.toJson(json));
}
