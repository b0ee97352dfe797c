#pragma once

#include <QString>

/// Makes gen_objdict.cpp of the folder's gen_objdict.c, and where there is a gen_user.h gen_user.hpp of that, with C
/// linkage for its functions: for projects that are built by a C++ compiler. False if a file could not be written.
bool writeCppCopies(const QString &folder);
