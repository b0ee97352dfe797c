#pragma once

#include "store/objectdatabase.h"
#include "support/printing.h"
#include "support/testhome.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSqlQuery>
#include <QTemporaryDir>

/// A store with a new project in it, and a folder for files.
class StoreTest : public testing::Test
{
protected:
    StoreTest() { EXPECT_TRUE(store.createNewDataBase()); }

    QString path(const QString &name) const { return folder.filePath(name); }

    /// All rows of a select, columns joined with "|".
    QStringList rows(const QString &statement) { return rowsOf(store, statement); }

    static QStringList rowsOf(ObjectDataBase &database, const QString &statement)
    {
        QStringList result;
        const bool done = database.statements().visit({"test", statement}, {}, [&](const ResultRow &row) {
            QStringList columns;
            for (int i = 0; i < row.count(); ++i)
                columns.append(row.value(i).isNull() ? QStringLiteral("NULL") : row.text(i));
            result.append(columns.join(u'|'));
        });
        return done ? result : QStringList{QStringLiteral("failed")};
    }

    bool exec(const QString &statement)
    {
        return store.statements().execute({"test", statement, Statement::Effect::Subindices});
    }

    /// Makes a database file from statements, outside any store.
    static void makeDatabase(const QString &file, const QStringList &statements)
    {
        {
            QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("raw"));
            database.setDatabaseName(file);
            ASSERT_TRUE(database.open());
            QSqlQuery query(database);
            for (const QString &statement : statements) {
                if (!statement.trimmed().isEmpty()) {
                    ASSERT_TRUE(query.exec(statement)) << statement.toStdString();
                }
            }
        }
        QSqlDatabase::removeDatabase(QStringLiteral("raw"));
    }

    /// Saves the project, changes the file behind the store's back and opens it again.
    bool reopenAfter(const QStringList &statements)
    {
        const QString file = path(QStringLiteral("reopened.ncxp"));
        EXPECT_TRUE(store.saveDatabase(file));
        makeDatabase(file, statements);
        return store.openDataBase(file);
    }

    /// Makes an old project from the statements of a file, and opens it.
    bool openOld(const QString &name)
    {
        const QByteArray script = TestSupport::readFile(
            QStringLiteral("%1/tests/data/oldprojects/%2.sql").arg(QStringLiteral(NCX_SOURCE_DIR), name));
        makeDatabase(path(name), QString::fromUtf8(script).split(u';'));
        return store.openDataBase(path(name));
    }

    QTemporaryDir folder;
    std::shared_ptr<ObjectDataBase> sharedStore = std::make_shared<ObjectDataBase>();
    ObjectDataBase &store = *sharedStore;
};
