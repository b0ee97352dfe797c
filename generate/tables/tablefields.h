#pragma once

#include "generate/base/utf8sink.h"
#include "generate/model/linedictionary.h"

#include <type_traits>

/// Fields of the tables of objects that the program writes.
namespace TableFields {

/// The text as a field: in double quotes where it holds a comma, a quote or a line break, quotes in it written twice
/// (RFC 4180).
QString field(const QString &text);

/// A value in the form of its data type. Integers are decimal: "0x10" becomes "16", and of a signed type a hexadecimal
/// number of its full width is a two's complement, so that 0xff of INTEGER8 is -1. The number of a node-relative value
/// is treated alike, "$NODEID+0x200" becomes "$NODEID+512". Texts, and values of types without a decimal form, stay as
/// they are. What is no value of the type, and of an unsigned type one below 0, is left empty.
QString value(quint16 dataType, const QString &text);

/// "yes" or "no".
QLatin1StringView flag(bool on);

/// "ManagedVariable", "ManagedConst", "Variable" or "VirtualObject"; empty for another code.
QLatin1StringView implementation(quint8 code);

/// A column of a table: what it prints of a subindex, and of the head row of an ARRAY or RECORD where a table has one;
/// each a lambda that captures nothing.
struct Column
{
    template <typename Field>
    requires std::is_empty_v<Field>
    constexpr Column(QLatin1StringView columnName, Field /*field*/)
        : name(columnName)
        , print([](Utf8Sink &sink, const LineObject &object, const StoreRecords::SubEntry &sub) {
            sink << Field()(object, sub);
        })
    {
    }
    template <typename Field, typename HeadField>
    constexpr Column(QLatin1StringView columnName, Field ofSubindex, HeadField /*ofHead*/)
        : Column(columnName, ofSubindex)
    {
        printHead = [](Utf8Sink &sink, const LineObject &object) { sink << HeadField()(object); };
    }

    QLatin1StringView name;
    void (*print)(Utf8Sink &, const LineObject &, const StoreRecords::SubEntry &);
    void (*printHead)(Utf8Sink &, const LineObject &) = nullptr; ///< none for an empty field
};

} // namespace TableFields
