#include "store/edition.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array names{
    std::pair{"CANopen NodeComposer"_L1, Edition::CanOpen},
    std::pair{"J1939 NodeComposer"_L1, Edition::J1939},
    std::pair{"CAN NodeComposer"_L1, Edition::Can},
    std::pair{"EnergyBus NodeAssistant"_L1, Edition::EnergyBus},
};

} // namespace

std::optional<Edition> editionOf(const QString &applicationName)
{
    const auto row = std::ranges::find_if(names, [&](const auto &each) { return applicationName == each.first; });
    return row == names.end() ? std::nullopt : std::optional(row->second);
}

std::optional<Edition> currentEdition()
{
    return editionOf(QCoreApplication::applicationName());
}
