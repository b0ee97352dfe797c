// What gen_define.h tells of the program that wrote it and of itself.

#include "generate/define/definerules.h"
#include "texttools/numbertext.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;
using namespace DefineMacros;
using namespace DefineRules;

namespace {

constexpr char bootloader[] = "uds_bl_setting";

QString toolName(const DefineModel & /*model*/, Key /*key*/)
{
    return QCoreApplication::applicationName().toUpper().replace(u' ', u'_');
}

QString toolVersion(const DefineModel & /*model*/, Key /*key*/)
{
    static const QRegularExpression number(u"^[0-9]+"_s);
    const QStringList parts = QCoreApplication::applicationVersion().split(u'.');
    QString digits;
    for (qsizetype i = 0; i < 3; ++i)
        digits += u"%1"_s.arg(NumberText::decimal(number.match(parts.value(i)).captured()).value_or(0), 2, 10, '0'_L1);
    return u"0x%1ul"_s.arg(digits);
}

/// The version of the UDS structures is a byte, and never 0.
QString udsStructVersion(const DefineModel &model, Key key)
{
    if (!model.isSet(u"udsserver_supported"_s) && !model.isSet(u"udsclient_supported"_s))
        return {};
    return decimal(std::max<quint32>(model.number(key) & 0xFF, 1));
}

template <bool LineProtocols::*protocol, quint32 version>
QString structVersion(const DefineModel &model, Key /*key*/)
{
    return model.hasLine(protocol) ? decimal(version) : QString();
}

QString commonStructVersion(const DefineModel & /*model*/, Key /*key*/)
{
    return decimal(1);
}

QString rawCanStructVersion(const DefineModel &model, Key key)
{
    return model.isSet(QLatin1StringView(bootloader)) ? QString()
                                                      : structVersion<&LineProtocols::rawCan, 4>(model, key);
}

constexpr std::array toolMacros{
    Macro{"GEN_TOOL_NAME"_L1, toolName},
    Macro{"GEN_TOOL_VERSION"_L1, toolVersion},
};

constexpr std::array versionMacros{
    Macro{"GEN_COMMON_INIT_STRUCT_VERSION"_L1, commonStructVersion},
    Macro{"GEN_UDS_INIT_STRUCT_VERSION"_L1, udsStructVersion, "udsserver_version"_L1},
    Macro{"GEN_CANOPEN_INIT_STRUCT_VERSION"_L1, structVersion<&LineProtocols::canOpen, 5>},
    Macro{"GEN_J1939_INIT_STRUCT_VERSION"_L1, structVersion<&LineProtocols::j1939, 5>},
    Macro{"GEN_RAWCAN_INIT_STRUCT_VERSION"_L1, rawCanStructVersion},
};

constexpr std::array headBlocks{
    Block{"/* some information about the tool that has generated this file */"_L1, toolMacros},
    Block{"/* init struct versions */"_L1, versionMacros},
};

QString generationCount(const DefineModel &model, Key key)
{
    return model.isSet(key) ? Code::dec(quint64{model.options.formerGenerations} + 1) + u"ul"_s : QString();
}

constexpr std::array applicationMacros{
    Macro{"GEN_GENERATION_COUNT"_L1, generationCount, "generate_generation_counter"_L1},
    Macro{"GEN_OVERWRITE_PREDEF_CONN_SET"_L1, isSet, "overwrite_predef"_L1, Forms::V4Only},
};

constexpr std::array applicationBlocks{Block{""_L1, applicationMacros}};

} // namespace

std::span<const Block> DefineMacros::head()
{
    return headBlocks;
}

std::span<const Block> DefineMacros::application()
{
    return applicationBlocks;
}
