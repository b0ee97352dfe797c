#include "mcp/session/projectsession.h"

#include "store/edition.h"
#include "store/lineprotocols.h"
#include "store/objectdatabase.h"

using namespace Qt::StringLiterals;

ProjectSession::ProjectSession(QObject *parent)
    : QObject(parent)
{
}

GeneratorMainHandler &ProjectSession::handler() const
{
    if (!handler_) {
        handler_ = std::make_unique<GeneratorMainHandler>(&output_);
        connect(handler_.get(), &GeneratorMainHandler::finished, this, &ProjectSession::onGeneratorFinished);
    }
    return *handler_;
}

void ProjectSession::setProfilePath(const QString &path)
{
    profilePath_ = path;
    profiles_ = std::make_unique<ProfileDatabases>(path);
}

QString ProjectSession::damage() const
{
    if (!store().isDamaged())
        return {};
    return u"The working copy of the project is damaged (is the disk full?) - call open_project again."_s;
}

QString ProjectSession::checkSummary()
{
    QStringList messages;
    const qint32 errors = handler().checkModel(messages);
    if (errors == 0)
        return u"check_model: OK (0 errors)."_s;
    return u"check_model: %1 error(s):\n%2"_s.arg(QString::number(errors), messages.join(u'\n'));
}

int ProjectSession::lineTypeCode(quint8 line) const
{
    return store().getGeneralSetting(u"line%1type"_s.arg(line)).toInt();
}

bool ProjectSession::lineTypeSupported(int typeCode)
{
    const LineProtocols protocols = LineProtocols::ofType(typeCode);
    const std::optional<Edition> edition = currentEdition();
    if (edition == Edition::Can)
        return true;
    if (edition == Edition::J1939)
        return protocols.j1939 && !protocols.canOpen;
    return protocols.canOpen;
}
