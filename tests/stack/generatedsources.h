#pragma once

#include <QMap>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

class ObjectDataBase;

namespace TestSupport {

/// The C sources of a project: generated, compiled against the headers of this folder, and linked with the walker.
class GeneratedSources
{
public:
    /// `classic` selects the classic form of the sources, as a modifier file does.
    explicit GeneratedSources(bool classic = false);
    ~GeneratedSources();
    Q_DISABLE_COPY_MOVE(GeneratedSources)

    /// Copies the files of a folder with one project, opens that, and imports what its `args` name. False on failure.
    bool openFolder(const QString &folder);
    /// Opens a project file in place.
    bool openProject(const QString &path);
    bool importFile(const QString &path);
    /// Runs all generators, whatever the model check says.
    bool generate();

    ObjectDataBase &store() const;
    bool isClassic() const { return classic_; }
    QString folder() const { return folder_.path(); }
    bool has(const QString &fileName) const;
    bool hasDictionary() const;
    /// Of a bootloader the messages have no variables.
    bool hasMessages() const { return has(QStringLiteral("gen_var_decl.c")) && !messageSource().isEmpty(); }
    QByteArray text(const QString &fileName) const;
    /// What the run has said, with "DIR" for the folder.
    QStringList messages() const;

    /// Whether what is walked finds wrong accesses and undefined behaviour at run time.
    void setSanitized(bool sanitized) { sanitized_ = sanitized; }
    /// Compiles all C and C++ sources, C as C99 with all warnings. What the compiler says is returned, without the
    /// warnings that the required text itself provokes; empty if all is well.
    QString compile();
    /// Links gen_objdict.c, or gen_mp.c where that holds the dictionary, with the walker; what the linker says.
    QString link();
    /// Links the messages of J1939 and raw CAN with their walker, in place of the dictionary.
    QString linkMessages();
    /// What the walker prints.
    QString walk(const QStringList &arguments) const;

private:
    class Private;

    QStringList compilerArguments() const;
    QStringList dictionarySwitches() const;
    QString compileFile(const QString &path, const QStringList &more = {});
    QString linkWalker();
    QString messageSource() const;
    void writeSymbols() const;

    bool classic_;
    bool sanitized_ = false;
    QTemporaryDir folder_;
    std::unique_ptr<Private> d_;
};

} // namespace TestSupport
