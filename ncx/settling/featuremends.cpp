#include "ncx/settling/mends.h"

#include "ncx/settling/mappedentries.h"
#include "nodedict/codes.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace CANopen;

namespace {

const DescriptionText::Entry *deviceEntry(const SettledLine &line, QLatin1StringView key)
{
    const DescriptionText::Section *section = line.file().section(u"deviceinfo"_s);
    return section ? section->entry(key) : nullptr;
}

QString statedGranularity(const SettledLine &line)
{
    const DescriptionText::Section *section = line.file().section(u"deviceinfo"_s);
    return section ? section->word("granularity"_L1) : QString();
}

bool mapsBits(const SettledLine &line)
{
    return std::ranges::any_of(line.objects().keys(), [&line](quint16 index) {
        return MappedEntries::isMapping(index) &&
               std::ranges::any_of(MappedEntries::of(line, index),
                                   [](const MappedEntry &entry) { return entry.bits() % 8 != 0; });
    });
}

bool setGranularity(SettledLine &line, const QString &value)
{
    const DescriptionText::Entry *entry = deviceEntry(line, "granularity"_L1);
    return line.setDescription(u"Granularity"_s, value, entry ? entry->line : 0);
}

} // namespace

bool FeatureMends::takeGranularity(SettledLine &line, const FindingPlace & /*place*/)
{
    const QString stated = statedGranularity(line);
    return !stated.isEmpty() && setGranularity(line, stated);
}

bool FeatureMends::chooseGranularity(SettledLine &line, const FindingPlace & /*place*/)
{
    return statedGranularity(line).isEmpty() && setGranularity(line, mapsBits(line) ? u"1"_s : u"8"_s);
}

bool FeatureMends::replaceGranularity(SettledLine &line, const FindingPlace & /*place*/)
{
    return setGranularity(line, mapsBits(line) ? u"1"_s : u"8"_s);
}

bool FeatureMends::takeDummyUsage(SettledLine &line, const FindingPlace & /*place*/)
{
    const DescriptionText::Section *section = line.file().section(u"dummyusage"_s);
    const DescriptionText::Entry *entry = section ? section->entry("dummy0004"_L1) : nullptr;
    return entry && line.setDescription(u"Dummy0004"_s, section->word("dummy0004"_L1), entry->line);
}

bool FeatureMends::checkLimits(SettledLine &line, const FindingPlace & /*place*/)
{
    return line.setGeneral(u"limit_check"_s, u"1"_s);
}

bool FeatureMends::mapBits(SettledLine &line, const FindingPlace & /*place*/)
{
    return line.setGeneral(u"bitwise_mapping"_s, u"1"_s);
}

bool FeatureMends::ownCobIds(SettledLine &line, const FindingPlace & /*place*/)
{
    return line.setGeneral(u"overwrite_predef"_s, u"1"_s);
}

bool FeatureMends::storeByApplication(SettledLine &line, const FindingPlace & /*place*/)
{
    return line.setGeneral(u"1010autostore_by_application"_s, u"1"_s);
}
