#pragma once

class Invocation;
struct ServerForm;

/// `ncx mcp --http`: serves until a signal asks for the end. The exit code; what went wrong has been told.
namespace HttpService {

int run(const Invocation &call, const ServerForm &form);

} // namespace HttpService
