#include "generate/names/indicesgenerator.h"

#include "generate/base/codewriter.h"
#include "generate/base/fileheader.h"
#include "generate/names/indexdefines.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype nameWidth = 25;

QLatin1StringView paddingBehind(const QString &name)
{
    constexpr auto blanks = "                         "_L1;
    static_assert(blanks.size() == nameWidth);
    return blanks.first(std::max(nameWidth - name.size(), qsizetype{0}));
}

void writeDefines(CodeWriter &out, const IndexDefines &item)
{
    for (const IndexDefine &define : item.defines)
        out(u"#define ${GAP}${PREFIX}${NAME}${PADDING}\t${VALUE}${COMMENT}",
            {{"GAP", define.ofSubindex ? " "_L1 : ""_L1},
             {"PREFIX", item.prefix},
             {"NAME", define.name},
             {"PADDING", paddingBehind(define.name)},
             {"VALUE", define.value},
             {"COMMENT", define.comment}});
    out(u"");
}

} // namespace

QString IndicesGenerator::fileName() const
{
    return u"gen_indices.h"_s;
}

QString IndicesGenerator::jobName() const
{
    return u"gen_indices.h generator"_s;
}

void IndicesGenerator::write(Utf8Sink &sink)
{
    CodeWriter out(sink);
    writeFileHeader(out, SourceFile::GenIndices, SourceForm::V4, baseName());
    out(uR"(
        /* protect against multiple inclusion of the file */
        #ifndef GEN_INDICES_H
        #define GEN_INDICES_H 1

        )");
    collectIndexDefines(
        *database(), lines_, isMultiLine() || generatesMultiLine(), [this] { return takeCancelRequest(); },
        [&out](const IndexDefines &item) { writeDefines(out, item); });
    out(u"#define  ${NAME}\t${VALUE}\n", {{"NAME", QString::fromLatin1(numberOfEntriesName).leftJustified(nameWidth)},
                                          {"VALUE", QString::fromLatin1(numberOfEntriesValue)}});
    out(u"#endif /* GEN_INDICES_H */");
}
