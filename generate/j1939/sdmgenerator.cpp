#include "generate/j1939/sdmgenerator.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/common/sourceopening.h"
#include "generate/j1939/safetysections.h"
#include "generate/model/linesettings.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

using namespace Qt::StringLiterals;

namespace {

QString includes(const SourceOpening &opening, const Dialect &dialect)
{
    return CodeWriter::textOf([&](CodeWriter &out) {
        SourceSections::stdlibInclude(out, opening);
        out(uR"(
            #include <gen_define.h>
            #include <${TYPES}>
            #include <j1939_j1939.h>
            #include <gen_extern_decl.h>
            )",
            {{"TYPES", SourceSections::dataTypeHeader(opening, dialect)}});
        SourceSections::applicationIncludes(out, opening);
    });
}

/// The values of the placeholders. The templates grew from those of SRDOs and may have the names of either.
TemplateValues valuesOf(const SafetyGroups &groups, const QString &information, const QString &includes,
                        const Dialect &dialect)
{
    const QString variables = CodeWriter::textOf([&](CodeWriter &out) { SafetySections::writeVariables(out, groups); });
    const QHash<QString, QString> stages{
        {u"NJX_INFORMATION"_s, information},
        {u"INCLUDES"_s, includes},
        {u"DATA_DEFINITION"_s,
         CodeWriter::textOf([&](CodeWriter &out) { SafetySections::writeDataDefinitions(out, groups, dialect); })},
        {u"VARIABLES"_s, variables},
        {u"DATA_VARIABLES"_s, variables},
        {u"OD_VARIABLES"_s, variables},
        {u"TRANSMIT_MAPPING"_s,
         CodeWriter::textOf([&](CodeWriter &out) { SafetySections::writeTransmitMapping(out, groups, dialect); })},
        {u"RECEIVE_MAPPING"_s,
         CodeWriter::textOf([&](CodeWriter &out) { SafetySections::writeReceiveMapping(out, groups, dialect); })},
    };
    TemplateValues values;
    for (auto stage = stages.begin(); stage != stages.end(); ++stage) {
        values.insert(u"SRDO_"_s + stage.key(), stage.value());
        values.insert(u"SDG_"_s + stage.key(), stage.value());
    }
    return values;
}

} // namespace

QString SDMGenerator::fileName() const
{
    return u"gen_sdg.c"_s;
}

QString SDMGenerator::templatePath(bool multiLine, bool fd) const
{
    if (form_ == SourceForm::Classic)
        return Templates::pathBesideProgram(multiLine ? u"sdg_ml.data"_s : u"sdg.data"_s);
    const QString file =
        u"/j1939_lib%1%2/src/gen_sdg.tpl"_s.arg(fd ? "_fd"_L1 : ""_L1, multiLine ? "_ml"_L1 : "_sl"_L1);
    return Templates::pathInStack(database()->getMiscSetting(u"costackpath"_s), outputFolder(), file);
}

void SDMGenerator::write(Utf8Sink &sink)
{
    const Dialect &dialect = Dialect::of(form_);
    const bool multiLine = LineSettings::severalLines(*database());
    const SafetyGroups groups = SafetyGroups::collect(*database(), dialect, multiLine);
    const QString information = sourceTitle(SourceFile::GenSdg, form_, baseName()) + u'\n';
    const SourceOpening opening = SourceOpening::of(*database(), outputFolder());
    const TemplateValues values = valuesOf(groups, information, includes(opening, dialect), dialect);

    const QString path = templatePath(multiLine, Settings(*database()).isOn(u"canfd_supported"_s));
    const bool hasSource = form_ == SourceForm::Classic || !database()->getMiscSetting(u"costackpath"_s).isEmpty();
    const std::optional<QString> text = hasSource ? source_->text(path) : std::nullopt;
    const std::optional<QString> module = text ? Templates::fill(*text, values) : std::nullopt;
    if (!module) {
        failWithout(path);
        return;
    }
    Q_EMIT progress(25);
    sink << *module;
    if (form_ == SourceForm::Classic)
        writeClassicTail(sink, groups, values);
    infoText_ =
        u"%1 transmitted, %2 received safety data groups"_s.arg(groups.transmittedCount()).arg(groups.receivedCount());
}

void SDMGenerator::failWithout(const QString &path)
{
    fail(TemplateError, u"Could not find template file: %1 (configured stack path: %2)"_s.arg(
                            path, database()->getMiscSetting(u"costackpath"_s)));
}

/// The prototypes come from a file of their own, which need not hold a placeholder.
void SDMGenerator::writeClassicTail(Utf8Sink &sink, const SafetyGroups &groups, const TemplateValues &values)
{
    const QString path = Templates::pathBesideProgram(groups.multiLine ? u"sdgproto_ml.data"_s : u"sdgproto.data"_s);
    const std::optional<QString> prototypes = source_->text(path);
    if (!prototypes) {
        failWithout(path);
        return;
    }
    CodeWriter out(sink);
    out(uR"(

        /*
         * SDG_LOOP_COUNTER defines, how many SDG timer interrupts are allowed
         */
        #define SDG_LOOP_COUNTER	${COUNT}u

        )",
        {{"COUNT", Code::dec(groups.loopCounter)}});
    sink << Templates::fill(*prototypes, values).value_or(*prototypes) << '\n';
    SafetySections::writeFunctions(out, groups, Dialect::of(form_));
}
