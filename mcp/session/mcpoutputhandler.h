#pragma once

#include "generate/base/outputhandlerbase.h"

/// The sink of the server: keeps the texts of an operation, without their markup, until its tool takes them into its
/// reply.
class MCPOutputHandler : public OutputHandlerBase
{
    Q_OBJECT

public:
    using OutputHandlerBase::OutputHandlerBase;

    void message(const QVariant &value) override;
    /// What was captured since it was last taken.
    QString collectedText() const override { return captured_; }
    /// Returns what was captured and begins anew.
    QString takeOutput();

private:
    QString captured_;
};
