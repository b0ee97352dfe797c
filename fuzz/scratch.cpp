#include "fuzz/scratch.h"

#include "generate/base/outputhandlerbase.h"
#include "generate/run/generatormainhandler.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <array>

using namespace Qt::StringLiterals;

namespace {

class Silence : public OutputHandlerBase
{
public:
    void message(const QVariant & /*value*/) override {}
    QString collectedText() const override { return {}; }
};

void ignore(QtMsgType /*type*/, const QMessageLogContext & /*context*/, const QString & /*text*/) {}

struct Application
{
    Application()
    {
        qInstallMessageHandler(ignore);
        qputenv("HOME", folder.path().toUtf8());
        for (const char *variable : {"XDG_DATA_HOME", "XDG_CONFIG_HOME"})
            qunsetenv(variable);
        QCoreApplication::setOrganizationName(u"norvane"_s);
        QCoreApplication::setApplicationName(u"CAN NodeComposer"_s);
        QCoreApplication::setApplicationVersion(u"4.3.3"_s);
    }
    QTemporaryDir folder;
    std::array<char, 5> name{"fuzz"};
    std::array<char *, 2> arguments{name.data(), nullptr};
    int count = 1;
    QCoreApplication application{count, arguments.data()};
};

} // namespace

const QTemporaryDir &Fuzz::scratch()
{
    static const Application application;
    return application.folder;
}

QString Fuzz::write(const QString &name, const QByteArray &content)
{
    const QString path = scratch().filePath(name);
    QFile file(path);
    require(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(content) == content.size());
    return path;
}

QString Fuzz::emptyFolder(const QString &name)
{
    const QString path = scratch().filePath(name);
    QDir(path).removeRecursively();
    require(QDir().mkpath(path));
    return path;
}

Fuzz::Session::Session()
{
    scratch();
    output_ = std::make_unique<Silence>();
    handler_ = std::make_unique<GeneratorMainHandler>(output_.get());
}

Fuzz::Session::~Session() = default;

void Fuzz::Session::live()
{
    QStringList messages;
    handler_->checkModel(messages);
    ObjectDataBase &store = *handler_->database();
    const bool switchedOff = store.setMiscSetting(u"postGenEnabled"_s, u"0"_s);
    if (switchedOff && store.getMiscSetting(u"postGenEnabled"_s) == "0"_L1)
        handler_->generate(true);
    const QString path = store.projectPath();
    handler_->saveProject();
    if (!store.lastError().isEmpty())
        return;
    Session next;
    require(next.handler().openProject(path));
    // The text form leaves things out, and with them goes the hash.
    require(path.endsWith("ncxt"_L1) || !next.handler().database()->isTampered());
}
