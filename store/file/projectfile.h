#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class ProjectTables;

/// The life of a project: its working copy, the open, the save (projectfile.cpp, projectsave.cpp).
class ProjectFile
{
public:
    /// `wrongTool` is called when an open refuses a file that another tool saved.
    ProjectFile(ProjectTables &tables, std::function<void()> wrongTool);
    /// Closes, and removes all working copies.
    ~ProjectFile();
    Q_DISABLE_COPY_MOVE(ProjectFile)

    [[nodiscard]] bool create();
    /// Opens a database file.
    [[nodiscard]] bool open(const QString &path);
    /// While on, opens do without what only a later save needs: the test of the hash and a compact file.
    void setOnlyRead(bool on) { onlyRead_ = on; }
    void close();

    [[nodiscard]] bool saveAsSql(const QString &path);
    /// What a save does first: removes the lines that never reach a file.
    void removeScratchLines();
    /// Writes the rows that tell who saved the project, and the hash over all that.
    void writeIdentity();
    /// True, with the reason told, if there is nothing to save or saving would replace a good file by a broken one.
    bool refusesSave();
    void tellUnwritable(const QString &path);

    QString computeFileHash();
    void verifyFileHash();

    QString path() const { return path_; }
    void setPath(const QString &path) { path_ = path; }
    QString lastError() const { return lastError_; }
    void clearError() { lastError_.clear(); }
    bool isTampered() const { return tampered_; }

private:
    QString makeWorkingCopy(const QString &source);
    bool connectTo(const QString &workingCopy);
    void applyPragmas(int cachePages);
    bool fillNew();
    bool createGlobalTables();
    bool openWorkingCopy(const QString &copy);
    bool hasLines();
    bool savedByMatchingTool();
    void markWizardProfile();
    bool copyWorkingCopyTo(const QString &path);

    ProjectTables &tables_;
    std::function<void()> wrongTool_;
    QStringList workingCopies_;
    QString path_;
    QString lastError_;
    bool tampered_ = false;
    bool onlyRead_ = false;
};
