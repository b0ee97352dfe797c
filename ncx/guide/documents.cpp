#include "ncx/guide/documents.h"

#include "ncx/findings/advice.h"

#include <QFile>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

// The linker would leave out of a static library what nothing refers to.
static void keepDocuments()
{
    Q_INIT_RESOURCE(guide);
    Q_INIT_RESOURCE(ncx);
}

namespace {

/// A URI ends in the name of the file, so that the links between documents lead to each other.
constexpr auto documentScheme = "ncx://docs/"_L1;
constexpr auto findingScheme = "ncx://findings/"_L1;
constexpr auto markdown = "text/markdown"_L1;

struct Document
{
    QLatin1StringView file;
    QLatin1StringView folder; ///< of the resources of the program
    QLatin1StringView description;
};

constexpr Document documents[] = {
    {"from-nothing.md"_L1, ":/guide/"_L1,
     "How a device is built without any file: project, objects, PDOs, J1939 and raw CAN messages, check, sources"_L1},
    {"from-a-description.md"_L1, ":/guide/"_L1,
     "How a maker's EDS or DCF becomes a device: what is settled, what is mended, how the report reads"_L1},
    {"j1939-from-a-dbc.md"_L1, ":/guide/"_L1,
     "How a node of a CAN database becomes a device: what becomes of frames and signals, what is dropped"_L1},
    {"data-types.md"_L1, ":/guide/"_L1, "The codes of data types with names, widths and limits"_L1},
    {"checks.md"_L1, ":/docs/"_L1,
     "What a small project needs, and what each finding of the check means: cause, remedy, group. Long: "
     "ncx://findings/RULE has one rule"_L1},
    {"object-dictionary.md"_L1, ":/guide/"_L1,
     "What becomes of objects in C: implementations, variable names, strings, limits, mapping"_L1},
    {"messages.md"_L1, ":/guide/"_L1, "What becomes of J1939 and raw CAN messages in C: signals, variables, NAME"_L1},
};

QString read(const Document &document)
{
    keepDocuments();
    QFile file(document.folder + document.file);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// All that the table of the check has on a rule.
std::optional<QString> findingText(const QString &rule)
{
    QString text;
    for (const AdviceRow &row : adviceRows()) {
        if (row.rule == rule)
            text += u"- %1\n  - cause: %2\n  - remedy: %3\n  - group: %4\n"_s.arg(row.message, row.cause, row.remedy,
                                                                                  row.group);
    }
    return text.isEmpty() ? std::nullopt : std::optional(u"# %1\n\n"_s.arg(rule) + text);
}

} // namespace

QJsonArray Documents::resources()
{
    QJsonArray list;
    for (const Document &document : documents) {
        const QString text = read(document);
        list.append(QJsonObject{{u"uri"_s, documentScheme + document.file},
                                {u"name"_s, QString(document.file).chopped(3)},
                                {u"title"_s, text.section(u'\n', 0, 0).sliced(2)},
                                {u"description"_s, document.description},
                                {u"mimeType"_s, markdown},
                                {u"size"_s, text.toUtf8().size()}});
    }
    return list;
}

QJsonArray Documents::templates()
{
    return {QJsonObject{
        {u"uriTemplate"_s, findingScheme + "{rule}"_L1},
        {u"name"_s, u"finding"_s},
        {u"title"_s, u"What a finding means"_s},
        {u"description"_s, u"Messages, cause and remedy of a rule of the check, by the \"rule\" of a finding"_s},
        {u"mimeType"_s, markdown}}};
}

std::optional<QString> Documents::text(const QString &uri)
{
    if (uri.startsWith(findingScheme))
        return findingText(uri.sliced(findingScheme.size()));
    const auto *const found = std::ranges::find_if(
        documents, [&uri](const Document &document) { return uri == documentScheme + document.file; });
    return found == std::end(documents) ? std::nullopt : std::optional(read(*found));
}
