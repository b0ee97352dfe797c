#include "generate/defineheader.h"
#include "generate/dialect.h"
#include "generate/stack/definemacros.h"
#include "support/testhome.h"

#include <QCoreApplication>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace TestSupport;

// The names of all macros, as the stack asks for them, stand in tests/data/define/.

namespace {

constexpr quint8 tx = ObjectDataBase::transmit;
constexpr quint8 rx = ObjectDataBase::receive;

QStringList sorted(QStringList names)
{
    names.removeDuplicates();
    names.sort();
    return names;
}

QStringList listed(SourceForm form)
{
    const QString file = form == SourceForm::V4 ? u"macros_v4.txt"_s : u"macros_classic.txt"_s;
    const QByteArray text = readFile(QStringLiteral(NCX_SOURCE_DIR "/tests/data/define/") + file);
    return sorted(QString::fromUtf8(text).split(u'\n', Qt::SkipEmptyParts));
}

TEST_F(Define, KnowsTheMacrosOfTheStack)
{
    for (const SourceForm form : {SourceForm::V4, SourceForm::Classic})
        EXPECT_EQ(sorted(DefineMacros::allNames(Dialect::of(form))), listed(form));
}

/// A project that has everything: all objects that count, and 1 for every setting that a macro is read from.
void fill(ProjectBuilder &project)
{
    for (const auto &blocks :
         {DefineMacros::canOpen(), DefineMacros::events(), DefineMacros::queues(), DefineMacros::j1939(),
          DefineMacros::rawCan(), DefineMacros::diagnostics(), DefineMacros::hardware(), DefineMacros::application()}) {
        for (const DefineMacros::Block &block : blocks) {
            for (const DefineMacros::Macro &macro : block.macros) {
                for (const QString &key : QString(macro.key).split(u' ', Qt::SkipEmptyParts))
                    project.general(key, u"1"_s).j1939(key, u"1"_s);
            }
        }
    }
    for (const DefineMacros::TargetMacro &macro : DefineMacros::targets())
        project.general(macro.key, u"1"_s);
    for (const QString &key :
         {u"usdo_server_enabled"_s, u"usdo_server_cnt"_s, u"usdo_client_cnt"_s, u"static_srdo_data"_s, u"user_tx_cob"_s,
          u"isotp_client_con"_s, u"uds_client_cnt"_s, u"uds_static_indication"_s})
        project.general(key, u"1"_s);
    for (const QString &key :
         {u"cia510serversupport"_s, u"diagsupport_dm1"_s, u"diagsupport_dmtool1"_s, u"j1939fd_multipgbuffer"_s})
        project.j1939(key, u"1"_s);

    for (const quint16 index : QList<quint16>{0x1003, 0x1005, 0x100C, 0x1010, 0x1012, 0x1014, 0x1016, 0x1028, 0x1032,
                                              0x1280, 0x1300, 0x1301, 0x1F10, 0x1F2C, 0x1F80, 0x1F81})
        subs(project.object(index, u"o"_s), 1);
    project.object(0x1000, u"o"_s).sub(1, u"s"_s, withDefault(u"447"_s));
    project.object(0x6000, u"o"_s).sub(1, u"s"_s, withDefault(u"7"_s));
    subs(project.object(0x1400, u"o"_s), 5);
    subs(project.object(0x1800, u"o"_s), 5);
    for (const quint16 index : QList<quint16>{0x1600, 0x1A00}) {
        project.object(index, u"o"_s).sub(0, u"s"_s, withDefault(index == 0x1600 ? u"254"_s : u"255"_s));
        project.sub(1, u"s"_s);
    }
    const QList<quint16> types{5, 6, 7, 27, 2, 3, 4, 8, 22, 15, 10, 9, 124};
    project.object(0x2000, u"o"_s);
    for (quint8 sub = 0; sub < types.size(); ++sub)
        project.sub(sub, u"s"_s, withDefault(u"0"_s, types.at(sub)));
    project.object(0x1381, u"o"_s);
    for (quint8 sub = 1; sub <= 8; ++sub)
        project.sub(sub, u"s"_s, withDefault(u"0x20000008"_s.replace(6, 2, u"%1"_s.arg(sub - 1, 2, 16, '0'_L1))));
    project.object(0x2001, u"o"_s);
    for (quint8 sub = 0; sub < types.size(); ++sub) {
        project.sub(sub, u"s"_s, [&](auto &data) {
            data.datatype = types.at(sub);
            data.implementation = 3;
        });
    }
    project.store()->setUDSServiceAuthentication(0, 0x10, u"1"_s);
}

QStringList filledNames(SourceForm form, const QString &folder, const QList<int> &types,
                        const std::function<void(ProjectBuilder &)> &change)
{
    ProjectBuilder project;
    fill(project);
    for (quint8 line = 0; line < types.size(); ++line)
        project.line(line, types.at(line));
    const quint8 last = static_cast<quint8>(types.size() - 1);
    for (const quint8 direction : {tx, rx}) {
        StoreRecords::PGN group{.number = 100, .inhibittime_ms = 5, .direction = direction, .multisourceaddress = true};
        project.store()->addPGN(last, 100, group);
        group.issafe = true;
        project.store()->addPGN(last, 101, group);
        project.canId(0x100, direction, u"id"_s);
    }
    change(project);
    return Header(project, form, folder).names();
}

TEST_F(Define, WritesEachMacroInSomeProject)
{
    const QString application = QCoreApplication::applicationName();
    for (const SourceForm form : {SourceForm::V4, SourceForm::Classic}) {
        const auto names = [&](const QList<int> &types, const std::function<void(ProjectBuilder &)> &change) {
            return filledNames(form, folder_.path(), types, change);
        };
        QStringList written = names({1}, [](auto &project) { project.general(u"nmtmaster"_s, u"0"_s); });
        written += names({1}, [](auto &project) {
            project.object(0x1000, u"o"_s).sub(1, u"s"_s, withDefault(u"454"_s));
            project.general(u"sleep_mode_selection"_s, u"2"_s);
        });
        written += names({1, 2}, [](auto & /*project*/) {});
        written += names({2}, [](auto & /*project*/) {});
        written += names({4}, [](auto &project) { project.general(u"uds_bl_setting"_s, u"0"_s); });
        QCoreApplication::setApplicationName(u"EnergyBus NodeAssistant"_s);
        written += names({1}, [](auto &project) {
            int number = 0;
            for (const QString &kind :
                 {u"EnergyBus Controller"_s, u"Battery"_s, u"Display"_s, u"Voltage Converter"_s,
                  u"Motor Controller Unit"_s, u"Load Monitoring Device"_s, u"Manufacturer specific device (passive)"_s,
                  u"Manufacturer specific device (active)"_s, u"Security Device/Extension"_s}) {
                ++number;
                project.store()->setEnergyBusSetting(u"device_%1"_s.arg(number), u"d%1"_s.arg(number));
                project.store()->setEnergyBusSetting(u"sec_d%1_kind"_s.arg(number), kind);
            }
            for (const QString &kind :
                 {u"bat"_s, u"hmi"_s, u"lmd"_s, u"manua"_s, u"manup"_s, u"mcu"_s, u"sec"_s, u"vc"_s})
                project.store()->setEnergyBusSetting(u"int_offset_%1"_s.arg(kind), u"1"_s);
            project.store()->setEnergyBusSetting(u"ebc_tool_supported"_s, u"1"_s);
        });
        QCoreApplication::setApplicationName(application);

        static const QRegularExpression lineCount(u"^CO_OBJECTS_LINE_0_CNT$"_s);
        static const QRegularExpression profile(u"^CO_PROFILE_44[0-9]$"_s);
        static const QRegularExpression group(u"^CO_P447_VDFG_7$"_s);
        static const QRegularExpression message(u"_DM1_SUPPORTED$"_s);
        written.replaceInStrings(lineCount, u"CO_OBJECTS_LINE_%1_CNT"_s)
            .replaceInStrings(profile, u"CO_PROFILE_%1"_s)
            .replaceInStrings(group, u"CO_P447_VDFG_%1"_s)
            .replaceInStrings(message, u"_DM%1_SUPPORTED"_s);
        const QStringList all = sorted(written);
        QStringList missing;
        for (const QString &name : listed(form)) {
            if (!all.contains(name))
                missing.append(name);
        }
        EXPECT_EQ(missing, QStringList());
    }
}

} // namespace
