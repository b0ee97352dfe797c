#include "generate/define/projectprops.h"

#include "generate/base/codewriter.h"
#include "generate/base/outputfile.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

bool writeFile(const QString &path, const std::function<void(CodeWriter &)> &write)
{
    OutputFile file(path);
    if (!file.open())
        return false;
    Utf8Sink sink(file.device());
    CodeWriter out(sink);
    write(out);
    sink.flush();
    return file.commit();
}

// The symbols and the end of their element share a line: a line break would become part of the last symbol.
void writeSymbols(CodeWriter &out, const QStringList &names)
{
    out(uR"(
        <?xml version="1.0" encoding="utf-8"?>
        <!-- Auto-generated from gen_define.h - do not edit. -->
        <!-- C# conditional-compilation symbols that make the #if in the -->
        <!-- generated wrapper match the compiled stack_wrapper DLL. -->
        <!-- Imported automatically by Directory.Build.props when present. -->
        <Project>
        <PropertyGroup>
        <DefineConstants>$(DefineConstants);${NAMES}</DefineConstants>
        </PropertyGroup>
        </Project>
        )",
        {{"NAMES", names.join(u';')}});
}

void writeImport(CodeWriter &out)
{
    out(uR"xml(
        <?xml version="1.0" encoding="utf-8"?>
        <!-- Auto-imported by MSBuild. Pulls in the generated define -->
        <!-- symbols (gen_define.props) if present; no error if absent. -->
        <Project>
          <Import Project="$(MSBuildThisFileDirectory)gen_define.props"
                  Condition="Exists('$(MSBuildThisFileDirectory)gen_define.props')" />
        </Project>
        )xml");
}

} // namespace

QStringList ProjectProps::macroNames(const QByteArray &header)
{
    static const QRegularExpression define(u"^#[ \\t]*define[ \\t]+([A-Za-z_][A-Za-z0-9_]*)"_s);
    QStringList names;
    QSet<QString> seen;
    // The user-specific section keeps line ends of its own.
    for (const QByteArray &line : QByteArray(header).replace('\r', '\n').split('\n')) {
        const QString name = define.match(QString::fromUtf8(line.trimmed())).captured(1);
        if (name.isEmpty() || seen.contains(name))
            continue;
        seen.insert(name);
        names.append(name);
    }
    return names;
}

bool ProjectProps::write(const QString &folder)
{
    const QDir dir(folder);
    QFile header(dir.filePath(u"gen_define.h"_s));
    if (header.open(QIODevice::ReadOnly)) {
        const QStringList names = macroNames(header.readAll());
        const QString path = dir.filePath(u"gen_define.props"_s);
        if (!writeFile(path, [&](CodeWriter &out) { writeSymbols(out, names); })) {
            qWarning().noquote() << "Unable to write gen_define.props to" << path;
            return false;
        }
    } else {
        qWarning().noquote() << "gen_define.h not found, writing Directory.Build.props only:" << header.fileName();
    }
    const QString path = dir.filePath(u"Directory.Build.props"_s);
    if (!writeFile(path, writeImport)) {
        qWarning().noquote() << "Unable to write Directory.Build.props to" << path;
        return false;
    }
    return true;
}
