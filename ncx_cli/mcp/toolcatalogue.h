#pragma once

#include "ncx_cli/mcp/call/tool.h"

#include <QHash>

/// All tools in their order, as clients list them and as calls find them.
class ToolCatalogue
{
public:
    ToolCatalogue();

    const QJsonArray &descriptors() const { return descriptors_; }
    /// Null if there is no tool of exactly that name.
    const Tool *find(const QString &name) const { return tools_.value(name); }

private:
    QJsonArray descriptors_;
    QHash<QString, const Tool *> tools_;
};
