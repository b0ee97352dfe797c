#include "generate/define/definegenerator.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/base/fileheader.h"
#include "generate/define/definerules.h"
#include "generate/define/usersection.h"
#include "store/edition.h"

#include <QIODevice>
#include <QSet>

using namespace Qt::StringLiterals;

namespace {

/// Prints the tables, each name once: sections of several protocols share macros, and the first one that has a value
/// for a macro defines it.
class Writer
{
public:
    Writer(CodeWriter &out, const DefineModel &model, const Dialect &dialect)
        : out_(out)
        , model_(model)
        , dialect_(dialect)
    {
    }

    void write(std::span<const DefineMacros::Block> blocks)
    {
        for (const DefineMacros::Block &block : blocks) {
            if (!block.applies || block.applies(model_))
                writeBlock(block);
        }
    }

    void writeHardware();
    void writeUserDefines();

private:
    struct Define
    {
        QString name;
        QString value;
        QChar separator = u'\t';
    };

    QList<Define> valuesOf(const DefineMacros::Macro &macro) const;
    void writeBlock(const DefineMacros::Block &block);
    void writeTarget(int number, bool isOnly, bool conditional, bool active);
    void define(const Define &define);

    CodeWriter &out_;
    const DefineModel &model_;
    const Dialect &dialect_;
    QSet<QString> defined_;
};

QList<Writer::Define> Writer::valuesOf(const DefineMacros::Macro &macro) const
{
    const QString name = macro.nameIn(dialect_);
    if (!macro.existsIn(dialect_.form))
        return {};
    QList<Define> defines;
    if (macro.family) {
        for (const auto &[number, value] : macro.family(model_))
            defines.append({name.arg(number), value, macro.separator});
    } else if (const QString value = macro.value(model_, macro.key); !value.isEmpty()) {
        defines.append({name, value, macro.separator});
    }
    return defines;
}

void Writer::writeBlock(const DefineMacros::Block &block)
{
    QList<Define> defines;
    bool repeats = false;
    for (const DefineMacros::Macro &macro : block.macros) {
        for (const Define &define : valuesOf(macro)) {
            if (defined_.contains(define.name) && !block.repeats)
                repeats = true;
            else
                defines.append(define);
        }
    }
    const bool hasBeenWritten = defines.isEmpty() && repeats;
    if (!block.comment.isEmpty() && !hasBeenWritten)
        out_(u"${COMMENT}", {{"COMMENT", block.comment}});
    for (const Define &each : std::as_const(defines)) {
        if (block.repeats || !defined_.contains(each.name))
            define(each);
    }
}

void Writer::define(const Define &define)
{
    defined_.insert(define.name);
    out_(u"#define ${NAME}${SEPARATOR}${VALUE}",
         {{"NAME", define.name}, {"SEPARATOR", QStringView(&define.separator, 1)}, {"VALUE", define.value}});
}

/// Of several targets the active one is written, or all of them, and the compiler's command line chooses.
void Writer::writeHardware()
{
    out_(u"/* Hardware settings */");
    const auto count = static_cast<int>(model_.number(u"targetsettings_cnt"_s));
    const bool all = model_.isSet(u"all_targets"_s);
    if (count <= 1) {
        writeTarget(0, true, all, true);
    } else if (all) {
        for (int number = 0; number < count; ++number)
            writeTarget(number, false, true, false);
    } else {
        const auto active = static_cast<int>(model_.number(u"targetsettings_active"_s));
        writeTarget(active < count ? active : 0, false, false, true);
    }
    write(DefineMacros::hardware());
}

void Writer::writeTarget(int number, bool isOnly, bool conditional, bool active)
{
    const auto setting = [&](QLatin1StringView keyOfOnly, QLatin1StringView suffix) {
        return model_.general(isOnly ? QString(keyOfOnly) : u"targetsettings_%1_%2"_s.arg(number).arg(suffix));
    };
    QString id = setting("target_id"_L1, "targetid"_L1).trimmed();
    if (id.isEmpty())
        id = u"TARGET_%1"_s.arg(number);
    if (active)
        out_(u"#define ${ID} 1u", {{"ID", id}});
    if (conditional) {
        const QString name = model_.general(u"targetsettings_%1_name"_s.arg(number)).trimmed();
        out_(u"#ifdef ${ID}${COMMENT}",
             {{"ID", id}, {"COMMENT", name.isEmpty() ? QString() : u" /* %1 */"_s.arg(Code::commentText(name))}});
    }
    for (const DefineMacros::TargetMacro &macro : DefineMacros::targets()) {
        const QString value = setting(macro.key, macro.suffix);
        if (!macro.isSwitch || NumberText::byPrefix(value) == 1U)
            out_(u"#define ${NAME}\t${VALUE}",
                 {{"NAME", DefineMacros::nameIn(macro.name, dialect_)}, {"VALUE", DefineRules::valueText(value)}});
    }
    const QString defines = setting("hw_defines"_L1, "defines"_L1);
    if (!defines.isEmpty())
        out_(uR"(

            /* target-specific defines */
            ${DEFINES}
            )",
             {{"DEFINES", defines}});
    if (conditional)
        out_(u"#endif /* ${ID}*/ \n", {{"ID", id}});
}

void Writer::writeUserDefines()
{
    const QString defines = model_.general(u"user_defines"_s);
    if (defines.size() > 1)
        out_(uR"(
            /* application-specific defines as defined in NodeComposer */
            ${DEFINES}
            /* end of application-specific defines */

            )",
             {{"DEFINES", defines}});
}

} // namespace

QString DefineHeaderGenerator::fileName() const
{
    return u"gen_define.h"_s;
}

void DefineHeaderGenerator::write(Utf8Sink &sink)
{
    const std::optional<FormerDefines> former = FormerDefines::read(filePath());
    if (!former) {
        fail(OutputError, u"Cannot read the user-specific section of %1."_s.arg(filePath()));
        return;
    }
    userSection_ = former->userSection;
    const DefineModel model = DefineModel::collect(*database(), {.form = dialect_.form,
                                                                 .j1939 = j1939_,
                                                                 .multiProtocol = multiProtocol_,
                                                                 .generateMultiLine = generatesMultiLine(),
                                                                 .formerGenerations = former->generations});
    CodeWriter out(sink);
    Writer writer(out, model, dialect_);
    writeFileHeader(out, SourceFile::GenDefine, dialect_.form, baseName());
    out(uR"(
        /* protect against multiple inclusion of the file */
        #ifndef GEN_DEFINE_H
        #define GEN_DEFINE_H 1

        )");
    writer.write(DefineMacros::head());
    Q_EMIT progress(25);
    if (!j1939_ || multiProtocol_) {
        writer.write(DefineMacros::canOpen());
        Q_EMIT progress(50);
        if (currentEdition() == Edition::EnergyBus)
            writer.write(DefineMacros::energyBus());
        writer.write(DefineMacros::events());
        Q_EMIT progress(75);
    }
    writer.write(DefineMacros::queues());
    if (j1939_ || multiProtocol_)
        writer.write(DefineMacros::j1939());
    const bool bootloader = dialect_.has(Point::BootloaderBuffers) && model.isSet(u"uds_bl_setting"_s);
    writer.write(bootloader ? DefineMacros::bufferCounts() : DefineMacros::rawCan());
    writer.write(DefineMacros::diagnostics());
    writer.write(DefineMacros::virtualObjects());
    writer.writeHardware();
    writer.writeUserDefines();
    writer.write(DefineMacros::application());
    if (multiProtocol_)
        writer.write(DefineMacros::cobDefinitions());
    writeUserSection(out, sink);
}

void DefineHeaderGenerator::writeUserSection(CodeWriter &out, Utf8Sink &sink) const
{
    out(u"/* do not modify comments starting with 'user-specific section:' */\n${START}",
        {{"START", QString::fromLatin1(FormerDefines::startMark)}});
    sink.putBytes(userSection_);
    if (!userSection_.endsWith('\n') && !userSection_.endsWith('\r'))
        sink.putBytes("\n");
    out(u"${END}\n\n#endif /* GEN_DEFINE_H */", {{"END", QString::fromLatin1(FormerDefines::endMark)}});
}

GenDefineGenerator::GenDefineGenerator()
    : DefineHeaderGenerator(Dialect::v4())
{
}

CoDefineGenerator::CoDefineGenerator()
    : DefineHeaderGenerator(Dialect::classic())
{
}
