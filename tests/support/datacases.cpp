#include "support/datacases.h"

#include "support/testhome.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

const QString sourceRoot = QStringLiteral(NCX_SOURCE_DIR);

/// The templates that the examples share, a build with a project of its own, and files to be imported.
constexpr std::array otherFolders{"stack"_L1, "cmake_build"_L1, "from_description"_L1, "can_database"_L1};

QStringList linesOf(const QString &path)
{
    return QString::fromUtf8(readFile(path)).split(u'\n');
}

} // namespace

std::string TestSupport::nameOf(const QString &text)
{
    static const QRegularExpression others(u"[^A-Za-z0-9]+"_s);
    constexpr qsizetype longest = 150;
    return QString(text).replace(others, u" "_s).trimmed().left(longest).replace(u' ', u'_').toStdString();
}

std::string TextCase::name() const
{
    return nameOf(QFileInfo(path).baseName() + u' ' + lines.first());
}

QList<TextCase> TestSupport::textCases(const QString &folder, const QStringList &marks)
{
    QList<TextCase> cases;
    for (const auto &[path] : fileCases(folder, {u"*.txt"_s})) {
        const QStringList lines = linesOf(path);
        bool hasTitle = false;
        for (const QString &line : lines) {
            if (std::ranges::any_of(marks, [&](const QString &mark) { return line.startsWith(mark); })) {
                cases.append({path, {}});
                hasTitle = true;
            }
            if (hasTitle)
                cases.last().lines.append(line);
        }
    }
    return cases;
}

void TestSupport::expectCase(const TextCase &textCase, const QStringList &made)
{
    if (qEnvironmentVariableIntValue("NCX_ACCEPT") != 1) {
        EXPECT_EQ(made.join(u'\n').toStdString(), textCase.lines.join(u'\n').toStdString());
        return;
    }
    QStringList lines = linesOf(textCase.path);
    const qsizetype first = lines.indexOf(textCase.lines.first());
    lines.remove(first, textCase.lines.size());
    for (qsizetype i = 0; i < made.size(); ++i)
        lines.insert(first + i, made.at(i));
    writeFile(textCase.path, lines.join(u'\n').toUtf8());
}

QString FileCase::baseName() const
{
    const QFileInfo info(path);
    return info.isDir() ? path.section(u'/', -2) : info.completeBaseName();
}

QList<FileCase> TestSupport::fileCases(const QString &folder, const QStringList &endings)
{
    const QDir cases(sourceRoot + u"/tests/data/"_s + folder);
    QList<FileCase> files;
    for (const QString &name : cases.entryList(endings, QDir::Files, QDir::Name))
        files.append({cases.filePath(name)});
    return files;
}

QList<FileCase> TestSupport::projectCases()
{
    QList<FileCase> folders;
    for (const QString &root : {u"/tests/data/golden"_s, u"/examples"_s}) {
        const QDir parent(sourceRoot + root);
        for (const QString &name : parent.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
            if (std::ranges::find(otherFolders, name) == otherFolders.end())
                folders.append({parent.filePath(name)});
        }
    }
    return folders;
}
