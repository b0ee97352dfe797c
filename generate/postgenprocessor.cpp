#include "generate/postgenprocessor.h"

#include "generate/outputhandlerbase.h"

using namespace Qt::StringLiterals;

PostGenProcessor::PostGenProcessor(OutputHandlerBase &output, QObject *parent)
    : QObject(parent)
    , output_(output)
{
}

void PostGenProcessor::setProject(const QString &outputFolder, const QString &baseName)
{
    outputFolder_ = outputFolder;
    projectBaseName_ = baseName;
}

void PostGenProcessor::run()
{
    sendEndMessage();
}

void PostGenProcessor::sendEndMessage()
{
    output_.message(u"Generation completed."_s);
}
