#include "generate/importdispatch.h"

#include "import/edsimporter.h"
#include "store/objectdatabase.h"

#include <QFileInfo>

#include <array>

using namespace Qt::StringLiterals;

namespace {

using Store = std::shared_ptr<ObjectDataBase>;

/// Objects of the communication, manufacturer and device profile areas (CiA 301); the rest of a dictionary is the
/// stack's own.
constexpr quint32 firstProfileIndex = 0x1000;
constexpr quint32 lastProfileIndex = 0xBFFF;

/// Runs an importer on line 0 for the objects of a range.
template <typename Importer, quint32 first, quint32 last>
bool importWith(const Store &store, const QString &path)
{
    Importer importer;
    importer.setIndexRange(first, last);
    importer.setLine(0);
    importer.setDatabase(store);
    if (!importer.setFile(path))
        return false;
    importer.startImport();
    importer.waitForEnd();
    return true;
}

struct ImportForm
{
    QLatin1StringView suffix;   ///< in lower case
    QLatin1StringView nameHint; ///< what the base name must contain; empty for anything
    bool (*import)(const Store &, const QString &path);
};

constexpr std::array forms{
    ImportForm{"eds"_L1, ""_L1, importWith<EDSImporter, firstProfileIndex, lastProfileIndex>},
    ImportForm{"dcf"_L1, ""_L1, importWith<EDSImporter, firstProfileIndex, lastProfileIndex>},
};

} // namespace

bool ImportDispatch::importFile(const Store &store, const QString &path)
{
    const QFileInfo file(path);
    const QString suffix = file.suffix().toLower();
    for (const ImportForm &form : forms) {
        if (suffix == form.suffix && file.baseName().contains(form.nameHint))
            return form.import(store, path);
    }
    return false;
}
