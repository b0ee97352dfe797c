#pragma once

#include "ncx/device/frame.h"

#include <QStringList>

/// A frame as a data sheet draws it: a row for each byte, bit 7 on the left, with a letter for each field where its
/// name does not fit; and below it a table of the fields. The width is that of the terminal.
QStringList drawing(const Frame &frame, int width);
