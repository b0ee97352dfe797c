#pragma once

#include "generate/define/definemodel.h"

#include <QStringList>

#include <span>
#include <utility>

struct Dialect;

/// The macros of gen_define.h as tables in the order of the file: for each its name and where its value comes from.
namespace DefineMacros {

enum class Forms
{
    Both,
    V4Only,
    ClassicOnly
};

/// One macro, or one of a family that differs by the number in its name.
struct Macro
{
    /// Name in the V4 form, %1 the number of a family. The classic form has its own prefix for the shared core.
    QLatin1StringView name;
    /// Text behind the name; empty if the macro is left out.
    QString (*value)(const DefineModel &, QLatin1StringView key) = nullptr;
    /// What the value is read from, where that is one setting.
    QLatin1StringView key{};
    Forms forms = Forms::Both;
    char16_t separator = u'\t';
    /// In place of `value`: the numbers and values of a family.
    std::vector<std::pair<quint32, QString>> (*family)(const DefineModel &) = nullptr;

    bool existsIn(SourceForm form) const;
    /// With %1 for a family.
    QString nameIn(const Dialect &dialect) const;
};

/// Macros that belong together, under a comment.
struct Block
{
    QLatin1StringView comment; ///< with its empty lines; empty for none
    std::span<const Macro> macros;
    /// Without it the block is always there, its comment even if all of its macros are left out.
    bool (*applies)(const DefineModel &) = nullptr;
    /// Its macros are written even if an earlier section has defined them; their values are the same.
    bool repeats = false;
};

std::span<const Block> head();
std::span<const Block> canOpen();
std::span<const Block> energyBus();
std::span<const Block> events();
std::span<const Block> queues();
std::span<const Block> j1939();
std::span<const Block> rawCan();
/// What the bootloader needs of the raw CAN section.
std::span<const Block> bufferCounts();
std::span<const Block> diagnostics();
std::span<const Block> virtualObjects();
std::span<const Block> application();
std::span<const Block> cobDefinitions();

/// A macro of a target, from a setting of the project's only target or of one of several (`targetsettings_%1_` and the
/// suffix).
struct TargetMacro
{
    QLatin1StringView name;
    QLatin1StringView key;
    QLatin1StringView suffix;
    bool isSwitch;
};

std::span<const TargetMacro> targets();
std::span<const Block> hardware();

/// The classic form's name of a macro, or the V4 form's as it is.
QString nameIn(QLatin1StringView name, const Dialect &dialect);

} // namespace DefineMacros
