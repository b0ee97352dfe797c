#pragma once

#include <QJsonObject>
#include <QLatin1StringView>

/// What clients are told of a tool beside its texts and arguments: how it treats the project, and what it answers.
struct ToolNote
{
    enum class Effect
    {
        Reads,   ///< changes nothing
        Adds,    ///< changes the open project, and takes nothing away
        Sets,    ///< the same, and a second call of the same arguments changes nothing more
        Removes, ///< takes something away or replaces it
        Steps,   ///< goes a step in the journal
        Opens,   ///< replaces the open project
        Writes   ///< writes files
    };
    enum class Answer
    {
        Object,
        Edit,
        Page,
        Items,
        Findings
    };

    QLatin1StringView name;
    Effect effect;
    Answer answer;
    /// When to use it, its units and an example, for a tool whose own description is that of another server.
    QLatin1StringView description = {};

    /// True for a tool whose calls are steps of the journal.
    bool isEdit() const { return effect == Effect::Adds || effect == Effect::Sets || effect == Effect::Removes; }
    /// True for one whose answer tells what an edit has changed.
    bool tellsEdit() const { return answer == Answer::Edit; }
    QJsonObject annotations() const;
    QJsonObject outputSchema() const;

    /// Of a tool that no table knows nothing is promised.
    static ToolNote of(QLatin1StringView tool);
};
