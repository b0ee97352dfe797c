#include "ncx_cli/mcp/resources.h"

using namespace Qt::StringLiterals;

Reply Resources::list(ProjectSession & /*session*/)
{
    return Reply::result({{u"resources"_s, QJsonArray()}});
}

Reply Resources::read(ProjectSession & /*session*/, const QString &uri)
{
    return Reply::invalidParams(u"Unsupported resource URI (only codb://... is implemented): %1"_s.arg(uri));
}
