#include "ncx/outputs/foldergeneration.h"

#include "ncx/project/openedproject.h"
#include "store/objectdatabase.h"
#include "texttools/wholefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A generated file without the moment of its generation, which its first lines tell.
QString withoutMoment(const QByteArray &content)
{
    static const QRegularExpression moment(
        uR"([A-Z][a-z]{2} [A-Z][a-z]{2} \d{1,2} \d\d:\d\d:\d\d \d{4}|)"
        R"((?<=^CreationTime=|^CreationDate=)[^\n]*|(?<=^ModificationTime=|^ModificationDate=)[^\n]*|)"
        R"((?<=fileCreationDate=")[^"]*)"_s,
        QRegularExpression::MultilineOption);
    constexpr int firstLines = 100;
    qsizetype end = 0;
    for (int line = 0; line < firstLines && end >= 0; ++line)
        end = content.indexOf('\n', end + 1);
    const qsizetype length = end < 0 ? content.size() : end;
    return QString::fromLatin1(content.first(length)).remove(moment) + QString::fromLatin1(content.sliced(length));
}

/// True if two files tell the same, whenever they were generated.
bool isSame(const QString &path, const QString &other)
{
    const QByteArray one = contentOf(path);
    const QByteArray two = contentOf(other);
    return one == two || withoutMoment(one) == withoutMoment(two);
}

/// A file on its way into the folder.
struct Target
{
    Target(FolderGeneration::File made, const QString &path, QByteArray bytes)
        : file(std::move(made))
        , content(std::move(bytes))
        , whole(path)
    {
    }

    /// Brings all of it to the disk, beside the file whose place it takes. False with the error of `whole`.
    bool prepare()
    {
        if (file.change == FolderGeneration::Change::Removed)
            return true;
        isPrepared = whole.open(QIODevice::WriteOnly);
        if (!isPrepared) // unless the folder takes no files, but the file takes the content
            return !QFileInfo(QFileInfo(whole.fileName()).path()).isWritable() &&
                   QFileInfo(whole.fileName()).isWritable();
        return whole.write(content) == content.size() && whole.isWritten();
    }
    /// False if the former file is still there.
    bool takePlace()
    {
        if (file.change == FolderGeneration::Change::Removed)
            return QFile::remove(whole.fileName());
        return isPrepared ? whole.commitWhole() : WholeFile::overwriteInClosedFolder(whole.fileName(), content);
    }

    FolderGeneration::File file;
    QByteArray content;
    WholeFile whole;
    bool isPrepared = false;
};

} // namespace

FolderGeneration::FolderGeneration(OpenedProject &project, const QString &folder)
    : project_(project)
    , folder_(folder)
    , absolute_(QDir(folder).absolutePath())
{
}

FolderGeneration::Outcome FolderGeneration::generate()
{
    if (!private_.isValid()) {
        messages_.append(u"there is no place for the files of a run: %1"_s.arg(private_.errorString()));
        return Outcome::Failed;
    }
    GeneratorMainHandler &handler = project_.handler();
    // A relative path of the stack starts at the project, wherever its files go.
    ObjectDataBase &store = project_.store();
    const QString stack = store.getMiscSetting(u"costackpath"_s);
    if (!stack.isEmpty() &&
        !store.setMiscSetting(u"costackpath"_s, QDir(handler.outputFolder()).absoluteFilePath(stack))) {
        messages_.append(u"the working copy cannot be written"_s);
        return Outcome::Failed;
    }
    copyWhatARunReads();

    auto result = GeneratorMainHandler::OutputFolderNotWritable;
    const QList<QMetaObject::Connection> connections{
        QObject::connect(&handler, &GeneratorMainHandler::finished,
                         [&result](GeneratorMainHandler::GeneratorResult end) { result = end; }),
        QObject::connect(&handler, &GeneratorMainHandler::checked,
                         [this](const GeneratorMainHandler::ModelFindings &model) { findings_ = model; })};
    project_.sink().setHear([this](const QString &text) { hear(text); });
    handler.setPostGenSteps({.command = false, .edsCheck = false});
    handler.setOutputFolder(private_.path());
    handler.generate(false);
    for (const QMetaObject::Connection &connection : connections)
        QObject::disconnect(connection);

    if (result == GeneratorMainHandler::CheckFailed)
        return Outcome::CheckFailed;
    if (result != GeneratorMainHandler::GenerationDone || hasFailed_ || store.isDamaged())
        return Outcome::Failed;
    compare();
    return Outcome::Generated;
}

/// The findings of the check are told elsewhere, and that files are generated is what a run is for.
void FolderGeneration::hear(const QString &text)
{
    if (text.contains("Check of model consistency"_L1)) {
        isInCheck_ = text.contains("started"_L1);
        return;
    }
    hasFailed_ |= text.startsWith("ERROR"_L1) || text.contains(" not writable"_L1) || text.startsWith("ABORT"_L1);
    const bool isCourse =
        text.startsWith("Generation of "_L1) || text == "Generation finished."_L1 || text == "Generation completed."_L1;
    if (!isInCheck_ && !isCourse && !text.trimmed().isEmpty())
        messages_.append(QString(text).replace(private_.path(), absolute_).trimmed());
}

/// Puts a file into the private folder, if none of that name is there yet.
bool FolderGeneration::copy(const QString &path, const QString &name)
{
    if (read_.contains(name) || !QFile::copy(path, made(name)))
        return false;
    read_.append(name);
    return true;
}

void FolderGeneration::copyWhatARunReads()
{
    for (const QString &name : QDir(absolute_).entryList({u"gen_*"_s, u"j1939_adapter.*"_s}, QDir::Files))
        copy(wanted(name), name);
    for (const QString &folder : {absolute_, project_.handler().outputFolder()}) {
        for (const QString &name : {u"gen_define.h"_s, u"no_stdlib_include.txt"_s})
            copy(folder + u'/' + name, name);
    }
}

/// Files that a run neither writes nor removes are none of its files; they look as they did.
void FolderGeneration::compare()
{
    const QStringList names = QDir(private_.path()).entryList(QDir::Files, QDir::Name);
    for (const QString &name : names) {
        if (name.startsWith("__ncxerrorlog.txt"_L1) || name == "no_stdlib_include.txt"_L1)
            continue;
        const bool isThere = QFileInfo::exists(wanted(name));
        if (isThere && isSame(made(name), wanted(name)))
            files_.append({name, Change::None});
        else
            files_.append({name, isThere ? Change::Changed : Change::New});
    }
    for (const QString &name : std::as_const(read_)) {
        if (!names.contains(name) && QFileInfo::exists(wanted(name)))
            files_.append({name, Change::Removed});
    }
    std::ranges::sort(files_, {}, &File::name);
}

/// All of them are on the disk before one of them takes its place.
QString FolderGeneration::install(const QList<File> &files)
{
    const auto reasonFor = [this](const File &file, const QString &reason) {
        return u"%1 cannot be %2: %3"_s.arg(folder_ + u'/' + file.name,
                                            file.change == Change::Removed ? u"removed"_s : u"written"_s, reason);
    };
    std::vector<std::unique_ptr<Target>> targets;
    for (const File &file : files) {
        if (file.change == Change::None)
            continue;
        std::error_code error;
        std::filesystem::create_directories(QFileInfo(absolute_).filesystemFilePath(), error);
        if (error)
            return u"the folder %1 cannot be made: %2"_s.arg(folder_, QString::fromStdString(error.message()));
        targets.push_back(std::make_unique<Target>(file, wanted(file.name), contentOf(made(file.name))));
        if (!targets.back()->prepare())
            return reasonFor(file, targets.back()->whole.errorString()) + u"; nothing is written"_s;
    }
    for (const std::unique_ptr<Target> &target : targets) {
        if (!target->takePlace())
            return reasonFor(target->file, target->whole.errorString());
    }
    return {};
}

bool FolderGeneration::followUp()
{
    messages_.clear();
    hasFailed_ = false;
    GeneratorMainHandler &handler = project_.handler();
    handler.setOutputFolder(absolute_);
    handler.setPostGenSteps({.lineEndings = false});
    const QString current = QDir::currentPath();
    handler.runPostGenProcess();
    QDir::setCurrent(current);
    return !hasFailed_;
}
