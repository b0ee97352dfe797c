#pragma once

#include <QString>

class CodeWriter;

/// The two forms of the stack's configuration sources; most files exist in both.
enum class SourceForm
{
    Classic,
    V4
};

/// The generated files that begin with a title, and the variants of that title.
enum class SourceFile
{
    GenDefine,
    GenObjdict,
    GenUser,
    GenIndices,
    GenIndication,
    GenPgn,
    GenExternDecl,
    GenVarDecl,
    GenMp,
    GenMpCanIds, ///< gen_mp.c without tables of objects and PGNs
    GenMpInit,   ///< gen_mp.c with nothing but the initialisation
    GenVobjdict,
    GenSrdo,
    GenSdg,
};

/// The title line: what the file holds, for which project, and by which program in which version it was made.
QString sourceTitle(SourceFile file, SourceForm form, const QString &baseName);

/// The comment that a generated C source begins with, title and moment of generation, and the empty line behind it.
/// A note, if there is one, is the comment's last line.
void writeFileHeader(CodeWriter &out, SourceFile file, SourceForm form, const QString &baseName,
                     const QString &note = {});
