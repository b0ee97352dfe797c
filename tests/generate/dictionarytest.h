#pragma once

#include "generate/stack/dictionarytables.h"
#include "nodedict/canopendatatype.h"
#include "support/projectbuilder.h"

/// What tests of the object dictionary tables share.
namespace DictionaryTest {

using TestSupport::ProjectBuilder;
using Sub = StoreRecords::SubIndexData;

inline DictionaryTables collected(const ProjectBuilder &project, const DictionaryOptions &options = {})
{
    return collectDictionaryTables(*project.store(), options);
}

/// Adds a subindex of a type, implementation and default value.
inline void add(ProjectBuilder &project, quint8 subindex, quint16 dataType, quint8 implementation,
                const QString &value = {}, const QString &variable = {}, const std::function<void(Sub &)> &change = {})
{
    project.sub(subindex, QStringLiteral("any"), [&](Sub &sub) {
        sub.datatype = dataType;
        sub.implementation = implementation;
        sub.defaultvalue = value;
        sub.varname = variable;
        if (change)
            change(sub);
    });
}

} // namespace DictionaryTest
