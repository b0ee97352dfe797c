#include "generate/dialect.h"

#include <algorithm>

using namespace Qt::StringLiterals;

bool Dialect::has(Point point) const
{
    return std::ranges::find(points, point) != points.end();
}

const Dialect &Dialect::classic()
{
    static const Dialect dialect{
        .form = SourceForm::Classic, .core = u"CO_"_s, .lineParameter = u"UNSIGNED8 CO_LINE, "_s, .points = {}};
    return dialect;
}

const Dialect &Dialect::v4()
{
    static const Dialect dialect{
        .form = SourceForm::V4,
        .core = u"CORE_"_s,
        .lineParameter = u"CAN_LINE_TYPE CAN_LINE, "_s,
        .points = {Point::SplitTypeColumns, Point::UdsIndications},
    };
    return dialect;
}

const Dialect &Dialect::of(SourceForm form)
{
    return form == SourceForm::V4 ? v4() : classic();
}
