#include "mcp/wire/streamserver.h"

#include "mcp/wire/mcpstdinreader.h"
#include "mcp/wire/standardstreams.h"

StreamServer::StreamServer(const ServerForm &form, QObject *parent)
    : QObject(parent)
    , session_(form)
{
    session_.setNotify([](const QByteArray &message) { StandardStreams::writeOutput(message); });
}

StreamServer::~StreamServer()
{
    if (reader_)
        reader_->wait();
}

void StreamServer::start()
{
    reader_ = std::make_unique<MCPStdinReader>();
    session_.project().setReadingEnabled = [this](bool enabled) { reader_->setReadingEnabled(enabled); };
    connect(reader_.get(), &MCPStdinReader::lineReceived, this, &StreamServer::onLineReceived);
    connect(reader_.get(), &QThread::finished, this, &StreamServer::onInputEnded);
    reader_->start();
}

void StreamServer::onLineReceived(const QByteArray &line)
{
    // To a client that has gone there is nothing to say.
    queue_.serve(session_, line, [](const QByteArray &reply) { StandardStreams::writeOutput(reply); });
    if (inputEnded_ && !queue_.isServing())
        Q_EMIT finished();
}

void StreamServer::onInputEnded()
{
    inputEnded_ = true;
    if (!queue_.isServing())
        Q_EMIT finished();
}
