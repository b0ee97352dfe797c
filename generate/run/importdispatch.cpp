#include "generate/run/importdispatch.h"

#include "check/line/specialpgns.h"
#include "generate/base/runcontext.h"
#include "import/csvimporter.h"
#include "import/dbc/dbcimporter.h"
#include "import/doctxtimporter.h"
#include "import/edsimporter.h"
#include "import/importreport.h"
#include "import/projectmerge.h"
#include "nodedict/codes.h"
#include "store/objectdatabase.h"

#include <QDebug>
#include <QFileInfo>

#include <array>

using namespace Qt::StringLiterals;

namespace {

using Store = std::shared_ptr<ObjectDataBase>;

/// Objects of the communication, manufacturer and device profile areas (CiA 301); the rest of a dictionary is the
/// stack's own.
constexpr quint32 firstProfileIndex = CANopen::Index::all.first;
constexpr quint32 lastProfileIndex = 0xBFFF;
constexpr quint32 lastObject = CANopen::Index::all.last;

/// PGNs have 18 bits (SAE J1939-21); of another project those of the data pages 0 and 1 are taken.
constexpr quint32 lastPGN = 0x3FFFF;
constexpr quint32 lastMergedPGN = 0x1FFFF;
constexpr quint32 lastCANID = 0x1FFFFFFF;

/// Runs an importer on a line for the objects of a range.
template <typename Importer, quint32 first, quint32 last>
bool importWith(const Store &store, const QString &path, std::optional<quint8> line, ImportReport &report)
{
    Importer importer;
    importer.setIndexRange(first, last);
    importer.setLine(line.value_or(0));
    importer.setDatabase(store);
    if (!importer.setFile(path))
        return false;
    importer.startImport();
    importer.waitForEnd();
    report = importer.report();
    return true;
}

/// Takes over, for a line or each line of the project, what its protocols know from the line of the same number.
bool mergeProject(const Store &store, const QString &path, std::optional<quint8> only, ImportReport &report)
{
    ObjectDataBase source;
    if (!source.openDataBase(path, true))
        return false;
    const QList<quint8> sourceLines = source.getNodeList();
    const ObjectDataBase::Transaction transaction(*store);
    for (const quint8 line : only ? QList<quint8>{*only} : store->getNodeList()) {
        const LineProtocols protocols = RunContext::protocolsOf(*store, line);
        const quint8 from = only && sourceLines.size() == 1 ? sourceLines.first() : line;
        if (protocols.canOpen)
            ProjectMerge::copyObjects(*store, line, source, from, firstProfileIndex, lastObject, report);
        if (protocols.j1939)
            ProjectMerge::copyPGNs(*store, line, source, from, 0, lastMergedPGN, report);
        if (protocols.rawCan)
            ProjectMerge::copyCANIDs(*store, line, source, from, 0, lastCANID, report);
    }
    qDebug().noquote() << report.text();
    return !source.isDamaged();
}

struct ImportForm
{
    QLatin1StringView suffix;   ///< in lower case
    QLatin1StringView nameHint; ///< what the base name must contain; empty for anything
    LineProtocols protocol;     ///< of what the file brings
    bool (*import)(const Store &, const QString &path, std::optional<quint8> line, ImportReport &);
};

constexpr LineProtocols canOpen{.canOpen = true};
constexpr LineProtocols j1939{.j1939 = true};

constexpr std::array forms{
    ImportForm{"csv"_L1, ""_L1, canOpen, importWith<CsvImporter, firstProfileIndex, lastProfileIndex>},
    ImportForm{"eds"_L1, ""_L1, canOpen, importWith<EDSImporter, firstProfileIndex, lastProfileIndex>},
    ImportForm{"dcf"_L1, ""_L1, canOpen, importWith<EDSImporter, firstProfileIndex, lastProfileIndex>},
    ImportForm{"txt"_L1, "doc"_L1, j1939, importWith<DOCTXTImporter, 0, lastPGN>},
    ImportForm{"ncxp"_L1, ""_L1, {}, mergeProject},
};

/// Null for a file that no importer takes.
const ImportForm *formOf(const QString &path)
{
    const QFileInfo file(path);
    const QString suffix = file.suffix().toLower();
    for (const ImportForm &form : forms) {
        if (suffix == form.suffix && file.baseName().contains(form.nameHint))
            return &form;
    }
    return nullptr;
}

} // namespace

bool ImportDispatch::importFile(const Store &store, const QString &path)
{
    ImportReport report;
    return importFile(store, path, {}, report);
}

bool ImportDispatch::importFile(const Store &store, const QString &path, std::optional<quint8> line,
                                ImportReport &report)
{
    const ImportForm *form = formOf(path);
    return form && form->import(store, path, line, report);
}

bool ImportDispatch::isDbc(const QString &path)
{
    return QFileInfo(path).suffix().compare("dbc"_L1, Qt::CaseInsensitive) == 0;
}

QString ImportDispatch::importDbc(const Store &store, const QString &path, quint8 line, const QString &node,
                                  ImportReport &report)
{
    DbcImporter importer;
    importer.setLine(line);
    importer.setDatabase(store);
    importer.setNode(node);
    importer.setHandledPgns(specialPGNs(*store, line));
    if (!importer.setFile(path))
        return u"it cannot be read"_s;
    importer.startImport();
    importer.waitForEnd();
    report = importer.report();
    return importer.lastErrorText();
}

std::optional<LineProtocols> ImportDispatch::protocolFor(const QString &path)
{
    const ImportForm *form = formOf(path);
    return form ? std::optional(form->protocol) : std::nullopt;
}
