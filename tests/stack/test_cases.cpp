#include "check/rulecase.h"
#include "stack/generatedsources.h"
#include "support/datacases.h"
#include "support/processrunner.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace TestSupport;

// The cases stand in tests/data/generate/, and the README there tells their form.

namespace {

constexpr auto indent = "    "_L1;

/// The project of a case, generated in one form of the sources.
class CaseRun
{
public:
    CaseRun(const QStringList &commands, bool classic)
        : project_(QStringList{u"line 0 = 1"_s} + commands)
        , sources_(classic)
    {
        EXPECT_TRUE(project_.store()->saveDatabase(project_.folder() + u"/device.ncxp"_s));
        EXPECT_TRUE(sources_.openFolder(project_.folder()));
        sources_.generate();
    }

    QStringList select(const QString &selector)
    {
        if (selector == "files"_L1)
            return QDir(sources_.folder()).entryList(QDir::Files).filter(QRegularExpression(u"^(?!device.ncxp|__)"_s));
        if (selector == "compiled"_L1)
            return compiled();
        const QString expression = selector.section(u" ~ "_s, 1);
        if (selector.startsWith("messages ~ "_L1))
            return linesWith(sources_.messages(), expression);
        const QString name = selector.section(u' ', 0, 0).section(u':', 0, 0);
        const QStringList lines = QString::fromUtf8(sources_.text(name)).split(u'\n');
        if (!sources_.has(name))
            return {u"no such file"_s};
        if (name == "gen_define.h"_L1)
            compileHeader(sources_.folder() + u'/' + name);
        if (!expression.isEmpty())
            return linesWith(lines, expression);
        return selector == name ? lines.first(lines.size() - 1) : paragraph(lines, selector.section(u": "_s, 1));
    }

private:
    static QStringList linesWith(const QStringList &lines, const QString &expression)
    {
        const QRegularExpression pattern(expression);
        EXPECT_TRUE(pattern.isValid()) << qPrintable(expression);
        return lines.filter(pattern);
    }

    static QStringList paragraph(const QStringList &lines, const QString &text)
    {
        qsizetype first = 0;
        while (first < lines.size() && !lines.at(first).contains(text))
            ++first;
        qsizetype last = first;
        while (last < lines.size() && !lines.at(last).isEmpty())
            ++last;
        return lines.mid(first, last - first);
    }

    static void compileHeader(const QString &path)
    {
        const QStringList arguments{u"cc"_s, u"-std=c99"_s, u"-Wall"_s, u"-Wextra"_s,      u"-Werror"_s,
                                    u"-x"_s, u"c"_s,        path,       u"-fsyntax-only"_s};
        EXPECT_EQ(ProcessRunner(u"/usr/bin/env"_s).arguments(arguments).run().errors, QString());
    }

    /// What the compiler and the linker say, and how a start-up of the device ends where it has a dictionary.
    QStringList compiled()
    {
        QString text = sources_.compile();
        if (sources_.hasDictionary()) {
            text += sources_.link();
            text += sources_.walk({u"start"_s}).section(u'\n', -2);
        }
        return text.split(u'\n', Qt::SkipEmptyParts);
    }

    CaseProject project_;
    GeneratedSources sources_;
};

/// A case with the commands of those that it goes on from.
struct GeneratorCase : TextCase
{
    QStringList commands = {};
};

QString commandOf(const QString &line)
{
    return QString(line)
        .replace("\\n"_L1, "\n"_L1)
        .replace("\\r"_L1, "\r"_L1)
        .replace("${EXAMPLES}"_L1, QLatin1StringView(NCX_SOURCE_DIR "/examples"));
}

bool isCommand(const QString &line)
{
    static const QRegularExpression others(u"^($|[=+>] |#|    )"_s);
    return !others.match(line).hasMatch();
}

QList<GeneratorCase> generatorCases()
{
    QList<GeneratorCase> cases;
    QStringList commands;
    for (const TextCase &textCase : textCases(u"generate"_s, {u"= "_s, u"+ "_s})) {
        if (textCase.lines.first().startsWith(u'='))
            commands.clear();
        for (const QString &line : textCase.lines) {
            if (isCommand(line))
                commands.append(commandOf(line));
        }
        cases.append({textCase, commands});
    }
    return cases;
}

class GeneratorCases : public testing::TestWithParam<GeneratorCase>
{
protected:
    GeneratorCases() { qputenv("SOURCE_DATE_EPOCH", "1794733920"); }
    ~GeneratorCases() override { qunsetenv("SOURCE_DATE_EPOCH"); }

    /// What this build makes of a selector.
    QStringList selected(const QString &selector)
    {
        const bool isClassic = selector.startsWith("classic "_L1);
        std::unique_ptr<CaseRun> &run = isClassic ? classic_ : v4_;
        if (!run)
            run = std::make_unique<CaseRun>(GetParam().commands, isClassic);
        QStringList lines = run->select(isClassic ? selector.section(u' ', 1) : selector);
        lines.replaceInStrings(u"\n"_s, u"\\n"_s).replaceInStrings(u"\r"_s, u"\\r"_s);
        for (QString &line : lines)
            line.prepend(indent);
        return lines;
    }

private:
    std::unique_ptr<CaseRun> v4_;
    std::unique_ptr<CaseRun> classic_;
};

TEST_P(GeneratorCases, GenerateAsExpected)
{
    QStringList made;
    for (const QString &line : GetParam().lines) {
        if (line.startsWith(indent))
            continue;
        made.append(line);
        if (line.startsWith("> "_L1))
            made += selected(line.sliced(2));
    }
    expectCase(GetParam(), made);
}

INSTANTIATE_TEST_SUITE_P(Generate, GeneratorCases, testing::ValuesIn(generatorCases()), caseName);

} // namespace
