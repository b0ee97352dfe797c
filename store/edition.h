#pragma once

#include <QString>

#include <optional>

/// The programs that come from this source. They differ in their application name alone, by which projects know them.
enum class Edition
{
    CanOpen,
    J1939,
    Can, ///< all protocols
    EnergyBus
};

/// None for a name that no program has.
std::optional<Edition> editionOf(const QString &applicationName);
/// The program that is running.
std::optional<Edition> currentEdition();
