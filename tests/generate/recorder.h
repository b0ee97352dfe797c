#pragma once

#include "generate/base/outputhandlerbase.h"

/// Keeps the messages as they came, the forwarded ones behind "> ".
class Recorder : public OutputHandlerBase
{
public:
    void message(const QVariant &value) override { messages.append(value.toString()); }
    void forwardMessage(const QVariant &value) override { message(QStringLiteral("> ") + value.toString()); }
    QString collectedText() const override { return messages.join(u'\n'); }

    QStringList messages;
};
