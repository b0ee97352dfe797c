#include "store/projectconverter.h"

#include "store/file/repairs.h"
#include "store/objectdatabase.h"
#include "store/usersettings.h"

#include <QRegularExpression>

#include <tuple>

using namespace Qt::StringLiterals;

bool ProjectConverter::doGenericCorrection()
{
    if (store_->getGeneralSetting(u"drv_group_filter"_s).toInt() == 1) {
        const QString defines = store_->getGeneralSetting(u"hw_defines"_s) +
                                "\n\n /* old group filter setting */\n#define CO_DRV_GROUP_FILTER 1u\n"_L1;
        if (store_->setGeneralSetting(u"hw_defines"_s, defines, Quotes::Kept))
            std::ignore = store_->setGeneralSetting(u"drv_group_filter"_s, u"0"_s);
    }
    constexpr uint renumberedServerVersion = 5;
    if (store_->getGeneralSetting(u"udsserver_version"_s).toUInt() == renumberedServerVersion)
        std::ignore = store_->setGeneralSetting(u"udsserver_version"_s, u"6"_s);
    return true;
}

bool ProjectConverter::doCorrection()
{
    takeStackPathFromUser();
    const QList<quint8> lines = store_->getNodeList();
    if (!lines.isEmpty())
        moveMasterList();
    switchOnWhereCounted(u"usdo_server_enabled"_s, u"usdo_server_cnt"_s);
    switchOnWhereCounted(u"usdo_client_enabled"_s, u"usdo_client_cnt"_s);
    for (const quint8 line : lines)
        unmapObject1032(line);
    return true;
}

void ProjectConverter::takeStackPathFromUser()
{
    const QString key = u"costackpath"_s;
    if (!store_->getMiscSetting(key).isEmpty())
        return;
    const QString path = UserSettings::value(u"General"_s, key);
    if (!path.isEmpty())
        std::ignore = store_->setMiscSetting(key, path);
}

/// The key once held whether each line is NMT master.
void ProjectConverter::moveMasterList()
{
    const QString key = u"co_ml_ms"_s;
    const QString value = store_->getGeneralSetting(key);
    if (!value.contains(u','))
        return;
    if (store_->setGeneralSetting(u"nmtmaster"_s, value, Quotes::Kept))
        std::ignore = store_->setGeneralSetting(key, QString());
}

/// The count alone once switched a feature on.
void ProjectConverter::switchOnWhereCounted(const QString &enabledKey, const QString &countKey)
{
    const auto numberOf = [this](const QString &key) {
        return static_cast<quint8>(store_->getGeneralSetting(key).toUInt());
    };
    if (numberOf(enabledKey) == 0 && numberOf(countKey) != 0)
        std::ignore = store_->setGeneralSetting(enabledKey, u"1"_s);
}

void ProjectConverter::unmapObject1032(quint8 line)
{
    constexpr quint16 index = 0x1032;
    constexpr quint32 mappedOnce = 1;
    std::optional<ObjectDataBase::SUBINDEX_DATA_T> data = store_->getSubIndex(line, index, 0);
    if (!data || data->pdomapping.toUInt() != mappedOnce)
        return;
    data->pdomapping = PDOMapping(0);
    std::ignore = store_->addSubIndex(line, index, 0, *data, Quotes::Kept);
}

/// The kind that a key names, put right in the project; empty for none and for one that is marked to be left.
QString ProjectConverter::correctedKind(const QString &key)
{
    static const QRegularExpression misspelt(u"(?<![sS])ecurity"_s);
    const QString kind = store_->getEnergyBusSetting(key);
    if (kind == "correct"_L1)
        return {};
    QString corrected = kind;
    corrected.replace(misspelt, u"security"_s);
    if (corrected != kind)
        std::ignore = store_->setEnergyBusSetting(key, corrected, Quotes::Kept);
    return corrected;
}

bool ProjectConverter::doEnergyBusCorrection()
{
    constexpr int entries = 49;
    int deviceCount = 0;
    for (int entry = 0; entry < entries; ++entry) {
        correctedKind(u"sec_%1_kind"_s.arg(entry));
        if (!correctedKind(u"device_%1"_s.arg(entry)).isEmpty())
            deviceCount = entry + 1;
    }
    if (deviceCount > store_->getEnergyBusSetting(u"device_cnt"_s).toInt())
        std::ignore = store_->setEnergyBusSetting(u"device_cnt"_s, QString::number(deviceCount));
    return true;
}

bool ProjectConverter::doJ1939Correction()
{
    std::ignore = Repairs::mappingCounts(*store_);
    return true;
}
