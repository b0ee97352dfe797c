#pragma once

#include <QObject>

#include <memory>

class ObjectDataBase;
class OutputHandlerBase;

/// What follows the generators: it closes a run with its last message.
class PostGenProcessor : public QObject
{
    Q_OBJECT

public:
    explicit PostGenProcessor(OutputHandlerBase &output, QObject *parent = nullptr);

    void setDatabase(const std::shared_ptr<ObjectDataBase> &store) { database_ = store; }
    /// Set anew before each run.
    void setProject(const QString &outputFolder, const QString &baseName);
    /// Walks all steps and returns after the last.
    void run();

private:
    void sendEndMessage();

    OutputHandlerBase &output_;
    std::shared_ptr<ObjectDataBase> database_;
    QString outputFolder_;
    QString projectBaseName_;
};
