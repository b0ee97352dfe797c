#include "ncx/settling/settlingrows.h"

#include "nodedict/codes.h"

using namespace Qt::StringLiterals;

namespace {

constexpr auto settled = SettlingTopic::Kind::Settled;
constexpr auto repaired = SettlingTopic::Kind::Repaired;

constexpr SettlingRow rows[] = {
    // Before the first check.
    {""_L1, settled, "Configured values are defaults"_L1,
     "The file configures a device, and --configured takes each ParameterValue."_L1, ""_L1,
     ObjectMends::takeConfiguredValues, true},
    {""_L1, settled, "Mandatory objects were added"_L1,
     "CiA 301 demands them of every device, and the file lacks them."_L1, "Set their values to what the device is."_L1,
     ObjectMends::addMandatoryObjects},
    {""_L1, settled, "The granularity of PDO mapping is that of the file"_L1,
     "It is a setting of the description that an import leaves alone."_L1, ""_L1, FeatureMends::takeGranularity},
    {""_L1, settled, "Dummy mapping is that of the file"_L1,
     "It is a setting of the description that an import leaves alone."_L1, ""_L1, FeatureMends::takeDummyUsage},
    {""_L1, settled, "Domains are variables of the application"_L1, "The stack has no storage for them."_L1,
     "Define the variables in the application, and declare them in a header that applicationheader names."_L1,
     ObjectMends::tellDomains},

    // Objects and their structure.
    {"vendorIdEmpty productCodeEmpty revisionEmpty"_L1, settled,
     "The identity is that of [DeviceInfo], and 0 where that is empty"_L1, "0x1018 has no values of its own."_L1,
     "Set what is 0 to the numbers of your device."_L1, ObjectMends::fillIdentity},
    {"errorHistoryWithoutEmcy"_L1, settled, "The COB-ID of emergency messages was added"_L1,
     "The error history 0x1003 needs 0x1014."_L1, "Remove 0x1003 if the device sends no emergency messages."_L1,
     ObjectMends::addObject<CANopen::Index::emcyCobId>},
    {"syncWithoutPeriod"_L1, settled, "The period of SYNC was added"_L1, "A producer of SYNC needs 0x1006."_L1,
     "Set the period, or clear bit 30 of 0x1005."_L1, ObjectMends::addObject<CANopen::Index::syncPeriod>},
    {"storeByCommandOnly"_L1, settled, "The application stores parameters by itself"_L1,
     "0x1010 or 0x1011 tells more than storing on command, which is all that the stack does."_L1,
     "Store in the application what the device promises to store."_L1, FeatureMends::storeByApplication},
    {"storeUnknown"_L1, repaired, "Bits of storing that CiA 301 does not know were cleared"_L1,
     "Only bits 0 and 1 mean something in 0x1010 and 0x1011."_L1, ""_L1, ObjectMends::clearUnknownStoreBits},
    {"emcyConsumerIsZero"_L1, repaired, "Unused consumers of emergency messages are marked so"_L1,
     "A COB-ID of 0 is the one of NMT; bit 31 marks an unused entry."_L1, ""_L1, ObjectMends::switchConsumerOff},
    {"countWithoutDefault"_L1, settled, "Subindex 0 was added"_L1,
     "An ARRAY or RECORD has the highest subindex there (CiA 301), and the file leaves it out."_L1, ""_L1,
     ObjectMends::addCount},
    {"countIsWrong"_L1, settled, "Subindex 0 tells the highest subindex that there is"_L1,
     "The file tells another one, or none."_L1, "See whether a subindex is missing."_L1, ObjectMends::correctCount},
    {"countIsNoConst"_L1, settled, "The number of elements is a constant"_L1,
     "Subindex 0 can only be read, and never changes."_L1, ""_L1, ObjectMends::makeCountConst},
    {"noSubindices"_L1, repaired, "An ARRAY or RECORD without elements got one"_L1,
     "The file gives it no subindex but 0."_L1, "Add the elements that the device has, or make it a VARIABLE."_L1,
     ObjectMends::addElement},
    {"nodeListEmpty"_L1, repaired, "An empty list of nodes got an element"_L1,
     "0x1016, 0x1028 and 0x1F81 need one at least."_L1, ""_L1, ObjectMends::addElement},
    {"nodeListGaps"_L1, repaired, "Gaps in a list of nodes were closed"_L1,
     "The stack takes 0x1016, 0x1028 and 0x1F81 without gaps only."_L1, ""_L1, ObjectMends::closeGaps},
    {"variableWithSubindices"_L1, repaired, "A VARIABLE with several subindices is a RECORD"_L1,
     "A VARIABLE has one value."_L1, ""_L1, ObjectMends::makeRecord},
    {"deviceTypeOfClassic"_L1, repaired, "The device type is a VARIABLE"_L1, "CiA 301 has it so."_L1, ""_L1,
     ObjectMends::makeVariable},
    {"objectWithoutName subindexWithoutName"_L1, repaired, "What has no name got one"_L1,
     "CiA 306 demands a ParameterName."_L1, "Name it after what it does."_L1, ObjectMends::nameIt},

    // Values and where they are kept.
    {"typeUnsupported"_L1, settled, "Types that the stack lacks are the nearest ones of the same size"_L1,
     "The project keeps the value in another type; descriptions tell the type of the file."_L1,
     "Let the application read the bytes as what they are."_L1, ValueMends::takeNearestType},
    {"managedVisibleString managedOctetString managedUtf8String"_L1, settled,
     "Texts that can only be read are constants"_L1,
     "The stack keeps no texts that change, and the file does not tell who does."_L1,
     "Make a text that the device finds out at run time a variable."_L1, ValueMends::makeConstant},
    {"managedVisibleString managedOctetString managedUtf8String"_L1, settled,
     "Texts that can be written are variables of the application"_L1, "The stack keeps no texts that change."_L1,
     "Define the variables in the application, and declare them in a header that applicationheader names. "
     "A size is that of the default value, or 32 without one."_L1,
     ValueMends::makeApplicationVariable},
    {"valueUnreadable"_L1, repaired, "A default value that is none of its type was removed"_L1, "It cannot be read."_L1,
     "Set the value that the device starts with."_L1, ValueMends::removeUnreadable},
    {"defaultBeyondLimits"_L1, repaired, "Limits that exclude the default value were widened or removed"_L1,
     "A device does not start with a value that it refuses."_L1, "See which of the two is wrong."_L1,
     ValueMends::widenLimits},
    {"limitCheckIsOff"_L1, settled, "The stack checks limits"_L1, "The file has limits."_L1, ""_L1,
     FeatureMends::checkLimits},

    // PDOs.
    {"mappingAccessDiffers"_L1, settled, "A mapping that is given in short has one access type"_L1,
     "The number of entries is as writable as the entries are."_L1, ""_L1, MappingMends::makeCompactAlike},
    {"mappingAccessDiffers"_L1, repaired, "A mapping has one access type"_L1,
     "It can be written as a whole or not at all."_L1, "See whether the device takes another mapping."_L1,
     MappingMends::makeAlike},
    {"entryIsEmpty"_L1, settled, "A mapping that is given in short counts what it maps"_L1,
     "CompactSubObj is the room of the mapping, not what is in it."_L1, ""_L1, MappingMends::countCompactEntries},
    {"entryIsEmpty mappedObjectMissing"_L1, repaired, "Entries that map nothing were left out"_L1,
     "An active entry has to name an object that exists."_L1, "Add the object, and map it again, if it is missing."_L1,
     MappingMends::dropDeadEntries},
    {"entriesMissing"_L1, repaired, "A mapping counts the entries that exist"_L1, "Subindex 0 counts more."_L1,
     "Add entries if some are missing."_L1, MappingMends::countExistingEntries},
    {"pdoTooLong"_L1, repaired, "A mapping ends where the frame does"_L1, "A frame has 64 bits."_L1,
     "Map what was left out into another PDO."_L1, MappingMends::fitFrame},
    {"mappingForbidden"_L1, repaired, "What is mapped may be mapped"_L1,
     "PDOMapping is 0, but a default mapping has it."_L1, ""_L1, MappingMends::allowMapping},
    {"mappedTooLarge"_L1, repaired, "A mapping takes as many bits as there are"_L1,
     "The entry takes more than its object has."_L1,
     "See whether the other side counts with the length of the file."_L1, MappingMends::correctLength},
    {"mappedIsNotWritable"_L1, repaired, "What an RPDO maps can be written"_L1, "An RPDO writes."_L1, ""_L1,
     MappingMends::openAccess},
    {"mappedIsNotReadable"_L1, repaired, "What a TPDO maps can be read"_L1, "A TPDO reads."_L1, ""_L1,
     MappingMends::openAccess},
    {"communicationMissing"_L1, settled, "Communication parameters were added, switched off"_L1,
     "The file has only the mapping of the PDO."_L1, "Set the COB-ID to switch the PDO on."_L1,
     MappingMends::addCommunication},
    {"mappingMissing"_L1, settled, "An empty mapping was added"_L1,
     "The file has only the communication parameters of the PDO."_L1, "Map something to use the PDO."_L1,
     MappingMends::addMapping},
    {"mappingWithoutObjects emptyPdoIsDisabled enabledPdoIsEmpty"_L1, settled,
     "PDOs without a mapping are switched off"_L1,
     "The file leaves the mapping to a configuration; bit 31 of the COB-ID is set meanwhile."_L1,
     "Map something and clear the bit to use the PDO."_L1, MappingMends::switchOff},
    {"cobIdUsedTwice"_L1, repaired, "The later one of two PDOs with the same COB-ID has that of the pre-defined set"_L1,
     "Two messages with one identifier collide, and its own of CiA 301 is free."_L1,
     "See which COB-ID the device has."_L1, MappingMends::takePredefinedCobId},
    {"cobIdUsedTwice"_L1, repaired, "The later one of two PDOs with the same COB-ID is switched off"_L1,
     "Two messages with one identifier collide."_L1, "Give it a COB-ID of its own, and clear bit 31."_L1,
     MappingMends::switchOff},
    {"cobIdDeviates"_L1, settled, "The device has COB-IDs of its own"_L1,
     "Not all are those of the pre-defined connection set, those of PDOs that are switched off included."_L1,
     "Call userOverwriteCobIdSettings() of the sources in the application."_L1, FeatureMends::ownCobIds},
    {"bitwiseIsOff"_L1, settled, "PDOs map bits"_L1, "A mapping of the file has entries that are no whole bytes."_L1,
     ""_L1, FeatureMends::mapBits},
    {"bitwiseWithBytes"_L1, repaired, "The granularity of PDO mapping is 1"_L1, "The file says 8, but maps bits."_L1,
     ""_L1, FeatureMends::replaceGranularity},
    {"dynamicWithoutGranularity"_L1, settled, "The granularity of PDO mapping was chosen"_L1,
     "Mappings can be written, and the file does not say how fine."_L1, ""_L1, FeatureMends::chooseGranularity},
    {"dynamicWithoutGranularity"_L1, repaired, "The granularity of PDO mapping is what mappings need"_L1,
     "The file says 0, which is that of a fixed mapping, but mappings can be written."_L1,
     "Make the mappings constant if the device takes no others."_L1, FeatureMends::replaceGranularity},
};

} // namespace

bool SettlingRow::settles(const QString &rule) const
{
    for (const QLatin1StringView one : rules.tokenize(u' ')) {
        if (one == rule)
            return true;
    }
    return false;
}

std::span<const SettlingRow> settlingRows()
{
    return rows;
}
