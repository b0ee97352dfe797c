#pragma once

#include "generate/base/outputhandlerbase.h"

#include <QTextStream>

/// The console: standard output, flushed after each text, without the markup of messages.
class CLIOutputHandler : public OutputHandlerBase
{
    Q_OBJECT

public:
    explicit CLIOutputHandler(QObject *parent = nullptr);

    void message(const QVariant &value) override;
    /// All that was written, the rows of a help listing aside.
    QString collectedText() const override { return log_; }

    /// Writes a text as it stands, with nothing behind it.
    CLIOutputHandler &printValue(const QVariant &value);
    /// The same with one blank behind it.
    CLIOutputHandler &printValueAndBlank(const QVariant &value);
    /// Writes one row of a help listing.
    void printOption(const QString &option, const QString &text);

private:
    void write(const QString &text);

    QTextStream stream_{stdout};
    QString log_;
};
