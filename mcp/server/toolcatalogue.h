#pragma once

#include "mcp/call/tool.h"

#include <QHash>

#include <span>

class AnswerForm;

/// A family of tools, as `toolfamilies.h` has them.
using ToolFamily = std::span<const Tool> (*)();

/// All tools of a server in their order, as clients list them and as calls find them. A tool of a later family takes
/// the place of one of the same name.
class ToolCatalogue
{
public:
    ToolCatalogue(std::span<const ToolFamily> families, const AnswerForm &form);

    const QJsonArray &descriptors() const { return descriptors_; }
    /// Null if there is no tool of exactly that name.
    const Tool *find(const QString &name) const { return tools_.value(name); }

private:
    QJsonArray descriptors_;
    QHash<QString, const Tool *> tools_;
};
