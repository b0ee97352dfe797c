#include "store/text/textproject.h"

#include "store/file/projectfile.h"
#include "store/statements/transaction.h"
#include "store/tables/projecttables.h"
#include "store/text/databasetextconverter.h"

bool TextProject::open(ProjectFile &file, ProjectTables &tables, const QString &path)
{
    file.clearError();
    file.setPath({});
    if (!file.create())
        return false;
    file.setPath(path);
    DatabaseTextConverter converter;
    converter.setStore(&tables);
    converter.setInputFile(path);
    TransactionScope transaction(tables.context.statements, TransactionScope::Kind::Batch);
    const bool converted = converter.convertTextToSql();
    if (!transaction.commit() || !converted)
        return false;
    file.verifyFileHash();
    tables.context.notify(StoreRecords::Change::ProjectReplaced);
    return true;
}

bool TextProject::save(ProjectFile &file, ProjectTables &tables, const QString &path)
{
    if (!tables.context.statements.isOpen())
        return !file.refusesSave();
    DatabaseTextConverter converter;
    converter.setStore(&tables);
    converter.setOutputFile(path);
    const TransactionScope transaction(tables.context.statements, TransactionScope::Kind::Batch);
    file.removeScratchLines();
    // The hash is that of the text's own values, so that a second save writes the same one.
    converter.replaceNulls();
    file.writeIdentity();
    file.setPath(path);
    if (file.refusesSave())
        return true;
    converter.convertSqlToText();
    if (converter.writeFailed())
        file.tellUnwritable(path);
    return true;
}
