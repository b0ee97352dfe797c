#include "generate/srdo/srdogenerator.h"

#include "generate/base/codewriter.h"
#include "generate/base/fileheader.h"
#include "generate/common/sourceopening.h"
#include "generate/model/linesettings.h"
#include "generate/srdo/srdosections.h"
#include "store/objectdatabase.h"
#include "store/settings.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

struct Placeholder
{
    QLatin1StringView name;
    void (*write)(CodeWriter &, const SrdoTables &);
};

constexpr std::array placeholders{
    Placeholder{"SRDO_INIT_CONFIG_VALID"_L1, SrdoSections::writeConfigurationValid},
    Placeholder{"SRDO_INIT_NMT_STATE"_L1, SrdoSections::writeNmtState},
    Placeholder{"SRDO_INIT_CONFIG_READY"_L1, SrdoSections::writeConfigurationReady},
    Placeholder{"SRDO_DATA_DEFINITION"_L1, SrdoSections::writeDataDefinitions},
    Placeholder{"SRDO_GET_DATA_PTR"_L1, SrdoSections::writeDataPointers},
    Placeholder{"SRDO_SET_DEFAULT_VALUE"_L1, SrdoSections::writeDefaults},
    Placeholder{"SRDO_OD_VARIABLES"_L1, SrdoSections::writeVariables},
    Placeholder{"SRDO_RECEIVE_MAPPING1"_L1, SrdoSections::writeReceiveNormal},
    Placeholder{"SRDO_RECEIVE_MAPPING2"_L1, SrdoSections::writeReceiveInverted},
    // Older templates spell them so.
    Placeholder{"SRDO_RECEICE_MAPPING1"_L1, SrdoSections::writeReceiveNormal},
    Placeholder{"SRDO_RECEICE_MAPPING2"_L1, SrdoSections::writeReceiveInverted},
    Placeholder{"SRDO_TRANSMIT_MAPPING"_L1, SrdoSections::writeTransmit},
    Placeholder{"SRDO_OD_ENTRY"_L1, SrdoSections::writeEntries},
};

void writeIncludes(CodeWriter &out, const SourceOpening &opening)
{
    SourceSections::stdlibInclude(out, opening);
    out(uR"(
        #include <string.h>
        #include <gen_define.h>
        #include <co_canopen.h>
        )");
    SourceSections::applicationIncludes(out, opening);
}

} // namespace

QString SrdoGenerator::fileName() const
{
    return u"gen_srdo.c"_s;
}

QString SrdoGenerator::templatePath(bool multiLine) const
{
    return Templates::pathBesideProgram(multiLine ? u"srdo_ml.data"_s : u"srdo.data"_s);
}

QString SrdoGenerator::prototypePath(bool multiLine) const
{
    return Templates::pathBesideProgram(multiLine ? u"srdoproto_ml.data"_s : u"srdoproto.data"_s);
}

QString SrdoGeneratorStatic::templatePath(bool multiLine) const
{
    const QString stack = database()->getMiscSetting(u"costackpath"_s);
    const QString file = multiLine ? u"/co_lib_ml/src/gen_srdo.tpl"_s : u"/co_lib_sl/src/gen_srdo.tpl"_s;
    return stack.isEmpty() ? QString() : Templates::pathInStack(stack, outputFolder(), file);
}

QString SrdoGeneratorStatic::prototypePath(bool /*multiLine*/) const
{
    return {};
}

void SrdoGenerator::write(Utf8Sink &sink)
{
    const bool multiLine = LineSettings::severalLines(*database());
    const SrdoTables tables = SrdoTables::collect(*database(), multiLine, staticData_);
    TemplateValues values;
    for (const Placeholder &placeholder : placeholders)
        values.insert(placeholder.name, CodeWriter::textOf([&](CodeWriter &out) { placeholder.write(out, tables); }));
    values.insert(u"SRDO_INIT_SRDO_TIMER"_s, SrdoSections::timer(tables));
    const SourceOpening opening = SourceOpening::of(*database(), outputFolder());
    values.insert(u"SRDO_INCLUDES"_s, CodeWriter::textOf([&](CodeWriter &out) { writeIncludes(out, opening); }));
    values.insert(u"SRDO_NJX_INFORMATION"_s, CodeWriter::textOf([&](CodeWriter &out) {
                      writeFileHeader(out, SourceFile::GenSrdo, SourceForm::V4, baseName());
                  }));

    const auto filled = [&](const QString &path) {
        const std::optional<QString> text = source_->text(path);
        return text ? Templates::fill(*text, values) : std::nullopt;
    };
    const std::optional<QString> module = filled(templatePath(multiLine));
    const QString prototypes = prototypePath(multiLine);
    const std::optional<QString> functions = prototypes.isEmpty() ? std::nullopt : source_->text(prototypes);
    if (!module || (!prototypes.isEmpty() && !functions)) {
        fail(TemplateError, u"Template file not found."_s);
        return;
    }
    sink << *module;
    if (functions) {
        CodeWriter out(sink);
        out(uR"(

            /*
            * SRDO_LOOP_COUNTER defines, how many srdo timer interrupts are allowed
            */
            #define SRDO_LOOP_COUNTER	${COUNT}u

            )",
            {{"COUNT", Code::dec(Settings(*database()).number(u"srdo_loop_counter"_s))}});
        sink << Templates::fill(*functions, values).value_or(*functions);
    }
}
