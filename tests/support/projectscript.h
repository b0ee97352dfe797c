#pragma once

#include "store/objectdatabase.h"

#include <memory>

namespace TestSupport {

/// Builds a project from commands; tests/data/check/README.md lists them.
class ProjectScript
{
public:
    /// Without a store, a new project.
    explicit ProjectScript(std::shared_ptr<ObjectDataBase> store = nullptr);

    /// Runs a command; one that there is not fails the test.
    void run(const QString &command);
    void run(const QStringList &commands);

    const std::shared_ptr<ObjectDataBase> &store() const { return store_; }

private:
    void addSubs(quint16 index, quint8 last);
    bool runSetting(const QString &word, const QString &key, const QString &value);

    std::shared_ptr<ObjectDataBase> store_;
    quint8 line_ = 0;
};

} // namespace TestSupport
