#include "mcp/server/toolcatalogue.h"

#include "mcp/call/answerform.h"

ToolCatalogue::ToolCatalogue(std::span<const ToolFamily> families, const AnswerForm &form)
{
    QHash<QString, qsizetype> places;
    for (const ToolFamily family : families) {
        for (const Tool &tool : family()) {
            const qsizetype place = places.value(tool.name, descriptors_.size());
            if (place < descriptors_.size())
                descriptors_.replace(place, form.descriptor(tool));
            else
                descriptors_.append(form.descriptor(tool));
            places.insert(tool.name, place);
            tools_.insert(tool.name, &tool);
        }
    }
}
