#include "ncx/assistant/j1939keys.h"

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

struct Fixed
{
    QLatin1StringView key;
    qint64 highest;
    QLatin1StringView meaning;
};

constexpr qint64 aSwitch = 1;
constexpr qint64 aByte = 0xff;
constexpr qint64 aWord = 0xffff;

constexpr Fixed rows[] = {
    {"startaddress"_L1, 253, "address that is claimed first (SAE J1939-81)"_L1},
    {"addresscapable"_L1, aSwitch, "1: another address can be taken where that is in use"_L1},
    {"identitynumber"_L1, 0x1fffff, "NAME: serial number, 21 bits"_L1},
    {"manufacturercode"_L1, 0x7ff, "NAME: code of the maker, 11 bits"_L1},
    {"ecuinstance"_L1, 7, "NAME: instance of the ECU, 3 bits"_L1},
    {"functioninstance"_L1, 31, "NAME: instance of the function, 5 bits"_L1},
    {"function"_L1, aByte, "NAME: function, 8 bits"_L1},
    {"vehiclesystem"_L1, 127, "NAME: vehicle system, 7 bits"_L1},
    {"vehicleinstance"_L1, 15, "NAME: instance of the vehicle system, 4 bits"_L1},
    {"industrygroup"_L1, 7, "NAME: industry group, 3 bits"_L1},
    {"bamsupport"_L1, aSwitch, "transport of more than 8 bytes as broadcast (SAE J1939-21)"_L1},
    {"bamcycletime"_L1, aWord, "time between the packets of a broadcast in ms, 50 to 200"_L1},
    {"cmdtsupport"_L1, aSwitch, "transport of more than 8 bytes to one address"_L1},
    {"cmdtpackets"_L1, aByte, "packets at a time of that"_L1},
    {"requestsupport"_L1, aSwitch, "requests of PGNs"_L1},
    {"propsupport"_L1, aSwitch, "proprietary groups"_L1},
    {"dynsupport"_L1, aSwitch, "groups made at run time"_L1},
    {"nmea2000support"_L1, aSwitch, "NMEA 2000"_L1},
    {"recalladdrclaims"_L1, aSwitch, "all address claims are received"_L1},
    {"rxindication_cnt"_L1, aByte, "functions of the application for received PGNs"_L1},
    {"txindication_cnt"_L1, aByte, "functions of the application for transmitted PGNs"_L1},
    {"requestindication_cnt"_L1, aByte, "functions of the application for requests"_L1},
    {"acknowledgeindication_cnt"_L1, aByte, "functions of the application for acknowledgements"_L1},
    {"nmea2000groupindication_cnt"_L1, aByte, "functions of the application for NMEA 2000 groups"_L1},
    {"spnchanged"_L1, aByte, "functions of the application for changed SPNs"_L1},
    {"bitwisemapping"_L1, aSwitch, "signals that are no whole number of bytes"_L1},
    {"diagsupport"_L1, aSwitch, "diagnostic messages (SAE J1939-73), each by its own switch"_L1},
    {"dm_receivesize"_L1, aWord, "bytes of the buffer of received diagnostic messages"_L1},
    {"dm_transmitsize"_L1, aWord, "bytes of the buffer of transmitted diagnostic messages"_L1},
    {"diagtoolsupport"_L1, aSwitch, "diagnostic messages as a tool"_L1},
    {"dmtool_receivesize"_L1, aWord, "bytes of the buffer of messages that the tool receives"_L1},
    {"dmtool_transmitsize"_L1, aWord, "bytes of the buffer of messages that the tool transmits"_L1},
    {"safetysupport"_L1, aSwitch, "safety data groups (SAE J1939-76)"_L1},
    {"sdm_rec_addr_cnt"_L1, aByte, "senders of safety data groups"_L1},
    {"sdm_timer_interval"_L1, aWord, "timer of safety data groups in ms"_L1},
    {"sdm_loop_counter"_L1, aWord, "loop counter of safety data groups"_L1},
    {"cia510serversupport"_L1, aSwitch, "SDO server over CAM11 and CAM21 (CiA 510)"_L1},
    {"cia510clientsupport"_L1, aSwitch, "SDO client over CAM11 and CAM21 (CiA 510)"_L1},
    {"j1939fd_multipgbuffer"_L1, aWord, "buffer of multi-PG frames of J1939 FD"_L1},
    {"j1939fd_11bitmultipg"_L1, aSwitch, "multi-PG frames with 11-bit identifiers"_L1},
};

constexpr int lastDiagnosticMessage = 57;

std::vector<J1939Keys::Row> make()
{
    std::vector<J1939Keys::Row> all;
    for (const Fixed &row : rows)
        all.push_back({row.key, row.highest, row.meaning});
    for (int dm = 1; dm <= lastDiagnosticMessage; ++dm)
        all.push_back({u"diagsupport_dm%1"_s.arg(dm), aSwitch, u"message DM%1; needs diagsupport"_s.arg(dm)});
    for (int dm = 1; dm <= lastDiagnosticMessage; ++dm)
        all.push_back({u"diagsupport_dmtool%1"_s.arg(dm), aSwitch, u"DM%1 as a tool; needs diagtoolsupport"_s.arg(dm)});
    return all;
}

} // namespace

std::span<const J1939Keys::Row> J1939Keys::all()
{
    static const std::vector<Row> table = make();
    return table;
}

const J1939Keys::Row *J1939Keys::find(const QString &key)
{
    const std::span<const Row> table = all();
    const auto found = std::ranges::find(table, key, &Row::key);
    return found == table.end() ? nullptr : &*found;
}
