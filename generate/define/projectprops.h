#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The property files by which a C# wrapper of the compiled stack is built with the same macros: gen_define.props,
/// made from gen_define.h, and the Directory.Build.props that includes it.
namespace ProjectProps {

/// The macros that a header defines, each once, in the order of their first definition.
QStringList macroNames(const QByteArray &header);

/// Writes the files into the folder. Without a gen_define.h there, gen_define.props is left out. False if a file cannot
/// be written, which the log tells.
bool write(const QString &folder);

} // namespace ProjectProps
