#pragma once

#include "store/objectdatabase.h"

#include <functional>

/// Something that is done to a project.
using Edit = std::function<void(ObjectDataBase &)>;

/// Draws edits of these lines, from so few objects, messages and values that they meet each other. The same seed draws
/// the same edits.
std::function<Edit()> randomEdits(unsigned seed, const QList<quint8> &lines);
