#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <cstdlib>
#include <memory>

class GeneratorMainHandler;
class OutputHandlerBase;

/// What the fuzz targets share: an application of all protocols, and a folder of their own that is also the home.
namespace Fuzz {

/// A promise of the program that an input must not break.
inline void require(bool condition)
{
    if (!condition)
        std::abort();
}

/// A folder that stays for the life of the process. The first call makes the application and moves home into it.
const QTemporaryDir &scratch();
/// Writes a file of the scratch folder and returns its path.
QString write(const QString &name, const QByteArray &content);
/// Empties a folder of the scratch folder, which is made where it is missing, and returns its path.
QString emptyFolder(const QString &name);

/// The driver behind all modes, with nobody who listens.
class Session
{
public:
    Session();
    ~Session();
    Q_DISABLE_COPY_MOVE(Session)

    GeneratorMainHandler &handler() { return *handler_; }
    /// Checks, generates and saves the open project, and opens what was saved. Never starts a command of the project.
    void live();

private:
    std::unique_ptr<OutputHandlerBase> output_;
    std::unique_ptr<GeneratorMainHandler> handler_;
};

} // namespace Fuzz
