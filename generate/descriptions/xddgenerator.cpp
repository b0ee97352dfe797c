#include "generate/descriptions/xddgenerator.h"

#include "generate/base/codewriter.h"
#include "generate/common/doctext.h"
#include "generate/common/documentname.h"
#include "generate/model/linedictionary.h"
#include "nodedict/access.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "texttools/clock.h"
#include "texttools/numbertext.h"

#include <QCoreApplication>
#include <QDebug>

#include <algorithm>

using namespace Qt::StringLiterals;
using CANopen::Access;
using CANopen::Implementation;
using Code::dec;
using Code::hex;

namespace {

QString vendorId(ObjectDataBase &store, quint8 line)
{
    const std::optional<StoreRecords::SubIndexData> sub = store.getSubIndex(line, CANopen::Index::identity, 1);
    return sub ? sub->defaultvalue : QString();
}

/// The words in which the headers and bodies of the two profiles differ.
struct Profile
{
    QLatin1StringView identification;
    QLatin1StringView classId;
    QLatin1StringView bodyType;
};

constexpr Profile deviceProfile{"CAN device profile"_L1, "Device"_L1, "ProfileBody_Device_CANopenFD"_L1};
/// The type's name is spelled as the schema has it.
constexpr Profile communicationProfile{"CAN com net profile"_L1, "CommunicationNetwork"_L1,
                                       "ProfileBody_CommunicatioNetwork_CANopenFD"_L1};

QLatin1StringView usdoAccess(const QString &access)
{
    if (access == Access::Const || access == Access::ReadOnly)
        return "ro"_L1;
    return access == Access::WriteOnly ? "wo"_L1 : "rw"_L1;
}

bool hasOwnDefault(const StoreRecords::SubIndexData &sub)
{
    return sub.defaultineds && !sub.defaultvalue.isEmpty() &&
           (sub.implementation == Implementation::Variable || sub.implementation == Implementation::ManagedConst);
}

/// Most texts hold nothing that means something in XML.
bool isPlain(const QString &text)
{
    return std::ranges::all_of(
        text, [](QChar c) { return c >= u' ' && c < u'\x7f' && c != u'&' && c != u'<' && c != u'>' && c != u'"'; });
}

/// A text between tags.
QString content(const QString &text)
{
    return isPlain(text) ? text : DocText::forXml(text).toHtmlEscaped();
}

/// A text between the quotes of an attribute, where a reader takes white space for blanks.
QString quoted(const QString &text)
{
    if (isPlain(text))
        return text;
    return content(text).replace(u'\t', "&#9;"_L1).replace(u'\n', "&#10;"_L1).replace(u'\r', "&#13;"_L1);
}

/// An attribute that is not always there.
QString attribute(QLatin1StringView name, const QString &value)
{
    return u" %1=\"%2\""_s.arg(name, value);
}

/// Prints the document. All texts of a project pass through `content` and `quoted`.
class XddWriter
{
public:
    XddWriter(Utf8Sink &sink, ObjectDataBase &store, quint8 line)
        : out_(sink)
        , store_(store)
        , line_(line)
    {
        store_.setCurrentLine(line);
    }

    void beginDocument(const QString &title)
    {
        out_(uR"(
            <?xml version="1.0" encoding="UTF-8"?>
            <!--${TITLE}-->
            <ISO15745ProfileContainer xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xsi:noNamespaceSchemaLocation="CANopenFD.xsd">
            )",
             // Two hyphens in a row, or one at the end, are no part of a comment.
             {{"TITLE", DocText::forXml(title).replace("--"_L1, "- -"_L1).replace("--"_L1, "- -"_L1)}});
    }

    void writeDevice(const QString &fileName)
    {
        beginProfile(deviceProfile, fileName);
        out_(uR"(
                        <DeviceIdentity>
                            <vendorName>${VENDOR}</vendorName>
                            <vendorID>${ID}</vendorID>
                            <productName>${PRODUCT}</productName>
                        </DeviceIdentity>
                        <DeviceFunction>
                            <capabilities>
                                <characteristicList>
                                    <characteristic>
                                        <characteristicName>
                                            <label lang="en">Use of CANopen FD</label>
                                        </characteristicName>
                                        <characteristicContent>
                                            <label lang="en">yes</label>
                                        </characteristicContent>
                                    </characteristic>
                                </characteristicList>
                            </capabilities>
                        </DeviceFunction>
            )",
             {{"VENDOR", content(store_.getDescriptionSetting(u"VendorName"_s))},
              {"ID", content(vendorId(store_, line_))},
              {"PRODUCT", content(store_.getDescriptionSetting(u"ProductName"_s))}});
        endProfile();
    }

    /// `writeObjects` prints the elements of the list.
    template <typename WriteObjects>
    void writeCommunication(const QString &fileName, bool isEmpty, const WriteObjects &writeObjects)
    {
        beginProfile(communicationProfile, fileName);
        out_(u"            <ApplicationLayers>");
        out_(u"                <CANopenFDObjectList${END}>", {{"END", isEmpty ? u"/"_s : QString()}});
        writeObjects();
        if (!isEmpty)
            out_(u"                </CANopenFDObjectList>");
        out_(u"            </ApplicationLayers>");
        endProfile();
        out_(u"</ISO15745ProfileContainer>");
    }

    void writeObject(const LineObject &object)
    {
        const quint32 code = object.data.objecttype;
        out_(u"                    <CANopenFDDataObject index=\"${INDEX}\" name=\"${NAME}\" "
             u"objectType=\"${CODE}\"${TYPE}${END}>",
             {{"INDEX", hex(object.index, 4)},
              {"NAME", quoted(object.name())},
              {"CODE", dec(code)},
              {"TYPE", code == CANopen::Record ? QString() : attribute("dataType"_L1, hex(object.data.datatype, 2))},
              {"END", object.subs.empty() ? u"/"_s : QString()}});
        for (const StoreRecords::SubEntry &sub : object.subs)
            writeElement(sub);
        if (!object.subs.empty())
            out_(u"                    </CANopenFDDataObject>");
    }

private:
    void beginProfile(const Profile &profile, const QString &fileName)
    {
        const auto setting = [this](const QString &key) { return quoted(store_.getDescriptionSetting(key)); };
        out_(uR"(
                <ISO15745Profile>
                    <ProfileHeader>
                        <ProfileIdentification>${IDENTIFICATION}</ProfileIdentification>
                        <ProfileRevision>1</ProfileRevision>
                        <ProfileName></ProfileName>
                        <ProfileSource></ProfileSource>
                        <ProfileClassID>${CLASS}</ProfileClassID>
                        <ISO15745Reference>
                            <ISO15745Part>1</ISO15745Part>
                            <ISO15745Edition>1</ISO15745Edition>
                            <ProfileTechnology>CANopenFD</ProfileTechnology>
                        </ISO15745Reference>
                    </ProfileHeader>
                    <ProfileBody xsi:type="${TYPE}" fileName="${FILE}" fileCreator="${CREATOR}" fileCreationDate="${DATE}" fileModifiedBy="${MODIFIER}" fileVersion="${VERSION}">
            )",
             {{"IDENTIFICATION", profile.identification},
              {"CLASS", profile.classId},
              {"TYPE", profile.bodyType},
              {"FILE", quoted(fileName)},
              {"CREATOR", setting(u"CreatedBy"_s)},
              {"DATE", TextTools::currentDateTime().toString(u"MM-dd-yy"_s)},
              {"MODIFIER", setting(u"ModifiedBy"_s)},
              {"VERSION", setting(u"FileVersion"_s)}});
    }
    void endProfile()
    {
        out_(uR"(
                    </ProfileBody>
                </ISO15745Profile>
            )");
    }

    void writeElement(const StoreRecords::SubEntry &element)
    {
        const StoreRecords::SubIndexData &sub = element.data;
        out_(u"                        <CANopenFDDataElement subIndex=\"${SUB}\" name=\"${NAME}\" dataType=\"${TYPE}\" "
             u"modification=\"${MODIFICATION}\" accessUSDO=\"${USDO}\" accessPDO=\"${PDO}\"${DEFAULT}/>",
             {{"SUB", hex(element.subindex, 2)},
              {"NAME", quoted(filledText(sub.name, element))},
              {"TYPE", hex(sub.datatype, 2)},
              {"MODIFICATION", sub.accesstype == Access::Const ? "false"_L1 : "true"_L1},
              {"USDO", usdoAccess(sub.accesstype)},
              {"PDO", sub.pdomapping.getXDDStringValue()},
              {"DEFAULT", hasOwnDefault(sub) ? attribute("defaultValue"_L1, quoted(sub.defaultvalue)) : QString()}});
    }

    CodeWriter out_;
    ObjectDataBase &store_;
    const quint8 line_;
};

} // namespace

QString XDDGenerator::nameOf(ObjectDataBase &store, const QString &baseName, quint8 line, bool multiLine)
{
    const quint32 vendor = NumberText::byPrefix(vendorId(store, line)).value_or(0);
    return hex(vendor, 8) + u'_' + documentName(baseName, line, multiLine);
}

QString XDDGenerator::fileName() const
{
    const QString name = database() ? nameOf(*database(), baseName(), line(), isMultiLine())
                                    : documentName(baseName(), line(), isMultiLine());
    return name + u".xdd"_s;
}

void XDDGenerator::write(Utf8Sink &sink)
{
    const QString ownName = fileName();
    XddWriter writer(sink, *database(), line());
    writer.beginDocument(u"XDD file for %1 - generated by %2 %3 (%4)\n"_s.arg(
        baseName(), QCoreApplication::applicationName(), toolVersion(), TextTools::currentDateText()));
    writer.writeDevice(ownName);
    Q_EMIT progress(20);
    const LineDictionary dictionary(*database(), line(), 0);
    writer.writeCommunication(ownName, dictionary.objects.empty(), [&] {
        for (const LineObject &object : dictionary.objects) {
            if (takeCancelRequest()) {
                qDebug() << "Generation aborted";
                break;
            }
            writer.writeObject(object);
        }
    });
}
