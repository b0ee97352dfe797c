#include "generate/names/indications.h"

#include "generate/base/dialect.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

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
    return Settings(store).text(key).trimmed();
}

bool Indications::hasUsdoServer(ObjectDataBase &store)
{
    return Settings(store).onAnyLine(u"usdo_server_enabled"_s);
}

bool Indications::hasUsdoClient(ObjectDataBase &store)
{
    return Settings(store).onAnyLine(u"usdo_client_enabled"_s);
}

bool Indications::hasUdsEvents(ObjectDataBase &store)
{
    return Settings(store).isOn(u"uds_static_indication"_s);
}

bool Indications::namesUdsFunction(ObjectDataBase &store)
{
    return std::ranges::any_of(udsEvents(),
                               [&](const UdsEvent &event) { return !functionOf(store, event.key).isEmpty(); });
}
