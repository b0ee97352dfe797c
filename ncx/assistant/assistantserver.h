#pragma once

#include "mcp/server/serverform.h"

class Roots;

/// The server of `ncx mcp` as data, for clients that work inside of these folders.
ServerForm assistantServer(const Roots &roots);
