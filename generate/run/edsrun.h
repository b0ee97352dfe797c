#pragma once

#include "generate/run/runtable.h"

/// Writes the device descriptions of a CANopen line: one for each EDS tag, and where the project has CAN FD an extended
/// and then a classical one for each.
RunFlow generateEdsFiles(GenerationRun &run, quint8 line);
