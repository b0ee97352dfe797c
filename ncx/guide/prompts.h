#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QLatin1StringView>
#include <QString>

#include <optional>
#include <span>

/// A task that an assistant can be led through, as data.
struct Prompt
{
    /// Of arguments the protocol knows texts only.
    struct Argument
    {
        QLatin1StringView name;
        QLatin1StringView description;
        bool isRequired = false;
        std::span<const QLatin1StringView> choices = {};
        int highest = 0;              ///< of a number, from 1 on; 0 for any text
        QLatin1StringView usual = {}; ///< taken where it is not given
    };

    QLatin1StringView name;
    QLatin1StringView title;
    QLatin1StringView description;
    std::span<const Argument> arguments;

    /// The descriptor that clients list.
    QJsonObject descriptor() const;
    /// What is wrong with the arguments, in words for the client; nothing if they fit.
    std::optional<QString> problem(const QJsonObject &given) const;
    /// What the assistant is told: the text of the prompt with its arguments. A line that names an argument without a
    /// value is left out.
    QString text(const QJsonObject &given) const;

    static std::span<const Prompt> all();
};
