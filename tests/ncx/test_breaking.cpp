#include "ncx/compare/breaking.h"

#include <gtest/gtest.h>

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

/// A row of the table in docs/ncx.md.
QString rowOf(const BreakingRule &rule)
{
    const auto code = [](QLatin1StringView text, const QString &none) {
        return text.isEmpty() ? none : u"`%1`"_s.arg(text);
    };
    return u"| %1 | %2 | %3 |"_s.arg(rule.of.isEmpty() ? u"any part"_s : QString(rule.of),
                                     code(rule.property, u"the part itself"_s), rule.text);
}

/// The document is written from the rules.
TEST(BreakingRules, AreTheTableOfTheDocument)
{
    QFile file(QStringLiteral(NCX_SOURCE_DIR "/docs/ncx.md"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    QStringList rows;
    for (const BreakingRule &rule : BreakingRule::all())
        rows.append(rowOf(rule));
    const qsizetype first = lines.indexOf(u"| part | what | breaks where |"_s) + 2;
    EXPECT_EQ(lines.mid(first, rows.size() + 1).join(u'\n').toStdString(),
              (rows + QStringList{u""_s}).join(u'\n').toStdString());
}

} // namespace
