#include "generate/common/startupstatements.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"

void StartUpStatements::call(const QString &indent, const QString &call) const
{
    out_(u"${IN}retVal = ${CALL};", {{"IN", indent}, {"CALL", call}});
    // The test has blanks before it, whatever the call has.
    const QString blanks(4, u' ');
    check(indent.size() < blanks.size() ? blanks : indent);
}

void StartUpStatements::check(const QString &indent) const
{
    out_(uR"(
        ${IN}if (retVal != RET_OK) {
        ${IN}    return(retVal);
        ${IN}}
        ${IN}${CORE}HANDLE_WATCHDOG
        )",
         {{"IN", indent}, {"CORE", dialect_.core}});
}

void StartUpStatements::guarded(const QString &macro, const std::function<void()> &write) const
{
    out_(u"#ifdef ${MACRO}", {{"MACRO", macro}});
    write();
    out_(u"#endif /* ${MACRO} */", {{"MACRO", macro}});
}

void StartUpStatements::modes(const QString &indent, const QString &step, const QStringList &structures,
                              const QStringList &lines) const
{
    out_(u"${IN}if (pModes != NULL) {", {{"IN", indent}});
    for (const QString &line : lines) {
        for (const QString &structure : structures)
            out_(u"${IN}${STEP}${STRUCTURE}.fdMode[${LINE}] = pModes[${LINE}];",
                 {{"IN", indent}, {"STEP", step}, {"STRUCTURE", structure}, {"LINE", line}});
    }
    out_(u"${IN}}", {{"IN", indent}});
}
