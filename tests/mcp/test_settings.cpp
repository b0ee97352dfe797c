#include "mcp/session/accessthrottle.h"
#include "mcp/tools/settingvalue.h"
#include "support/printing.h"
#include "support/processrunner.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

/// In the order of Setting::Type.
const QStringList types{u"bool"_s, u"uint"_s, u"enum"_s, u"string"_s};

/// A row as the file of expected rows has it.
QString lineOf(const Setting &setting)
{
    QStringList flags;
    if (setting.decimal)
        flags.append(u"dec"_s);
    if (setting.falseAsEmpty)
        flags.append(u"falseAsEmpty"_s);
    if (setting.readOnly)
        flags.append(u"readOnly"_s);
    if (setting.emptyIsTrue)
        flags.append(u"emptyIsTrue"_s);
    if (setting.min && setting.max)
        flags.append(u"%1..%2"_s.arg(*setting.min).arg(*setting.max));
    return u"%1 | %2 %3 | %4 | %5 | %6"_s.arg(setting.key, setting.isPerLine() ? u"line"_s : u"global"_s,
                                              types.at(static_cast<qsizetype>(setting.type)), flags.join(u' '),
                                              setting.requiredKey, setting.label);
}

TEST(SettingsCatalogue, HoldsTheRowsInTheirOrder)
{
    const QString path = QStringLiteral(NCX_SOURCE_DIR "/tests/data/settings/catalogue.txt");
    QStringList expected = QString::fromUtf8(readFile(path)).split(u'\n', Qt::SkipEmptyParts);
    ASSERT_FALSE(expected.isEmpty());
    expected.removeFirst();
    QStringList actual;
    QString section;
    for (const Setting &setting : SettingsCatalogue::settings()) {
        const QString heading = u"[%1 / %2]"_s.arg(setting.group, setting.section);
        if (heading != section)
            actual.append(heading);
        section = heading;
        actual.append(lineOf(setting));
        EXPECT_EQ(SettingsCatalogue::find(setting.key), &setting) << "a key that is there twice";
        EXPECT_EQ(setting.description.isEmpty(), setting.section == "USDO"_L1) << qPrintable(setting.key);
        if (!setting.requiredKey.isEmpty()) {
            const Setting *const required = SettingsCatalogue::find(setting.requiredKey);
            EXPECT_TRUE(required && required->type == Setting::Type::Bool) << qPrintable(setting.key);
        }
    }
    for (qsizetype i = 0; i < std::max(expected.size(), actual.size()); ++i)
        ASSERT_EQ(actual.value(i), expected.value(i)) << "row " << i;
    EXPECT_EQ(SettingsCatalogue::find(u"uds_ext_addressing"_s)->enumValues,
              (QStringList{u"Normal Addressing"_s, u"Normal Fixed Addressing"_s, u"Extended Addressing"_s}));
    EXPECT_EQ(SettingsCatalogue::find(u"line0type"_s), nullptr);
}

/// The setting that a heading of the values tells: "[uint dec 1..32]", "[enum One,2,one]", "[string perLine]".
Setting settingOf(const QString &heading)
{
    const QStringList words = heading.sliced(1).chopped(1).split(u' ');
    Setting setting;
    setting.key = u"k"_s;
    setting.type = static_cast<Setting::Type>(types.indexOf(words.first()));
    setting.decimal = words.contains("dec"_L1);
    setting.falseAsEmpty = words.contains("falseAsEmpty"_L1);
    setting.emptyIsTrue = words.contains("emptyIsTrue"_L1);
    if (words.contains("perLine"_L1))
        setting.scope = Setting::Scope::PerLine;
    if (words.first() == "enum"_L1)
        setting.enumValues = words.last().split(u',');
    if (const QStringList range = words.last().split(".."_L1); range.size() == 2) {
        setting.min = range.first().toUInt();
        setting.max = range.last().toUInt();
    }
    return setting;
}

// Rows "JSON > stored text", or behind "!" the refusal, and "JSON < stored text" of what is shown of a text.
TEST(SettingValue, IsStoredAndShownAsItsType)
{
    const QByteArray rows = readFile(QStringLiteral(NCX_SOURCE_DIR "/tests/data/settings/values.txt"));
    EXPECT_FALSE(rows.isEmpty());
    Setting setting;
    for (const QString &row : QString::fromUtf8(rows).split(u'\n', Qt::SkipEmptyParts)) {
        static const QRegularExpression parts(u"^(.*?) ([<>!]) ?(.*)$"_s);
        const QRegularExpressionMatch match = parts.match(row);
        const QJsonArray json = QJsonDocument::fromJson('[' + match.captured(1).toUtf8() + ']').array();
        if (row.startsWith(u'[') && !match.hasMatch()) {
            setting = settingOf(row);
        } else if (match.captured(2) == "<"_L1) {
            EXPECT_EQ(SettingValue::toJson(setting, QString(match.captured(3)).replace(u'_', u' ')), json.at(0))
                << qPrintable(row);
        } else if (!row.startsWith(u'#')) {
            ASSERT_EQ(json.size(), 1) << qPrintable(row);
            const SettingValue::Text text = SettingValue::fromJson(setting, json.at(0));
            EXPECT_EQ(match.captured(2) == ">"_L1 ? text.text : text.refusal, match.captured(3)) << qPrintable(row);
            EXPECT_EQ(match.captured(2) == "!"_L1, !text.refusal.isEmpty()) << qPrintable(row);
        }
    }
}

TEST(AccessThrottle, MovesTheEndOfTheWaitWithEachEarlyCall)
{
    AccessThrottle throttle;
    constexpr qint64 start = -5;
    EXPECT_TRUE(throttle.admits(start));
    EXPECT_FALSE(throttle.admits(start));
    EXPECT_FALSE(throttle.admits(start + 60000));
    EXPECT_FALSE(throttle.admits(start + 79999));
    EXPECT_TRUE(throttle.admits(start + 90000));
    // The penalty is gone, and the wait begins anew.
    EXPECT_FALSE(throttle.admits(start + 90000 + 59999));
    EXPECT_TRUE(throttle.admits(start + 90000 + 70000));
}

} // namespace
