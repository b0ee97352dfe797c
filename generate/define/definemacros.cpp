#include "generate/define/definemacros.h"

#include "generate/base/dialect.h"
#include "generate/define/definerules.h"

using DefineMacros::Macro;

QString DefineRules::listOf(const DefineModel &model, const std::function<QString(const LineCounts &)> &entry,
                            QLatin1StringView comma)
{
    QStringList entries;
    for (const LineCounts &line : model.lines)
        entries.append(entry(line));
    return entries.join(comma);
}

bool Macro::existsIn(SourceForm form) const
{
    return forms == Forms::Both || (forms == Forms::V4Only) == (form == SourceForm::V4);
}

QString Macro::nameIn(const Dialect &dialect) const
{
    return DefineMacros::nameIn(name, dialect);
}

QString DefineMacros::nameIn(QLatin1StringView name, const Dialect &dialect)
{
    const QString core = Dialect::v4().core;
    const QString line = Dialect::v4().line;
    if (name.startsWith(core))
        return dialect.core + name.sliced(core.size());
    return name.startsWith(line) ? dialect.line + name.sliced(line.size()) : QString(name);
}
