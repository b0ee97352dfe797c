#pragma once

#include "check/frame/finding.h"
#include "ncx/settling/settledline.h"

// What the rows of the table do. Each looks for itself whether there is still something to do at the place, and answers
// whether it changed anything; what it changes, the line tells.

namespace ObjectMends {

bool takeConfiguredValues(SettledLine &line, const FindingPlace &place);
bool addMandatoryObjects(SettledLine &line, const FindingPlace &place);
bool tellDomains(SettledLine &line, const FindingPlace &place);
bool fillIdentity(SettledLine &line, const FindingPlace &place);
template <quint16 index>
bool addObject(SettledLine &line, const FindingPlace & /*place*/)
{
    return line.addStandardObject(index);
}
bool addCount(SettledLine &line, const FindingPlace &place);
bool correctCount(SettledLine &line, const FindingPlace &place);
bool makeCountConst(SettledLine &line, const FindingPlace &place);
bool addElement(SettledLine &line, const FindingPlace &place);
bool closeGaps(SettledLine &line, const FindingPlace &place);
bool makeRecord(SettledLine &line, const FindingPlace &place);
bool makeVariable(SettledLine &line, const FindingPlace &place);
bool nameIt(SettledLine &line, const FindingPlace &place);
bool switchConsumerOff(SettledLine &line, const FindingPlace &place);
bool clearUnknownStoreBits(SettledLine &line, const FindingPlace &place);

} // namespace ObjectMends

namespace ValueMends {

bool takeNearestType(SettledLine &line, const FindingPlace &place);
bool makeConstant(SettledLine &line, const FindingPlace &place);
bool makeApplicationVariable(SettledLine &line, const FindingPlace &place);
bool removeUnreadable(SettledLine &line, const FindingPlace &place);
bool widenLimits(SettledLine &line, const FindingPlace &place);

} // namespace ValueMends

namespace FeatureMends {

bool takeGranularity(SettledLine &line, const FindingPlace &place);
bool chooseGranularity(SettledLine &line, const FindingPlace &place);
bool replaceGranularity(SettledLine &line, const FindingPlace &place);
bool takeDummyUsage(SettledLine &line, const FindingPlace &place);
bool checkLimits(SettledLine &line, const FindingPlace &place);
bool mapBits(SettledLine &line, const FindingPlace &place);
bool ownCobIds(SettledLine &line, const FindingPlace &place);
bool storeByApplication(SettledLine &line, const FindingPlace &place);

} // namespace FeatureMends

namespace MappingMends {

bool makeCompactAlike(SettledLine &line, const FindingPlace &place);
bool countCompactEntries(SettledLine &line, const FindingPlace &place);
bool makeAlike(SettledLine &line, const FindingPlace &place);
bool switchOff(SettledLine &line, const FindingPlace &place);
bool takePredefinedCobId(SettledLine &line, const FindingPlace &place);
bool addCommunication(SettledLine &line, const FindingPlace &place);
bool addMapping(SettledLine &line, const FindingPlace &place);
bool dropDeadEntries(SettledLine &line, const FindingPlace &place);
bool countExistingEntries(SettledLine &line, const FindingPlace &place);
bool fitFrame(SettledLine &line, const FindingPlace &place);
bool allowMapping(SettledLine &line, const FindingPlace &place);
bool correctLength(SettledLine &line, const FindingPlace &place);
bool openAccess(SettledLine &line, const FindingPlace &place);

} // namespace MappingMends
