// The server on any line at all, with a project open: no reply, or one line of JSON that is a reply. Tools write where
// they are told to, so run it in an empty folder.

#include "ncx_cli/mcp/mcpmainapp.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <array>
#include <cstdlib>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

MCPMainApp &server()
{
    static std::array<char, 5> name{"fuzz"};
    static std::array<char *, 2> arguments{name.data(), nullptr};
    static int count = 1;
    static QCoreApplication application(count, arguments.data());
    QCoreApplication::setApplicationName(QStringLiteral("CAN NodeComposer"));
    static MCPMainApp server({}, {});
    // CANopen and J1939, and one with raw CAN
    ObjectDataBase &store = server.session().store();
    store.setGeneralSetting(QStringLiteral("line0type"), QStringLiteral("5"));
    store.addNode(1, ObjectDataBase::NODE_DATA_T());
    store.setGeneralSetting(QStringLiteral("line1type"), QStringLiteral("6"));
    server.session().setProjectOpen(true);
    return server;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static MCPMainApp &app = server();
    const auto reply = app.answer(QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    if (!reply)
        return 0;
    require(reply->endsWith('\n') && reply->count('\n') == 1);
    const QJsonObject object = QJsonDocument::fromJson(*reply).object();
    require(object.contains(QLatin1StringView("id")) && object.contains(QLatin1StringView("jsonrpc")));
    require(object.contains(QLatin1StringView("result")) != object.contains(QLatin1StringView("error")));
    return 0;
}
