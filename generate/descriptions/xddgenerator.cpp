#include "generate/descriptions/xddgenerator.h"

#include "generate/base/codewriter.h"
#include "generate/common/doctext.h"
#include "generate/common/documentname.h"
#include "generate/model/linedictionary.h"
#include "nodedict/cohelper.h"
#include "store/objectdatabase.h"
#include "texttools/clock.h"
#include "texttools/numbertext.h"

#include <QCoreApplication>
#include <QDebug>
#include <QTextStream>
#include <QXmlStreamWriter>

using namespace Qt::StringLiterals;
using CANopen::Implementation;
using Code::dec;
using Code::hex;

namespace {

/// The namespace of XML Schema instances (W3C XML Schema part 1).
constexpr auto schemaInstance = "http://www.w3.org/2001/XMLSchema-instance"_L1;

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

QString usdoAccess(const QString &access)
{
    if (access == "const"_L1 || access == "ro"_L1)
        return u"ro"_s;
    return access == "wo"_L1 ? u"wo"_s : u"rw"_s;
}

bool showsDefault(const StoreRecords::SubIndexData &sub)
{
    return sub.defaultineds && !sub.defaultvalue.isEmpty() &&
           (sub.implementation == Implementation::Variable || sub.implementation == Implementation::ManagedConst);
}

/// Prints the document. All texts pass through `text` and `attribute`.
class XddWriter
{
public:
    XddWriter(QIODevice *device, ObjectDataBase &store, quint8 line)
        : xml_(device)
        , store_(store)
        , line_(line)
    {
        xml_.setAutoFormatting(true);
        store_.setCurrentLine(line);
    }

    void beginDocument(const QString &title)
    {
        xml_.writeStartDocument();
        // Two hyphens in a row, or one at the end, are no part of a comment.
        xml_.writeComment(DocText::forXml(title).replace("--"_L1, "- -"_L1).replace("--"_L1, "- -"_L1));
        xml_.writeStartElement(u"ISO15745ProfileContainer"_s);
        xml_.writeNamespace(schemaInstance, u"xsi"_s);
        xml_.writeAttribute(schemaInstance, u"noNamespaceSchemaLocation"_s, u"CANopenFD.xsd"_s);
    }

    void writeDevice(const QString &fileName)
    {
        beginProfile(deviceProfile, fileName);
        begin("DeviceIdentity"_L1);
        text("vendorName"_L1, setting(u"VendorName"_s));
        text("vendorID"_L1, vendorId(store_, line_));
        text("productName"_L1, setting(u"ProductName"_s));
        end();
        begin("DeviceFunction"_L1);
        begin("capabilities"_L1);
        begin("characteristicList"_L1);
        begin("characteristic"_L1);
        label("characteristicName"_L1, u"Use of CANopen FD"_s);
        label("characteristicContent"_L1, u"yes"_s);
        end(4);
        endProfile();
    }

    void beginCommunication(const QString &fileName)
    {
        beginProfile(communicationProfile, fileName);
        begin("ApplicationLayers"_L1);
        begin("CANopenFDObjectList"_L1);
    }

    void endCommunication()
    {
        end(2);
        endProfile();
    }

    void writeObject(const LineObject &object)
    {
        const quint32 code = object.data.objecttype;
        begin("CANopenFDDataObject"_L1);
        attribute("index"_L1, hex(object.index, 4));
        attribute("name"_L1, object.name());
        attribute("objectType"_L1, dec(code));
        if (code != CANopen::Record)
            attribute("dataType"_L1, hex(object.data.datatype, 2));
        for (const StoreRecords::SubEntry &sub : object.subs)
            writeElement(sub.subindex, filledText(sub.data.name, sub), sub.data);
        end();
    }

    void finish() { xml_.writeEndDocument(); }

private:
    void begin(QLatin1StringView element) { xml_.writeStartElement(element); }
    void end(int count = 1)
    {
        for (int i = 0; i < count; ++i)
            xml_.writeEndElement();
    }
    void text(QLatin1StringView element, const QString &content)
    {
        xml_.writeTextElement(element, DocText::forXml(content));
    }
    void attribute(QLatin1StringView name, const QString &value) { xml_.writeAttribute(name, DocText::forXml(value)); }
    QString setting(const QString &key) const { return store_.getDescriptionSetting(key); }

    void label(QLatin1StringView element, const QString &content)
    {
        begin(element);
        begin("label"_L1);
        attribute("lang"_L1, u"en"_s);
        xml_.writeCharacters(content);
        end(2);
    }

    void beginProfile(const Profile &profile, const QString &fileName)
    {
        begin("ISO15745Profile"_L1);
        begin("ProfileHeader"_L1);
        text("ProfileIdentification"_L1, profile.identification);
        text("ProfileRevision"_L1, u"1"_s);
        text("ProfileName"_L1, {});
        text("ProfileSource"_L1, {});
        text("ProfileClassID"_L1, profile.classId);
        begin("ISO15745Reference"_L1);
        text("ISO15745Part"_L1, u"1"_s);
        text("ISO15745Edition"_L1, u"1"_s);
        text("ProfileTechnology"_L1, u"CANopenFD"_s);
        end(2);
        begin("ProfileBody"_L1);
        xml_.writeAttribute(schemaInstance, u"type"_s, profile.bodyType);
        attribute("fileName"_L1, fileName);
        attribute("fileCreator"_L1, setting(u"CreatedBy"_s));
        attribute("fileCreationDate"_L1, TextTools::currentDateTime().toString(u"MM-dd-yy"_s));
        attribute("fileModifiedBy"_L1, setting(u"ModifiedBy"_s));
        attribute("fileVersion"_L1, setting(u"FileVersion"_s));
    }
    void endProfile() { end(2); }

    void writeElement(quint8 subindex, const QString &name, const StoreRecords::SubIndexData &sub)
    {
        begin("CANopenFDDataElement"_L1);
        attribute("subIndex"_L1, hex(subindex, 2));
        attribute("name"_L1, name);
        attribute("dataType"_L1, hex(sub.datatype, 2));
        attribute("modification"_L1, sub.accesstype == "const"_L1 ? u"false"_s : u"true"_s);
        attribute("accessUSDO"_L1, usdoAccess(sub.accesstype));
        attribute("accessPDO"_L1, sub.pdomapping.getXDDStringValue());
        if (showsDefault(sub))
            attribute("defaultValue"_L1, sub.defaultvalue);
        end();
    }

    QXmlStreamWriter xml_;
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

void XDDGenerator::write(QTextStream &stream)
{
    const QString ownName = fileName();
    XddWriter writer(stream.device(), *database(), line());
    writer.beginDocument(u"XDD file for %1 - generated by %2 %3 (%4)\n"_s.arg(
        baseName(), QCoreApplication::applicationName(), toolVersion(), TextTools::currentDateText()));
    writer.writeDevice(ownName);
    Q_EMIT progress(20);
    writer.beginCommunication(ownName);
    const LineDictionary dictionary(*database(), line(), 0);
    for (const LineObject &object : dictionary.objects) {
        if (takeCancelRequest()) {
            qDebug() << "Generation aborted";
            break;
        }
        writer.writeObject(object);
    }
    writer.endCommunication();
    writer.finish();
}
