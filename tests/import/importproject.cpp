#include "import/importproject.h"

#include "import/edsimporter.h"
#include "store/objectdatabase.h"
#include "support/testhome.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

QString quoted(QString text)
{
    return u'\'' + text.replace(u'\n', "\\n"_L1) + u'\'';
}

/// " name='value'" for each pair that has a value.
QString said(std::initializer_list<std::pair<QLatin1StringView, QString>> pairs)
{
    QString text;
    for (const auto &[name, value] : pairs) {
        if (!value.isEmpty())
            text += u" %1=%2"_s.arg(name, quoted(value));
    }
    return text;
}

QString unlessZero(uint number)
{
    return number == 0 ? QString() : QString::number(number);
}

QString dumpSub(quint16 index, quint8 subindex, const ObjectDataBase::SUBINDEX_DATA_T &sub)
{
    const QString limits =
        sub.lowlimit.isEmpty() && sub.uplimit.isEmpty() ? QString() : u"%1..%2"_s.arg(sub.lowlimit, sub.uplimit);
    const QString usualAccess = StoreRecords::SubIndexData().allowedaccesstypes;
    return u"%1:%2 %3 type=%4 %5"_s.arg(index, 4, 16, QLatin1Char('0'))
               .arg(subindex, 2, 16, QLatin1Char('0'))
               .arg(quoted(sub.name))
               .arg(sub.datatype)
               .arg(sub.accesstype) +
           said({{"default"_L1, sub.defaultvalue},
                 {"pdo"_L1, unlessZero(sub.pdomapping.toUInt())},
                 {sub.limitineds ? "limits"_L1 : "range"_L1, limits},
                 {"value"_L1, sub.currentvalue},
                 {"dcf"_L1, unlessZero(sub.dcfcomponent)},
                 {"denotation"_L1, sub.denotation},
                 {"refuseread"_L1, unlessZero(sub.refuseread)},
                 {"refusewrite"_L1, unlessZero(sub.refusewrite)},
                 {"implementation"_L1, unlessZero(sub.implementation)},
                 {"variable"_L1, sub.varname},
                 {"size"_L1, unlessZero(sub.size)},
                 {"stored"_L1, unlessZero(sub.nvstorage)},
                 {"nodefault"_L1, unlessZero(!sub.defaultineds)},
                 {"ineds"_L1, sub.writedefaulttoeds == 1 ? QString() : QString::number(sub.writedefaulttoeds)},
                 {"allowed"_L1,
                  sub.allowedaccesstypes == usualAccess ? QString() : u'<' + sub.allowedaccesstypes + u'>'},
                 {"description"_L1, sub.description}}) +
           u'\n';
}

} // namespace

std::shared_ptr<ObjectDataBase> ImportTest::emptyProject()
{
    auto store = std::make_shared<ObjectDataBase>();
    return store->createNewDataBase() ? store : nullptr;
}

QString ImportTest::run(BaseDataImporter &importer, const std::shared_ptr<ObjectDataBase> &store, const QString &path,
                        quint8 line)
{
    importer.setLine(line);
    importer.setDatabase(store);
    if (!importer.setFile(path) || !importer.startImport())
        return {};
    importer.waitForEnd();
    return importer.report().text() + u'\n';
}

bool ImportTest::importEds(const std::shared_ptr<ObjectDataBase> &store, const QString &path, quint8 line)
{
    EDSImporter importer;
    return !run(importer, store, path, line).isNull();
}

bool ImportTest::importText(const std::shared_ptr<ObjectDataBase> &store, const QByteArray &content, quint8 line)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"device.eds"_s);
    return TestSupport::writeFile(path, content) && importEds(store, path, line);
}

QString ImportTest::dump(ObjectDataBase &store, quint8 line)
{
    QString text;
    for (const quint16 index : store.getIndexList(line, 0, 0xffff)) {
        const auto object = store.getIndex(line, index).value();
        text += u"%1 %2 code=%3 type=%4 category=%5"_s.arg(index, 4, 16, QLatin1Char('0'))
                    .arg(quoted(object.name))
                    .arg(object.objecttype)
                    .arg(object.datatype)
                    .arg(object.category) +
                said({{"description"_L1, object.description}}) + u'\n';
        for (const quint8 subindex : store.getSubIndexList(line, index)) {
            text += dumpSub(index, subindex, store.getSubIndex(line, index, subindex).value());
        }
    }
    store.setCurrentLine(line);
    for (const char *key : {"FileVersion", "FileRevision", "CreatedBy", "ModifiedBy", "Comment", "VendorName",
                            "ProductName", "OrderCode", "LSS_Supported", "BaudRate_125", "BaudRate_1000", "Dummy0001",
                            "Dummy004", "Dummy0004", "Dummy0007", "NrOfRXPDO", "NrOfTXPDO"}) {
        const QString value = store.getDescriptionSetting(QString::fromLatin1(key));
        if (!value.isEmpty())
            text += u"%1=%2\n"_s.arg(QString::fromLatin1(key), quoted(value));
    }
    return text;
}
