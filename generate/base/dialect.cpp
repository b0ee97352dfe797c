#include "generate/base/dialect.h"

#include <algorithm>

using namespace Qt::StringLiterals;

bool Dialect::has(Point point) const
{
    return std::ranges::find(points, point) != points.end();
}

const Dialect &Dialect::classic()
{
    static const Dialect dialect{
        .form = SourceForm::Classic,
        .core = u"CO_"_s,
        .dataType = u"CO_DTYPE_"_s,
        .unmapped = u"CO_FALSE"_s,
        .isoTpHeader = u"iso_tp.h"_s,
        .line = u"CO_"_s,
        .lineParameter = u"UNSIGNED8 CO_LINE, "_s,
        .protocol = u"MP_PROT_TYPE_"_s,
        .protocolType = u"MP_PROTOCOL_TYPE_T"_s,
        .commonInitType = u"CO_COMMON_INIT_VAL_T    "_s,
        .stackInit = u"commonStackInit"_s,
        .dataTypeHeader = u"co_datatype.h"_s,
        .safetyBuffer = u"pBuffer"_s,
        .parameterError = u"RET_INVALID_PARAMETER"_s,
        .points = {Point::ReservedNameField, Point::FixedUnpacking, Point::FormerServiceValues, Point::VirtualGuards},
    };
    return dialect;
}

const Dialect &Dialect::v4()
{
    static const Dialect dialect{
        .form = SourceForm::V4,
        .core = u"CORE_"_s,
        .dataType = u"CORE_DTYPE_"_s,
        .unmapped = u"CORE_DTYPE_NON_NUMERIC"_s,
        .isoTpHeader = u"core_isotp.h"_s,
        .line = u"CAN_"_s,
        .lineParameter = u"CAN_LINE_TYPE CAN_LINE, "_s,
        .protocol = u"CORE_PROT_TYPE_"_s,
        .protocolType = u"CORE_PROTOCOL_TYPE_T"_s,
        .commonInitType = u"CORE_COMMON_INIT_VAL_T "_s,
        .stackInit = u"coreStackInit"_s,
        .dataTypeHeader = u"core_datatype.h"_s,
        .safetyBuffer = u"pData"_s,
        .parameterError = u"RET_PARAMETER_INVALID"_s,
        .points = {Point::SplitTypeColumns, Point::MappedTypeColumn, Point::UdsIndicationHeader, Point::CoreCommonInit,
                   Point::LinePrototypesOnly, Point::LoadIndication, Point::PointerTables, Point::ReceiveConfigs,
                   Point::SafetySenders, Point::BootloaderBuffers, Point::UdsIndications},
    };
    return dialect;
}

const Dialect &Dialect::of(SourceForm form)
{
    return form == SourceForm::V4 ? v4() : classic();
}
