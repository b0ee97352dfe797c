#pragma once

#include "generate/fileheader.h"

#include <QString>

#include <vector>

/// The closed list of places where the classic and the V4 form of the C sources differ in more than words.
///
/// One writer prints both forms; it asks `Dialect::has` at these points and nowhere else looks at the form.
enum class Point
{
    SplitTypeColumns,     ///< a description row has its data type and its specifier in columns of their own
    MappedTypeColumn,     ///< a mapping row tells the data type, not whether it is a number
    CoreDatatypeHeader,   ///< the data types come from the core's header alone
    UdsIndicationHeader,  ///< static UDS indications have a header
    CommonLinePrototypes, ///< the functions that start any line have prototypes too
    VirtualGuards,        ///< gen_vobjdict.c has guards for the memory specifier and storage classes
};

/// The words of one form of the C sources, and its points.
struct Dialect
{
    SourceForm form;
    QString core;        ///< prefix of the macro family: "CORE_" or "CO_"
    QString dataType;    ///< prefix of the data type words: "CORE_DTYPE_" or "CO_DTYPE_"
    QString unmapped;    ///< what the type column of a mapping row has where no data is mapped
    QString isoTpHeader; ///< header of the transport protocol
    std::vector<Point> points;

    bool has(Point point) const;

    static const Dialect &classic();
    static const Dialect &v4();
    static const Dialect &of(SourceForm form);
};
