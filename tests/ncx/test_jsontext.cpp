#include "ncx/device/jsontext.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

TEST(JsonText, IsWhatTheFrameworkWrites)
{
    const QStringList texts{u""_s,       u"Speed <b>"_s, u"\"\\/"_s, u"\u0001\t\n\u007f"_s,
                            u"größer"_s, u"😀"_s,         u"中文"_s,  QString(QChar(0xd83d))};
    for (const auto format : {QJsonDocument::Compact, QJsonDocument::Indented}) {
        JsonText json(format);
        json.beginObject();
        json.key("empty"_L1);
        json.beginArray();
        json.endArray();
        json.key("list"_L1);
        json.beginArray();
        for (const QString &text : texts) {
            json.beginObject();
            json.add("added"_L1, text);
            json.key("text"_L1);
            json.value(text);
            json.endObject();
        }
        json.value(qint64{-7});
        json.endArray();
        json.endObject();

        QJsonArray list;
        for (const QString &text : texts) {
            QJsonObject part{{u"text"_s, text}};
            if (!text.isEmpty())
                part.insert(u"added"_s, text);
            list.append(part);
        }
        list.append(-7);
        const QJsonDocument expected(QJsonObject{{u"empty"_s, QJsonArray()}, {u"list"_s, list}});
        EXPECT_EQ(json.text(), expected.toJson(format).trimmed());
    }
}

} // namespace
