// The small readers: placeholders, number lists, C strings, values, former sources, feature files, templates and
// modifier files. The first byte chooses one.

#include "check/line/storevalue.h"
#include "check/line/versionreader.h"
#include "fuzz/scratch.h"
#include "generate/base/templates.h"
#include "generate/define/projectprops.h"
#include "generate/define/usersection.h"
#include "generate/objdict/cppcopies.h"
#include "nodedict/cohelper.h"
#include "nodedict/edsvalue.h"
#include "store/databasemodifier.h"
#include "store/objectdatabase.h"
#include "store/projectconverter.h"
#include "texttools/helper.h"

#include <QFile>

#include <array>

using namespace Qt::StringLiterals;

namespace {

void names(const QByteArray &bytes)
{
    const QString text = QString::fromUtf8(bytes);
    const QString filled = Helper::substituteVariables(text, 0x1018, 1, 2);
    Fuzz::require(text.contains("${"_L1) || filled == text);
    Helper::addLowerCaseUtoNumberLists(text);
    Helper::hexPairs(text);
}

/// The initialiser stays one literal on one line.
void strings(const QByteArray &bytes)
{
    const QString literal = Helper::UTF8String2ArrayString(QString::fromUtf8(bytes));
    Fuzz::require(!literal.contains(u'\n') && !literal.contains(u'\r') && !literal.contains("??"_L1));
}

void values(const QByteArray &bytes)
{
    const QString text = QString::fromUtf8(bytes);
    StoreValue::parse(text);
    plainValue(text);
    EdsValue::number(text);
    for (const quint32 type : {1U, 3U, 7U, 8U, 9U, 0x1bU})
        EdsValue::normalised(text, type);
    const QString access = COHelper::normalizeAccessType(text);
    Fuzz::require(COHelper::normalizeAccessType(access) == access);
    Fuzz::require(COHelper::mapDataTypeString(text) <= 0xffff);
    COHelper::string2objectCode(text);
    COHelper::convertCategory(text);
}

void formerSources(const QByteArray &bytes)
{
    FormerDefines::parse(bytes);
    Fuzz::write(u"gen_define.h"_s, bytes);
    Fuzz::write(u"gen_objdict.c"_s, bytes);
    Fuzz::write(u"gen_user.h"_s, bytes);
    Fuzz::require(ProjectProps::write(Fuzz::scratch().path()));
    Fuzz::require(writeCppCopies(Fuzz::scratch().path()));
    const QString path = Fuzz::write(u"ending.txt"_s, bytes);
    Fuzz::require(Helper::modifyLineEnding(path, u"\n"_s));
    QFile file(path);
    Fuzz::require(file.open(QIODevice::ReadOnly) && !file.readAll().contains('\r'));
}

void featureFile(const QByteArray &bytes)
{
    VersionReader reader;
    Fuzz::require(reader.setFile(Fuzz::write(u"x_featureinfo_1.xml"_s, bytes)));
    QString version;
    reader.requiredToolVersion(version);
}

void templates(const QByteArray &bytes)
{
    Templates::fill(QString::fromUtf8(bytes), {{u"A"_s, u"__GEN_A__"_s}, {u"B"_s, u""_s}});
}

void modifierFile(const QByteArray &bytes)
{
    static const auto store = [] {
        auto made = std::make_shared<ObjectDataBase>();
        Fuzz::require(made->createNewDataBase());
        return made;
    }();
    DatabaseModifier modifier;
    modifier.setDatabase(store);
    modifier.setModifierFile(Fuzz::write(u"changes.txt"_s, bytes));
    modifier.applyModifierFile();
    ProjectConverter converter;
    converter.setDatabase(store);
    converter.doGenericCorrection();
    converter.doCorrection();
    converter.doEnergyBusCorrection();
    converter.doJ1939Correction();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static constexpr std::array readers{names, strings, values, formerSources, featureFile, templates, modifierFile};
    if (size == 0)
        return 0;
    Fuzz::scratch();
    readers.at (*data %
                readers.size())(QByteArray(reinterpret_cast<const char *>(data + 1), static_cast<qsizetype>(size - 1)));
    return 0;
}
