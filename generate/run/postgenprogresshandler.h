#pragma once

#include "generate/base/outputhandlerbase.h"

/// A display of how far the post-generation process is, for an application that has one. Messages are not its matter.
class PostGenProgressHandler : public OutputHandlerBase
{
    Q_OBJECT

public:
    using OutputHandlerBase::OutputHandlerBase;

    void message(const QVariant & /*value*/) override {}
    void forwardMessage(const QVariant & /*value*/) override {}
    QString collectedText() const override { return {}; }

    /// The command has been started.
    virtual void processStarted() {}
    /// Something about the command that the user should see.
    virtual void report(const QString & /*text*/) {}
    /// The command has ended.
    virtual void processEnded() {}
};
