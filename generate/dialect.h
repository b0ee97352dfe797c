#pragma once

#include "generate/fileheader.h"

#include <QString>

#include <vector>

/// The closed list of places where the classic and the V4 form of the C sources differ in more than words.
///
/// One writer prints both forms; it asks `Dialect::has` at these points and nowhere else looks at the form.
enum class Point
{
    SplitTypeColumns, ///< a description row has its data type and its specifier in columns of their own
    UdsIndications,   ///< functions of the UDS server can be named at compile time
};

/// The words of one form of the C sources, and its points.
struct Dialect
{
    SourceForm form;
    QString core;          ///< prefix of the macro family: "CORE_" or "CO_"
    QString lineParameter; ///< what an indication's parameters begin with in a project of several lines
    std::vector<Point> points;

    bool has(Point point) const;

    static const Dialect &classic();
    static const Dialect &v4();
    static const Dialect &of(SourceForm form);
};
