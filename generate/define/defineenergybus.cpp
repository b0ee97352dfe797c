// The EnergyBus section of gen_define.h (CiA 454).

#include "generate/define/definerules.h"

#include <array>

using namespace Qt::StringLiterals;
using namespace DefineMacros;
using namespace DefineRules;

namespace {

/// Number of virtual devices of a kind.
QString devices(const DefineModel &model, Key kind)
{
    const auto it = model.energyBusDevices.find(kind);
    return it == model.energyBusDevices.end() ? QString() : decimal(it->second);
}

QString energyBusValue(const DefineModel &model, Key key)
{
    return model.energyBus(key).trimmed().isEmpty() ? QString() : valueText(model.energyBus(key));
}

QString energyBusCount(const DefineModel &model, Key key)
{
    return valueText(model.energyBus(key));
}

QString energyBusIsSet(const DefineModel &model, Key key)
{
    return flag(NumberText::byPrefix(model.energyBus(key)).value_or(0) > 0);
}

constexpr auto controller = "EnergyBus Controller"_L1;

bool isController(const DefineModel &model)
{
    return model.energyBusDevices.contains(controller);
}

constexpr std::array deviceMacros{
    Macro{"EB_VIRTUAL_DEV_CNT"_L1, energyBusCount, "device_cnt"_L1},
    Macro{"EB_EBC_CNT"_L1, devices, controller},
    Macro{"EB_LMD_CNT"_L1, devices, "Load Monitoring Device"_L1},
    Macro{"EB_LOCAL_LMD_SUBIDX_OFFS"_L1, energyBusValue, "int_offset_lmd"_L1},
    Macro{"EB_SECURITY_CNT"_L1, devices, "Security Device/Extension"_L1},
    Macro{"EB_LOCAL_SECURITY_SUBIDX_OFFS"_L1, energyBusValue, "int_offset_sec"_L1},
    Macro{"EB_BATTERY_CNT"_L1, devices, "Battery"_L1},
    Macro{"EB_LOCAL_BATTERY_SUBIDX_OFFS"_L1, energyBusValue, "int_offset_bat"_L1},
    Macro{"EB_HMI_CNT"_L1, devices, "Display"_L1},
    Macro{"EB_LOCAL_HMI_SUBIDX_OFFS"_L1, energyBusValue, "int_offset_hmi"_L1},
    Macro{"EB_MANU_P_CNT"_L1, devices, "Manufacturer specific device (passive)"_L1},
    Macro{"EB_LOCAL_MANU_P_SUBIDX_OFFS"_L1, energyBusValue, "int_offset_manup"_L1},
    Macro{"EB_MANU_A_CNT"_L1, devices, "Manufacturer specific device (active)"_L1},
    Macro{"EB_LOCAL_MANU_A_SUBIDX_OFFS"_L1, energyBusValue, "int_offset_manua"_L1},
    Macro{"EB_MCU_CNT"_L1, devices, "Motor Controller Unit"_L1},
    Macro{"EB_LOCAL_MCU_SUBIDX_OFFS"_L1, energyBusValue, "int_offset_mcu"_L1},
    Macro{"EB_VOLT_CONV_CNT"_L1, devices, "Voltage Converter"_L1},
    Macro{"EB_LOCAL_VOLT_CONV_SUBIDX_OFFS"_L1, energyBusValue, "int_offset_vc"_L1},
};

constexpr std::array networkMacros{
    Macro{"EB_NETWORK_VIRTUAL_DEV_CNT"_L1, energyBusCount, "ebc_max_dev_number"_L1},
    Macro{"EB_NETWORK_BATTERY_CNT"_L1, energyBusCount, "ebc_max_bat_number"_L1},
    Macro{"EB_NETWORK_MCU_CNT"_L1, energyBusCount, "ebc_max_mcu_number"_L1},
    Macro{"EB_NETWORK_HMI_CNT"_L1, energyBusCount, "ebc_max_hmi_number"_L1},
    Macro{"EB_NETWORK_MANU_P_CNT"_L1, energyBusCount, "ebc_max_manup_number"_L1},
    Macro{"EB_NETWORK_MANU_A_CNT"_L1, energyBusCount, "ebc_max_manua_number"_L1},
    Macro{"EB_NETWORK_SECURITY_CNT"_L1, energyBusCount, "ebc_max_sec_number"_L1},
    Macro{"EB_NETWORK_VOLT_CONV_CNT"_L1, energyBusCount, "ebc_max_vc_number"_L1},
    Macro{"EB_NETWORK_LOAD_MONITORING_CNT"_L1, energyBusCount, "ebc_max_lmd_number"_L1},
    Macro{"EB_NETWORK_PC_TOOL_CNT"_L1, energyBusIsSet, "ebc_tool_supported"_L1},
    Macro{"EB_NETWORK_BATTERY_SUBIDX_OFFS"_L1, energyBusCount, "ext_start_pos_bat"_L1},
    Macro{"EB_NETWORK_SECURITY_SUBIDX_OFFS"_L1, energyBusCount, "ext_start_pos_sec"_L1},
    Macro{"EB_NETWORK_VOLT_CONV_SUBIDX_OFFS"_L1, energyBusCount, "ext_start_pos_vc"_L1},
    Macro{"EB_NETWORK_HMI_SUBIDX_OFFS"_L1, energyBusCount, "ext_start_pos_hmi"_L1},
    Macro{"EB_NETWORK_MANU_P_SUBIDX_OFFS"_L1, energyBusCount, "ext_start_pos_manup"_L1},
    Macro{"EB_NETWORK_MANU_A_SUBIDX_OFFS"_L1, energyBusCount, "ext_start_pos_manua"_L1},
    Macro{"EB_NETWORK_LOAD_MONITORING_SUBIDX_OFFS"_L1, energyBusCount, "ext_start_pos_lmd"_L1},
    Macro{"EB_NETWORK_MCU_SUBIDX_OFFS"_L1, energyBusCount, "ext_start_pos_mcu"_L1},
};

constexpr std::array energyBusBlocks{
    Block{"/* EnergyBus Defines */"_L1, deviceMacros},
    Block{""_L1, networkMacros, isController},
};

} // namespace

std::span<const Block> DefineMacros::energyBus()
{
    return energyBusBlocks;
}
