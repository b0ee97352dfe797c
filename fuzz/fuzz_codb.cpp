// A profile database on anything at all, with and without copy lines, and all its objects taken into a project.

#include "fuzz/scratch.h"
#include "import/codbimporter.h"
#include "import/importreport.h"
#include "import/profiledatabases.h"
#include "import/projectmerge.h"
#include "store/objectdatabase.h"

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString path =
        Fuzz::write(u"v1.codb"_s, QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    ProfileDatabases profiles(Fuzz::scratch().path());
    Fuzz::require(profiles.ids() == QStringList{u"1"_s});
    profiles.description(u"1"_s);
    const std::shared_ptr<ObjectDataBase> profile = profiles.load(u"1"_s);
    const auto project = std::make_shared<ObjectDataBase>();
    Fuzz::require(project->createNewDataBase());
    ImportReport report;
    if (profile)
        ProjectMerge::copyObjects(*project, 0, *profile, 0, 0, 0xffff, report);

    CODBImporter importer;
    importer.setIndexRange(0, 0xffff);
    importer.setResolveCopyLines(true);
    importer.setDatabase(project);
    Fuzz::require(importer.setFile(path));
    importer.startImport();
    importer.waitForEnd();
    return 0;
}
