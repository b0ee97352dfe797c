#include "generate/stack/indications.h"

#include "generate/dialect.h"
#include "generate/stack/linesettings.h"
#include "store/objectdatabase.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

bool isSetOnSomeLine(ObjectDataBase &store, const QString &key)
{
    const QList<quint8> lines = LineSettings::stackLines(store);
    return std::ranges::any_of(lines, [&](quint8 line) { return LineSettings::number(store, key, line) > 0; });
}

} // namespace

QString Indications::Event::parametersIn(const Dialect &dialect) const
{
    const bool ownWords = dialect.form == SourceForm::Classic && !classicParameters.isEmpty();
    return inForm(ownWords ? classicParameters : parameters, dialect);
}

QString Indications::inForm(QLatin1StringView text, const Dialect &dialect)
{
    return QString(text).replace("CORE_"_L1, dialect.core);
}

QString Indications::functionOf(ObjectDataBase &store, QLatin1StringView key)
{
    return store.getGeneralSetting(key).trimmed();
}

bool Indications::hasUsdoServer(ObjectDataBase &store)
{
    return isSetOnSomeLine(store, u"usdo_server_enabled"_s);
}

bool Indications::hasUsdoClient(ObjectDataBase &store)
{
    return isSetOnSomeLine(store, u"usdo_client_enabled"_s);
}

bool Indications::hasUdsEvents(ObjectDataBase &store)
{
    return LineSettings::number(store, u"uds_static_indication"_s) == 1;
}
