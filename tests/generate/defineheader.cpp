#include "generate/defineheader.h"

#include "generate/runcontext.h"
#include "generate/stack/definegenerator.h"
#include "support/processrunner.h"
#include "support/testhome.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

template <typename Generator>
QString write(const ProjectBuilder &project, const QString &folder)
{
    const RunContext run = RunContext::ofProject(project.store());
    Generator generator;
    generator.setDatabase(run.store);
    generator.setOutputFolder(folder);
    generator.setBaseName(u"device"_s);
    generator.setJ1939Mode(run.hasJ1939);
    generator.setMultiProtocol(run.isMultiProtocol());
    generator.startJob();
    generator.waitForJob();
    EXPECT_EQ(generator.errorText(), QString());
    return generator.userSection();
}

} // namespace

QString TestSupport::compilerErrors(const QString &path)
{
    return ProcessRunner(u"/usr/bin/env"_s)
        .arguments(
            {u"cc"_s, u"-std=c99"_s, u"-Wall"_s, u"-Wextra"_s, u"-Werror"_s, u"-x"_s, u"c"_s, u"-fsyntax-only"_s, path})
        .run()
        .errors;
}

Header::Header(const ProjectBuilder &project, SourceForm form, const QString &folder)
{
    userSection_ =
        form == SourceForm::V4 ? write<GenDefineGenerator>(project, folder) : write<CoDefineGenerator>(project, folder);
    const QString path = folder + u"/gen_define.h"_s;
    text_ = QString::fromUtf8(readFile(path));
    static const QRegularExpression define(u"^#define (\\w+)[ \\t](.*)$"_s, QRegularExpression::MultilineOption);
    for (auto match = define.globalMatch(text_); match.hasNext();) {
        const auto found = match.next();
        values_.insert(found.captured(1), found.captured(2));
    }
    EXPECT_EQ(compilerErrors(path), QString());
}

void TestSupport::expectValues(const Header &header, const Values &expected)
{
    for (auto it = expected.begin(); it != expected.end(); ++it)
        EXPECT_EQ(header.value(it.key()), it.value()) << qPrintable(it.key());
}

ProjectBuilder &TestSupport::objects(ProjectBuilder &project, const QList<quint16> &indices)
{
    for (const quint16 index : indices)
        project.object(index, u"o"_s).sub(0, u"s"_s);
    return project;
}

ProjectBuilder &TestSupport::subs(ProjectBuilder &project, quint8 last)
{
    for (quint8 sub = 0; sub <= last; ++sub)
        project.sub(sub, u"s"_s);
    return project;
}

std::function<void(StoreRecords::SubIndexData &)> TestSupport::withDefault(const QString &value, quint16 dataType)
{
    return [value, dataType](StoreRecords::SubIndexData &sub) {
        sub.defaultvalue = value;
        sub.datatype = dataType;
        sub.accesstype = u"rw"_s;
    };
}
