#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <deque>
#include <memory>
#include <vector>

class Statements;
struct sqlite3_value;

/// What has been written to a working copy, step by step, so that steps can be taken back and made again. A step costs
/// what it touches: SQLite tells of each row before it is written, whichever statement does it.
///
/// Tables that a step makes go with it and come again. Those that it drops come back with the rows that were deleted
/// one by one before, so who drops a table empties it first.
class RowJournal
{
public:
    /// Of older steps than that nothing is kept.
    static constexpr std::size_t mostSteps = 200;

    /// The statements' file is the one that is open now; a journal does not outlive it.
    explicit RowJournal(Statements &statements);
    ~RowJournal();
    Q_DISABLE_COPY_MOVE(RowJournal)

    /// Begins a step.
    void begin();
    /// True if rows have been written since the step's begin.
    bool hasNoted() const { return !step_.changes.empty(); }
    /// Ends the step and keeps it if something was written, which is returned. What had been taken back before cannot
    /// be made again then. The name is for people.
    bool end(const QString &name);
    /// Ends the step that was rolled back.
    void drop();

    std::size_t undoable() const { return done_.size(); }
    std::size_t redoable() const { return undone_.size(); }
    /// Takes the last step back, or makes the last one again that was taken back. Its name; null if there is none, or
    /// it could not be done, and then nothing is changed.
    QString undo();
    QString redo();

private:
    struct Free
    {
        void operator()(sqlite3_value *value) const;
    };
    using Row = std::vector<std::unique_ptr<sqlite3_value, Free>>;
    /// A row before and after; an inserted one has no before, a deleted one no after.
    struct Change
    {
        QByteArray table;
        qint64 keyBefore = 0;
        qint64 keyAfter = 0;
        Row before = {};
        Row after = {};
    };
    using Schema = QMap<QString, QString>; ///< how a table is made, by its name
    struct Step
    {
        QString name = {};
        std::vector<Change> changes = {};
        Schema made = {};
        Schema dropped = {};
    };

    void listen(bool on);
    void note(int operation, const char *table, qint64 keyBefore, qint64 keyAfter);
    Schema schema();
    bool apply(const Step &step, bool back);
    bool put(const QByteArray &table, qint64 keyFrom, const Row &from, qint64 keyTo, const Row &to);
    bool execute(const QByteArray &text, const Row &row, std::initializer_list<qint64> keys);
    bool executeAll(const Schema &tables, bool make);
    QByteArrayList columns(const QByteArray &table);

    Statements &statements_;
    Step step_;
    Schema schema_; ///< before the step
    std::deque<Step> done_;
    std::vector<Step> undone_;
};
