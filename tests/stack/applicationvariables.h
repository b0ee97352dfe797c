#pragma once

class ObjectDataBase;
class QString;

/// The variables that a project names, which are an application's.
namespace TestSupport::ApplicationVariables {

/// Declares and defines what the application would (application_variables.h), unless the project brings its own
/// headers; and tells the walker the names (walker_variables.c).
void write(ObjectDataBase &store, bool classic, const QString &folder);

} // namespace TestSupport::ApplicationVariables
