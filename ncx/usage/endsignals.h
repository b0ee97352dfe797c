#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

/// Tells of the first signal that asks the process to end, in its event loop; the second one ends it as before. There
/// can be one of these in a process.
class EndSignals : public QObject
{
    Q_OBJECT

public:
    EndSignals();
    ~EndSignals() override;
    Q_DISABLE_COPY_MOVE(EndSignals)

Q_SIGNALS:
    void raised();

private:
    std::unique_ptr<QSocketNotifier> notifier_;
};
