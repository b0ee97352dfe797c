#include "generate/names/indicationgenerator.h"

#include "generate/base/codewriter.h"
#include "generate/base/dialect.h"
#include "generate/base/runcontext.h"
#include "generate/model/linesettings.h"
#include "generate/names/indications.h"
#include "store/settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

struct Prototype
{
    QString guard; ///< empty for none
    QString note;  ///< empty for none
    QString result;
    QString function;
    QString parameters;
};

/// The prototypes in the order of the file.
class Collector
{
public:
    Collector(ObjectDataBase &store, const Dialect &dialect, const Dialect &sources)
        : store_(store)
        , dialect_(dialect)
        , sources_(sources)
    {
    }

    QList<Prototype> collect()
    {
        addAll(Indications::canOpenEvents());
        if (Indications::hasUsdoServer(store_))
            addAll(Indications::usdoServerEvents());
        if (Indications::hasUsdoClient(store_))
            addAll(Indications::usdoClientEvents());
        if (dialect_.has(Point::UdsIndications) && Indications::hasUdsEvents(store_)) {
            for (const Indications::UdsEvent &event : Indications::udsEvents())
                add(event.key, event.guard, event.result, event.parameters);
        }
        return prototypes_;
    }

    /// Some function is named, if only one that the application declares itself.
    bool isNamed() const { return isNamed_; }

private:
    void addAll(std::span<const Indications::Event> events)
    {
        for (const Indications::Event &event : events) {
            const QString parameters = event.parametersIn(sources_);
            if (!event.existsIn(sources_.form))
                continue;
            if (parameters.isEmpty())
                isNamed_ |= !Indications::functionOf(store_, event.key).isEmpty();
            else
                add(event.key, {}, event.result, parameters);
        }
    }

    void add(QLatin1StringView key, QLatin1StringView guard, QLatin1StringView result, const QString &parameters)
    {
        const QString function = Indications::functionOf(store_, key);
        if (function.isEmpty())
            return;
        isNamed_ = true;
        const QString note = Settings(store_).text("note_"_L1 + key);
        prototypes_.append({.guard = guard,
                            .note = note.trimmed().isEmpty() ? QString() : Code::commentText(note),
                            .result = result,
                            .function = function,
                            .parameters = parameters});
    }

    ObjectDataBase &store_;
    const Dialect &dialect_;
    const Dialect &sources_;
    QList<Prototype> prototypes_;
    bool isNamed_ = false;
};

void writePrototype(CodeWriter &out, const Prototype &prototype, const QString &lineParameter)
{
    if (!prototype.guard.isEmpty())
        out(u"#if ${GUARD}", {{"GUARD", prototype.guard}});
    if (!prototype.note.isEmpty())
        out(u"/* ${NOTE} */", {{"NOTE", prototype.note}});
    out(u"${RESULT} ${FUNCTION}(${LINE}${PARAMETERS});", {{"RESULT", prototype.result},
                                                          {"FUNCTION", prototype.function},
                                                          {"LINE", lineParameter},
                                                          {"PARAMETERS", prototype.parameters}});
    if (!prototype.guard.isEmpty())
        out(u"#endif");
}

} // namespace

QString IndicationHeaderGenerator::fileName() const
{
    return u"gen_indication.h"_s;
}

void IndicationHeaderGenerator::write(Utf8Sink &sink)
{
    Collector collector(*database(), dialect_, sources_);
    const QList<Prototype> prototypes = collector.collect();
    const bool multiLine = LineSettings::severalLines(*database());
    CodeWriter out(sink);
    // The file has no date: it stays the same for as long as its functions do.
    out(uR"(
        /*
         * ${TITLE}
         */

        /* protect against multiple inclusion of the file */
        #ifndef GEN_INDICATION
        #define GEN_INDICATION 1

        )",
        {{"TITLE", sourceTitle(SourceFile::GenIndication, dialect_.form, baseName())}});
    if (!collector.isNamed())
        out(uR"(
            /* 
               There are not any static indication functions defined.
               If there were some, they would be declared here. 
            */
            )");
    for (const Prototype &prototype : prototypes)
        writePrototype(out, prototype, multiLine ? sources_.lineParameter : QString());
    out(u"#endif /* GEN_INDICATION*/");
}

indicationgenerator::indicationgenerator()
    : IndicationHeaderGenerator(Dialect::classic(), Dialect::classic())
{
}

indicationgeneratorv4::indicationgeneratorv4()
    : indicationgeneratorv4(Dialect::v4())
{
}

indicationgeneratorv4::indicationgeneratorv4(const Dialect &sources)
    : IndicationHeaderGenerator(Dialect::v4(), sources)
{
}
