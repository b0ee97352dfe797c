#include "stack/applicationvariables.h"

#include "store/objectdatabase.h"
#include "support/testhome.h"
#include "texttools/helper.h"

#include <QMap>
#include <QRegularExpression>
#include <QSet>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

QString cType(quint16 dataType)
{
    static const QMap<quint16, QString> names{
        {1, u"UNSIGNED8"_s},   {2, u"INTEGER8"_s},    {3, u"INTEGER16"_s},   {4, u"INTEGER32"_s},
        {5, u"UNSIGNED8"_s},   {6, u"UNSIGNED16"_s},  {7, u"UNSIGNED32"_s},  {8, u"REAL32"_s},
        {9, u"char"_s},        {10, u"UNSIGNED8"_s},  {12, u"UNSIGNED48"_s}, {16, u"INTEGER24"_s},
        {22, u"UNSIGNED24"_s}, {24, u"UNSIGNED40"_s}, {25, u"UNSIGNED48"_s}, {27, u"UNSIGNED64"_s},
        {100, u"UNSIGNED8"_s}, {101, u"UNSIGNED8"_s}, {102, u"UNSIGNED8"_s}, {103, u"UNSIGNED8"_s},
        {104, u"UNSIGNED8"_s}, {105, u"UNSIGNED8"_s}, {124, u"char"_s},
    };
    // Of what has no array the sources take the address alone.
    return names.value(dataType, u"UNSIGNED64"_s);
}

bool isString(quint16 dataType)
{
    return dataType == 9 || dataType == 10 || dataType == 124;
}

/// A variable of the application; `elements` is 0 for a single value.
struct Variable
{
    QString type;
    quint32 elements = 0;
};

/// The variables that a project names, and their names as the tables have them.
struct Variables
{
    QMap<QString, Variable> declared;
    QMap<QString, bool> names; ///< true for a text

    void add(const QString &name, const ObjectDataBase::SUBINDEX_DATA_T &sub)
    {
        static const QRegularExpression element(u"^([A-Za-z_]\\w*)\\[(\\d+)\\]$"_s);
        static const QRegularExpression plain(u"^[A-Za-z_]\\w*$"_s);
        const QString type = cType(sub.datatype);
        if (type.isEmpty() || name.isEmpty())
            return;
        names.insert(name, isString(sub.datatype));
        if (const auto match = element.match(name); match.hasMatch()) {
            Variable &variable = declared[match.captured(1)];
            variable.type = type;
            variable.elements = std::max(variable.elements, match.captured(2).toUInt() + 1);
        } else if (plain.match(name).hasMatch()) {
            declared.insert(name, {type, isString(sub.datatype) ? std::max(sub.size, 1U) : 0});
        }
    }
};

/// Line, index and subindex, as one number, of the objects whose data belong to the safety module.
QSet<quint32> staticSafetyData(ObjectDataBase &store)
{
    QSet<quint32> keys;
    if (store.getGeneralSetting(u"static_srdo_data"_s).toInt() != 1)
        return keys;
    for (const quint8 line : store.getNodeList()) {
        for (const quint16 index : store.getIndexList(line, 0x1380, 0x13B0)) {
            for (const quint8 subindex : store.getSubIndexList(line, index, 1))
                keys.insert(quint32{line} << 24 |
                            store.getSubIndexDefaultValue(line, index, subindex).toUInt(nullptr, 0) >> 8);
        }
    }
    return keys;
}

Variables variablesOf(ObjectDataBase &store)
{
    Variables variables;
    const QSet<quint32> safetyData = staticSafetyData(store);
    for (const quint8 line : store.getNodeList()) {
        for (const auto &key : store.findSubIndices(line, u"implementation"_s, u"2"_s)) {
            if (key.index < 0x1000 || safetyData.contains(quint32{line} << 24 | quint32{key.index} << 8 | key.subindex))
                continue;
            if (const auto sub = store.getSubIndex(line, key.index, key.subindex))
                variables.add(Helper::substituteVariables(sub->varname, key.index, key.subindex, line), *sub);
        }
    }
    return variables;
}

QString declaration(const QString &name, const Variable &variable)
{
    return variable.type + u' ' + name +
           (variable.elements > 0 ? u'[' + QString::number(variable.elements) + u']' : QString());
}

} // namespace

void ApplicationVariables::write(ObjectDataBase &store, bool classic, const QString &folder)
{
    const Variables variables = variablesOf(store);
    QString header = u"#include <core_datatype.h>\n"_s;
    QString source = u"#include <stddef.h>\n"_s;
    QStringList ownHeaders = store.getGeneralSetting(u"applicationheader"_s).split(u' ', Qt::SkipEmptyParts);
    if (ownHeaders.isEmpty()) {
        for (auto it = variables.declared.cbegin(); it != variables.declared.cend(); ++it) {
            header += u"extern "_s + declaration(it.key(), it.value()) + u";\n"_s;
            source += declaration(it.key(), it.value()) + u";\n"_s;
        }
        // A function that the V4 form of gen_indication.h leaves to the application.
        if (const QString function = store.getGeneralSetting(u"fct_manager"_s); !function.isEmpty() && !classic)
            header +=
                u"#include <co_canopen.h>\nextern __typeof__(*(CO_EVENT_MANAGER_BOOTUP_T)0) %1;\n"_s.arg(function);
        for (const QString &function : store.getGeneralSetting(u"co_node_id_fct"_s).split(u',', Qt::SkipEmptyParts))
            header += u"UNSIGNED8 "_s + function.trimmed() + u"(STACK_LINE_ONLY);\n"_s;
    }
    for (const QString &own : ownHeaders)
        source += u"#include \""_s + own + u"\"\n"_s;
    source += u"typedef struct { const char *name; const void *pVar; } VARIABLE_T;\n"
              "extern const VARIABLE_T walkerVariables[];\nconst VARIABLE_T walkerVariables[] = {\n"_s;
    for (auto it = variables.names.cbegin(); it != variables.names.cend(); ++it) {
        const QString address = it.value() ? u"&(%1[0])"_s : it.key().contains(u'(') ? u"%1"_s : u"&(%1)"_s;
        source += u"\t{ \""_s + it.key() + u"\", (const void *)"_s + address.arg(it.key()) + u" },\n"_s;
    }
    source += u"\t{ NULL, NULL }\n};\n"_s;
    writeFile(folder + u"/application_variables.h"_s, header.toUtf8());
    writeFile(folder + u"/walker_variables.c"_s, source.toUtf8());
}
