#include "ncx_cli/mcp/accessthrottle.h"
#include "ncx_cli/mcp/settingvalue.h"
#include "support/printing.h"
#include "support/processrunner.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>

#include <array>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

/// A row as the file of expected rows has it.
QString lineOf(const Setting &setting)
{
    constexpr std::array types{"bool"_L1, "uint"_L1, "enum"_L1, "string"_L1};
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
                                              types.at(static_cast<std::size_t>(setting.type)), flags.join(u' '),
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

Setting form(Setting::Type type)
{
    Setting setting;
    setting.key = u"k"_s;
    setting.type = type;
    return setting;
}

struct Row
{
    QByteArray given; ///< JSON
    QString stored;   ///< or the refusal
};

void expectStored(const Setting &setting, const QList<Row> &rows)
{
    for (const Row &row : rows) {
        const QJsonValue value = QJsonDocument::fromJson('[' + row.given + ']').array().at(0);
        EXPECT_FALSE(value.isUndefined()) << row.given.constData();
        const SettingValue::Text text = SettingValue::fromJson(setting, value);
        EXPECT_EQ(text.text + text.refusal, row.stored) << row.given.constData();
    }
}

TEST(SettingValue, OfBooleansIsOneOfFourWords)
{
    const QString refusal = u"Setting k expects true or false."_s;
    expectStored(form(Setting::Type::Bool), {{"true", u"1"_s},
                                             {"false", u"0"_s},
                                             {"1", u"1"_s},
                                             {"0.0", u"0"_s},
                                             {R"(" TRUE\n")", u"1"_s},
                                             {R"("False")", u"0"_s},
                                             {"2", refusal},
                                             {R"("")", refusal},
                                             {R"("on")", refusal},
                                             {"[]", refusal}});
    Setting falseAsEmpty = form(Setting::Type::Bool);
    falseAsEmpty.falseAsEmpty = true;
    expectStored(falseAsEmpty, {{"true", u"1"_s}, {"false", {}}, {"\"0\"", {}}});
}

TEST(SettingValue, OfNumbersKeepsItsNotationUnlessItIsDecimal)
{
    const QString refusal = u"Setting k expects an unsigned integer (decimal or 0x hex)."_s;
    Setting number = form(Setting::Type::UInt);
    expectStored(number, {{"0", u"0"_s},
                          {"4294967295", u"4294967295"_s},
                          {"4294967296", refusal},
                          {"1e3", u"1000"_s},
                          {"7.5", refusal},
                          {"-1", refusal},
                          {"-0.0", u"0"_s},
                          {"1e300", refusal},
                          {"18446744073709551616", refusal},
                          {"true", refusal},
                          {R"("0x7E0")", u"0x7E0"_s},
                          {R"(" 0X7e0\t")", u"0X7e0"_s},
                          {R"("4294967296")", refusal},
                          {R"("0x100000000")", refusal},
                          {R"("0x00000000ffffffff")", u"0x00000000ffffffff"_s},
                          {R"("010")", refusal},
                          {R"("00")", refusal},
                          {R"("+1")", refusal},
                          {R"("0x")", refusal},
                          {R"("1\n2")", refusal},
                          {R"("\u0661")", refusal},
                          {R"("")", refusal}});
    number.decimal = true;
    expectStored(number, {{R"("0x10")", u"16"_s}, {R"(" 7 ")", u"7"_s}, {"16", u"16"_s}});
    number.min = 1;
    number.max = 32;
    const QString outside = u"Setting k expects a value from 1 to 32."_s;
    expectStored(number, {{"0", outside}, {R"("0x21")", outside}, {"1", u"1"_s}, {"32", u"32"_s}, {"-1", refusal}});
}

TEST(SettingValue, OfItemsIsTheirPosition)
{
    Setting items = form(Setting::Type::Enum);
    items.enumValues = QStringList{u"One"_s, u"2"_s, u"one"_s};
    const QString refusal = u"Setting k expects one of: One, 2, one."_s;
    expectStored(items, {{R"(" ONE ")", u"2"_s},
                         {R"("2")", u"1"_s},
                         {R"("0")", u"0"_s},
                         {"2", u"2"_s},
                         {"1.0", u"1"_s},
                         {"0.5", refusal},
                         {"3", refusal},
                         {R"("-1")", refusal},
                         {R"("0x1")", refusal},
                         {R"("")", refusal},
                         {"true", refusal}});
}

TEST(SettingValue, OfTextsIsTheText)
{
    Setting text = form(Setting::Type::String);
    expectStored(text, {{R"(" a, 'b' ")", u" a, 'b' "_s}, {R"("")", {}}, {"5", u"Setting k expects a string."_s}});
    text.scope = Setting::Scope::PerLine;
    expectStored(text, {{R"(" a ")", u" a "_s}, {R"("a,b")", u"Setting k must not contain a comma."_s}});
}

TEST(SettingValue, IsShownAsItsType)
{
    Setting setting = form(Setting::Type::Bool);
    for (const QString &no : {u""_s, u"0"_s, u"2"_s, u"true"_s, u"01"_s})
        EXPECT_EQ(SettingValue::toJson(setting, no), QJsonValue(false)) << qPrintable(no);
    EXPECT_EQ(SettingValue::toJson(setting, u" 1 "_s), QJsonValue(true));
    setting.emptyIsTrue = true;
    for (const QString &yes : {u""_s, u"1"_s, u"-2"_s, u"x"_s, u" "_s})
        EXPECT_EQ(SettingValue::toJson(setting, yes), QJsonValue(true)) << qPrintable(yes);
    EXPECT_EQ(SettingValue::toJson(setting, u" 0 "_s), QJsonValue(false));

    setting = form(Setting::Type::Enum);
    setting.enumValues = QStringList{u"A"_s, u"B"_s};
    EXPECT_EQ(SettingValue::toJson(setting, u" 1"_s), QJsonValue(u"B"_s));
    EXPECT_EQ(SettingValue::toJson(setting, u"2"_s), QJsonValue(u"2"_s));
    EXPECT_EQ(SettingValue::toJson(setting, u" x "_s), QJsonValue(u"x"_s));

    EXPECT_EQ(SettingValue::toJson(form(Setting::Type::UInt), u" 0x7e0 "_s), QJsonValue(u"0x7e0"_s));
    setting = form(Setting::Type::String);
    EXPECT_EQ(SettingValue::toJson(setting, u" a "_s), QJsonValue(u" a "_s));
    setting.scope = Setting::Scope::PerLine;
    EXPECT_EQ(SettingValue::toJson(setting, u" a "_s), QJsonValue(u"a"_s));
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
