#pragma once

#include "generate/base/runcontext.h"

#include <QString>

#include <memory>
#include <span>

class FileGenerator;
class GenerationRun;

/// Which lines a row runs for.
enum class RunLines
{
    Project, ///< once, as line 0
    CANopen,
    J1939,
    RawCAN,
    Every
};

/// How a row ends: with the next row, or with the run.
enum class RunFlow
{
    Continue,
    EndWithTemplateFailure,
    EndAsWanted ///< nobody wants it any more
};

/// What a job says of its file where it has no words of its own.
inline constexpr auto fileStarted = "Generation of %2 in %1 started";
inline constexpr auto fileNotWritable = "The file %2 in %1 is not writable";

/// One row of the run: a kind of output file, or, with `step`, what happens between the files.
///
/// In the texts %1 is the output folder and %2 the file's name, or what `nameInTexts` makes of it.
struct RunRow
{
    /// When the row takes part.
    bool (*applies)(const RunContext &) = [](const RunContext & /*run*/) { return true; };
    RunLines lines = RunLines::Project;
    /// Neighbours that say so are walked together, one line at a time.
    bool lineByLine = false;
    /// What file names have on a line of two protocols.
    const char *suffix = "";
    /// The generator for a line, with what only this row knows about it already set.
    std::unique_ptr<FileGenerator> (*make)(const RunContext &, quint8 line) = nullptr;
    const char *started = fileStarted;
    const char *notWritable = fileNotWritable;
    QString (*nameInTexts)(const RunContext &, quint8 line) = nullptr;
    /// What is done after the generator's job.
    RunFlow (*after)(GenerationRun &, FileGenerator &) = nullptr;
    /// The row's work where that is not one generator with one file.
    RunFlow (*step)(GenerationRun &, quint8 line) = nullptr;
};

/// The rows of the run, in the order of execution.
std::span<const RunRow> runTable();
