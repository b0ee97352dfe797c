#pragma once

#include "check/frame/checkrules.h"
#include "support/projectscript.h"

#include <QTemporaryDir>

#include <memory>
#include <ostream>

/// A project and what the check is to say about it, as tests/data/check/ tells them; see the README there.
struct RuleCase
{
    QString file;
    int lineNumber = 0;
    QString rule; ///< that speaks, or several; "-" for none
    QStringList commands;
    QStringList messages;

    /// A name among the tests: the file, the line and the first rule.
    QString name() const;
    /// The rules that speak, none for a case that finds nothing.
    QStringList rules() const { return rule == u"-" ? QStringList() : rule.split(QStringLiteral(", ")); }
    QString place() const { return QStringLiteral("%1:%2 %3").arg(file).arg(lineNumber).arg(rule); }
};

inline void PrintTo(const RuleCase &ruleCase, std::ostream *out)
{
    *out << ruleCase.name().toStdString();
}

/// All cases of all files but the clean projects that they start from, whose commands each of them holds in front.
QList<RuleCase> ruleCases();

/// A project built from commands, in a folder of its own.
class CaseProject
{
public:
    explicit CaseProject(const QStringList &commands);
    ~CaseProject();
    Q_DISABLE_COPY_MOVE(CaseProject)

    struct Outcome
    {
        QStringList messages;
        QStringList rules; ///< one per message
        qint32 errors = 0;
        bool corrected = false;
        QString summary;
    };
    /// The whole check, as a run does it.
    Outcome check();

    const std::shared_ptr<ObjectDataBase> &store() const { return script_.store(); }
    /// Where the files are that the commands write.
    QString folder() const { return folder_.path(); }

private:
    QTemporaryDir folder_;
    TestSupport::ProjectScript script_;
};
