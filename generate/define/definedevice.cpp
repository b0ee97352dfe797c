// The sections of gen_define.h that no protocol has for its own: queues, virtual objects, hardware.

#include "generate/define/definerules.h"
#include "nodedict/canopendatatype.h"

#include <array>

using namespace Qt::StringLiterals;
using namespace DefineMacros;
using namespace DefineRules;

namespace {

using Counts = LineCounts;
using Dictionary = DefineModel::Dictionary;

QString userExtension(const DefineModel &model, Key /*key*/)
{
    return flag(model.isSet(u"user_tx_cob"_s) || model.isSet(u"user_rx_cob"_s));
}

constexpr std::array userMacros{
    Macro{"USER_TRANSMIT_MSG_CNT"_L1, count, "user_tx_cob"_L1},
    Macro{"USER_RECEIVE_MSG_CNT"_L1, count, "user_rx_cob"_L1},
    Macro{"CORE_USER_EXTENSION_SUPPORTED"_L1, userExtension},
};

constexpr std::array sortedMacros{Macro{"CORE_COB_SORTED_LIST"_L1, isSet, "sorted_coblist"_L1}};
constexpr std::array heartbeatMacros{Macro{"CO_ONE_HB_CONSUMER_COB"_L1, isSet, "only_one_hb_buffer"_L1}};

constexpr std::array queueMacros{
    Macro{"CORE_CONFIG_REC_BUFFER_CNT"_L1, allBuffers<&Counts::receiveBuffer, defaultReceiveBuffer>},
    Macro{"CORE_CONFIG_TRANS_BUFFER_CNT"_L1, allBuffers<&Counts::transmitBuffer, defaultTransmitBuffer>},
    Macro{"CORE_CANFD_SUPPORTED"_L1, isSet, "canfd_supported"_L1},
};

constexpr std::array queueBlocks{
    Block{""_L1, userMacros},
    Block{"/* Use of sorted COB list*/"_L1, sortedMacros,
          [](const DefineModel &model) { return model.isSet(u"sorted_coblist"_s); }},
    Block{""_L1, heartbeatMacros},
    Block{"/* Definition of CAN queue sizes */"_L1, queueMacros},
};

template <quint16 dataType>
QString virtuals(const DefineModel &model, Key key)
{
    return ofType<&Dictionary::virtualTypes, dataType>(model, key);
}

constexpr std::array virtualMacros{
    Macro{"CO_VIRTUAL_INDEX_CNT"_L1, dictionaryCount<&Dictionary::virtualObjects>},
    Macro{"CO_VIRTUAL_OBJECT_CNT"_L1, dictionaryCount<&Dictionary::virtualSubs>, {}, Forms::ClassicOnly},
    Macro{"CO_VIRTUAL_U8_CNT"_L1, virtuals<CAN::Unsigned8>},
    Macro{"CO_VIRTUAL_U16_CNT"_L1, virtuals<CAN::Unsigned16>},
    Macro{"CO_VIRTUAL_U32_CNT"_L1, virtuals<CAN::Unsigned32>},
    Macro{"CO_VIRTUAL_I8_CNT"_L1, virtuals<CAN::Integer8>},
    Macro{"CO_VIRTUAL_I16_CNT"_L1, virtuals<CAN::Integer16>},
    Macro{"CO_VIRTUAL_I32_CNT"_L1, virtuals<CAN::Integer32>},
    Macro{"CO_VIRTUAL_R32_CNT"_L1, virtuals<CAN::Real32>},
    Macro{"CO_VIRTUAL_U24_CNT"_L1, virtuals<CAN::Unsigned24>},
    Macro{"CO_VIRTUAL_DOMAIN_CNT"_L1, virtuals<CAN::Domain>, {}, Forms::ClassicOnly},
    Macro{"CO_VIRTUAL_OS_CNT"_L1, virtuals<CAN::OctetString>, {}, Forms::ClassicOnly},
    Macro{"CO_VIRTUAL_VS_CNT"_L1, virtuals<CAN::VisibleString>, {}, Forms::ClassicOnly},
    Macro{"CO_VOD_ASSIGN_CNT"_L1, dictionaryCount<&Dictionary::virtualObjects>},
    Macro{"CO_VOBJ_DESC_CNT"_L1, dictionaryCount<&Dictionary::virtualSubs>},
};

constexpr std::array virtualBlocks{Block{"/* number of virtual objects */"_L1, virtualMacros}};

constexpr std::array targetMacros{
    TargetMacro{"CORE_TIMER_INTERVAL"_L1, "co_timer_interval"_L1, "timer"_L1, false},
    TargetMacro{"CORE_BIG_ENDIAN"_L1, "endian"_L1, "endianess"_L1, true},
    TargetMacro{"CORE_DRV_FILTER"_L1, "drv_filter"_L1, "fullcan"_L1, true},
    TargetMacro{"CORE_DRV_GROUP_FILTER"_L1, "drv_group_filter"_L1, "groupfilter"_L1, true},
};

/// The setting as it is: a number or the name of a macro.
QString asItStands(const DefineModel &model, Key key)
{
    return model.general(key).trimmed();
}

constexpr std::array hardwareMacros{Macro{"CO_SRDO_TIMER_INTERVAL"_L1, asItStands, "co_srdo_interval"_L1}};
constexpr std::array hardwareBlocks{Block{""_L1, hardwareMacros}};

} // namespace

std::span<const Block> DefineMacros::queues()
{
    return queueBlocks;
}

std::span<const Block> DefineMacros::virtualObjects()
{
    return virtualBlocks;
}

std::span<const TargetMacro> DefineMacros::targets()
{
    return targetMacros;
}

std::span<const Block> DefineMacros::hardware()
{
    return hardwareBlocks;
}
