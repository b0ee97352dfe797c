#include "import/dbc/dbcimporter.h"
#include "import/importproject.h"
#include "store/objectdatabase.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QHash>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

struct RealFile
{
    QString name;
    int lineType;
    QString node;
    qsizetype messages; ///< that come in
    qsizetype items;
    qsizetype dropped;
};

/// Signals in Intel byte order of a file, "first bit size sign" by frame and name, read by a pattern.
QHash<std::pair<QString, QString>, QString> intelSignals(const QString &path)
{
    static const QRegularExpression row(uR"(^(?:BO_ (\d+)|\s*SG_ (\w+) [^:]*: (\d+\|\d+)@1([+-])))"_s,
                                        QRegularExpression::MultilineOption);
    QHash<std::pair<QString, QString>, QString> result;
    QString frame;
    for (const QRegularExpressionMatch &match : row.globalMatch(QString::fromLatin1(TestSupport::readFile(path)))) {
        if (match.hasCaptured(1))
            frame = match.captured(1);
        else
            result.insert({frame, match.captured(2)}, match.captured(3));
    }
    return result;
}

} // namespace

/// Where the signals of a real file are is read by a pattern as well.
TEST(DbcImport, RealFiles)
{
    const QString corpus = TestSupport::corpusFolder();
    if (corpus.isEmpty())
        GTEST_SKIP() << "there is no folder of makers' files";
    const RealFile files[] = {
        {u"canmatrix_j1939.dbc"_s, 2, {}, 357, 2376, 14},
        {u"css_sae-j1939-demo.dbc"_s, 2, {}, 2, 2, 0},
        {u"cantools_vehicle.dbc"_s, 4, {}, 217, 431, 31},
        {u"cantools_multiplex-2.dbc"_s, 4, {}, 4, 14, 5},
        {u"odrive_cansimple.dbc"_s, 4, u"ODrive_Axis0"_s, 48, 41, 0},
        {u"odrive_cansimple.dbc"_s, 4, u"Master"_s, 216, 328, 0},
    };
    for (const RealFile &file : files) {
        SCOPED_TRACE(file.name.toStdString());
        const auto store = ImportTest::emptyProject();
        ASSERT_TRUE(store->setGeneralSetting(u"line0type"_s, QString::number(file.lineType)));
        DbcImporter importer;
        importer.setNode(file.node);
        ImportTest::run(importer, store, QDir(corpus).filePath(file.name));
        EXPECT_EQ(importer.lastErrorText(), QString());
        EXPECT_EQ(importer.report().messages, file.messages);
        EXPECT_EQ(importer.report().signalCount, file.items);
        EXPECT_EQ(importer.report().droppedCount, file.dropped);
        const auto expected = intelSignals(QDir(corpus).filePath(file.name));
        for (const StoreRecords::DataElement &item : store->getAllDataElements(0))
            EXPECT_EQ(u"%1|%2"_s.arg(item.bitposition).arg(item.bitsize),
                      expected.value({QString::number(item.pgnnumber), item.name}))
                << qPrintable(item.name);
    }
}
