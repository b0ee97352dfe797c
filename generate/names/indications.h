#pragma once

#include "generate/base/fileheader.h"

#include <QString>

#include <span>

class ObjectDataBase;
struct Dialect;

/// The events of the stack that an application can serve by functions named at compile time, as tables in the order of
/// the generated text. The name of a function is the value of a setting; without a name the event has no function.
namespace Indications {

/// One event. The texts are those of the V4 form; `inForm` gives them in the words of another.
///
/// What the classic form passes one by one where V4 passes a structure stands in `classicParameters`; empty if the
/// parameters are the same but for the words.
struct Event
{
    QLatin1StringView key; ///< setting with the function's name
    QLatin1StringView result;
    QLatin1StringView parameters; ///< empty if the V4 form has no prototype
    QLatin1StringView pointerType;
    QLatin1StringView pointerName;
    QLatin1StringView classicParameters{};
    bool classicOnly = false;

    bool existsIn(SourceForm form) const { return form == SourceForm::Classic || !classicOnly; }
    /// Empty if the form has no prototype, which is the application's to declare then.
    QString parametersIn(const Dialect &dialect) const;
};

/// An event of the UDS server (ISO 14229-1), which only the V4 form has. Its text stands between `#if` and `#endif` for
/// the guard, the macro of gen_define.h.
struct UdsEvent
{
    QLatin1StringView key;
    QLatin1StringView guard;
    QLatin1StringView result;
    QLatin1StringView parameters;
    QLatin1StringView pointerType;
    QLatin1StringView pointerName;
};

std::span<const Event> canOpenEvents();
std::span<const Event> usdoServerEvents();
std::span<const Event> usdoClientEvents();
std::span<const UdsEvent> udsEvents();

/// The words of the dialect in place of those of the V4 form.
QString inForm(QLatin1StringView text, const Dialect &dialect);

/// The function that serves an event, without the blanks around it; empty if there is none.
QString functionOf(ObjectDataBase &store, QLatin1StringView key);
/// Some line has the USDO service (CiA 1301): else its events have no functions.
bool hasUsdoServer(ObjectDataBase &store);
bool hasUsdoClient(ObjectDataBase &store);
bool hasUdsEvents(ObjectDataBase &store);
bool namesUdsFunction(ObjectDataBase &store);

} // namespace Indications
