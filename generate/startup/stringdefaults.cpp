#include "generate/startup/stringdefaults.h"

#include "generate/base/codewriter.h"
#include "generate/model/dictionarytables.h"

void writeStringDefaultFunction(CodeWriter &out, const DictionaryTables &tables)
{
    out(uR"(

        RET_T userOverwriteStringDefaultvalues(void)
        {
        )");
    for (auto it = tables.stringSizeMap.cbegin(); it != tables.stringSizeMap.cend(); ++it) {
        const auto line = static_cast<quint8>(it.key() >> 24);
        const auto index = static_cast<quint16>(it.key() >> 8);
        const auto subindex = static_cast<quint8>(it.key());
        const StoreRecords::SubEntry *sub = tables.sub(line, index, subindex);
        if (sub == nullptr || sub->data.varname.isEmpty())
            continue;
        out(uR"(
                /* ${LINE}: ${INDEX} - ${SUB} */
                memcpy(${NAME}, &stringDefaultValues[${OFFSET}], ${SIZE});
            )",
            {{"LINE", Code::dec(line)},
             {"INDEX", Code::hex(index, 4)},
             {"SUB", Code::dec(subindex)},
             {"NAME", filledText(sub->data.varname, *sub)},
             {"OFFSET", Code::dec(tables.stringOffsetMap.value(it.key()))},
             {"SIZE", Code::dec(it.value())}});
    }
    out(uR"(

            return(RET_OK);
        }
        )");
}
