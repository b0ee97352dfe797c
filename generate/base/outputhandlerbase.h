#pragma once

#include <QObject>
#include <QVariant>

/// The sink of all texts of a run: the console, or whatever else listens.
///
/// A message may carry markup; what becomes of that is the sink's matter. A sink keeps all that it was given, because
/// a run leaves that text as its error log. Sinks are called on the main thread only.
class OutputHandlerBase : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Writes one message as a line.
    virtual void message(const QVariant &value) = 0;
    /// Passes a message of somebody else on; here the same as `message`.
    virtual void forwardMessage(const QVariant &value);
    /// Everything written since the sink was made.
    virtual QString collectedText() const = 0;

    /// A message as plain text. Whatever stands between a "<" and the last ">" before the next full stop is taken for
    /// markup, so a text with an arrow ("->") loses what stands before the arrow.
    static QString withoutMarkup(QString text);
};
