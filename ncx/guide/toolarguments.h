#pragma once

#include "mcp/call/tool.h"

#include <vector>

/// The arguments of a tool as this server has them: those of its table, some with narrower values or a text of their
/// own, and what all tools of a kind have beside them.
class ToolArguments
{
public:
    explicit ToolArguments(const Tool &tool);

    QJsonObject inputSchema() const;
    /// What is wrong with the arguments of a call, with what the argument in question takes; nothing if they fit.
    std::optional<QString> problem(const QJsonObject &given) const;

    /// All findings that are new by an edit are told.
    static bool isVerbose(const QJsonObject &given);
    /// The CAN-ID has 29 bits.
    static bool isExtended(const QJsonObject &given);
    /// The arguments as the tool itself knows them.
    QJsonObject toTool(QJsonObject given) const;

private:
    QString taken(const QString &problem) const;
    std::optional<QString> canIdProblem(const QJsonObject &given) const;
    std::optional<QString> dataTypeProblem(const QJsonObject &given) const;

    const Tool &tool_;
    std::vector<Property> required_;
    std::vector<Property> optional_;
    bool takesCanId_;
};
