#include "store/objectdatabase.h"
#include "store/settings.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QString said(bool on, quint32 number)
{
    return u"%1 %2"_s.arg(on ? u"on"_s : u"off"_s).arg(number);
}

// The rows stand in tests/data/settings/reading.txt, whose head tells their columns.
TEST(Settings, AreUnderstoodInOneWay)
{
    ObjectDataBase store;
    ASSERT_TRUE(store.createNewDataBase());
    const std::pair<quint8, QString> lines[] = {{0, u"1"_s}, {1, u"2"_s}, {2, u"6"_s}, {40, u"1"_s}};
    for (const auto &[line, type] : lines)
        ASSERT_TRUE(store.addNode(line, {}) && store.setGeneralSetting(u"line%1type"_s.arg(line), type));
    const QByteArray rows = TestSupport::readFile(QStringLiteral(NCX_SOURCE_DIR "/tests/data/settings/reading.txt"));
    int count = 0;
    for (const QString &row : QString::fromUtf8(rows).split(u'\n', Qt::SkipEmptyParts)) {
        if (row.startsWith(u'#'))
            continue;
        SCOPED_TRACE(qPrintable(row));
        ++count;
        const bool isJ1939 = row.startsWith("j1939 "_L1);
        const QString key = row.section(u" ="_s, 0, 0).section(u' ', -1);
        const QString value = row.section(u" ="_s, 1).section(u" |"_s, 0, 0).mid(1);
        ASSERT_TRUE(isJ1939 ? store.setJ1939Setting(key, value) : store.setGeneralSetting(key, value));
        const Settings settings(store, isJ1939 ? Settings::Table::J1939 : Settings::Table::General);
        QStringList answers{said(settings.onAnyLine(key), settings.number(key))};
        for (const quint8 line : {quint8{0}, quint8{2}, quint8{40}})
            answers.append(said(settings.isOn(key, line), settings.number(key, line)));
        EXPECT_EQ(answers.join(" | "_L1).toStdString(), row.section(u" | "_s, 1).toStdString());
    }
    EXPECT_GT(count, 20);
}

} // namespace
