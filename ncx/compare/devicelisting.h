#pragma once

#include "ncx/compare/compareddevice.h"

#include <functional>

/// All that a project says of its device, for programs that compare line by line: a line for each part in the order of
/// lines and addresses, and under it, indented, a line for each fact that is not the usual one. The same device gives
/// the same text, whatever the form of its project.
void listDevice(ComparedDevice &device, const QList<quint8> &lines, const std::function<void(const QString &)> &take);
