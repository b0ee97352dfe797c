// The server on a session of any lines, with a project of two lines open: no reply, or one line of JSON that is a
// reply. Tools read and write where they are told to, so run it as a user who may do no harm, in an empty folder.

#include "fuzz/scratch.h"
#include "ncx_cli/mcp/mcpmainapp.h"
#include "store/objectdatabase.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

QString baseProject()
{
    static const QString path = [] {
        QString made = Fuzz::scratch().filePath(u"base.ncxp"_s);
        ObjectDataBase store;
        const QString example = QStringLiteral(NCX_SOURCE_DIR "/examples/co_j1939/device.ncxt");
        Fuzz::require(store.openTextDatabase(example));
        Fuzz::require(store.addNode(1, ObjectDataBase::NODE_DATA_T()));
        Fuzz::require(store.setGeneralSetting(u"line1type"_s, u"4"_s));
        Fuzz::require(store.saveDatabase(made));
        return made;
    }();
    return path;
}

/// A server with the project open as it is on disk. One that has written is not used again.
MCPMainApp &server()
{
    static MCPMainApp *app = nullptr; // never deleted at the end, when the application has gone
    static bool written = true;
    if (!written)
        return *app;
    delete app;
    const QString path = Fuzz::emptyFolder(u"project"_s) + u"/device.ncxp"_s;
    Fuzz::require(QFile::copy(baseProject(), path));
    app = new MCPMainApp(QStringList(), QString());
    ProjectSession &session = app->session();
    Fuzz::require(session.handler().openProject(path));
    session.setProjectOpen(true);
    written = false;
    session.store().setWriteTracking(true);
    QObject::connect(&session.store(), &ObjectDataBase::databaseWriteExecuted, app, [] { written = true; });
    return *app;
}

void answer(MCPMainApp &app, const QByteArray &line)
{
    const auto reply = app.answer(line);
    if (!reply)
        return;
    Fuzz::require(reply->endsWith('\n') && reply->count('\n') == 1);
    const QJsonObject object = QJsonDocument::fromJson(*reply).object();
    Fuzz::require(object.contains("id"_L1) && object.contains("jsonrpc"_L1));
    Fuzz::require(object.contains("result"_L1) != object.contains("error"_L1));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    // The command of a project is run as it stands, and is none of ours.
    if (input.toLower().contains("postgen"))
        return 0;
    Fuzz::scratch();
    MCPMainApp &app = server();
    for (const QByteArray &line : input.split('\n'))
        answer(app, line);
    return 0;
}
