#pragma once

#include "generate/model/dictionarytables.h"
#include "nodedict/cohelper.h"

/// The steps of `collectDictionaryTables`, in the order in which each finds what it reads.
namespace DictionaryCollect {

/// Elements of the arrays of managed variables.
void managedVariables(DictionaryTables &tables);
/// The pool of all default values and limits.
void constants(DictionaryTables &tables);
/// Places of the string defaults.
void stringDefaults(DictionaryTables &tables);
/// The tables of variables that the application owns.
void applicationVariables(DictionaryTables &tables);
/// Rows of od_description and od_assign, and the numbers of both.
void rows(DictionaryTables &tables);

/// The address of a variable of the application: an expression, which has a "(", as it stands; "NULL" where there is no
/// name.
QString variableAddress(const QString &name);
/// The limits that the description of a subindex tells; none where it tells neither, whatever its flag says.
std::optional<COHelper::Limits> declaredLimits(const StoreRecords::SubIndexData &data);
/// "CO_ODTYPE_VAR" and so on; "invalid" for a code that no object of a dictionary may have.
QLatin1StringView objectTypeWord(quint32 objectType);
/// The end of the specifier of a description row; `staticSrdo`: an SRDO carries the subindex.
QLatin1StringView specifier(const StoreRecords::SubEntry &sub, bool staticSrdo);
/// The attributes of a row up to the PDO mapping.
Attributes accessAttributes(const StoreRecords::SubIndexData &data);

} // namespace DictionaryCollect
