#pragma once

#include <QString>

class CodeWriter;

/// The text of gen_user.h: functions that an application may write itself. `multiLine` adds that of one line.
void writeUserHeader(CodeWriter &out, const QString &baseName, bool multiLine);

/// Writes gen_user.h into the folder, or, unless it is `wanted`, removes it from there. What went wrong, or nothing.
QString updateUserHeader(const QString &folder, const QString &baseName, bool wanted, bool multiLine);
